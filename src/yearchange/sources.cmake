# The fiscal year change: the change itself in vorkam_core, its window in vorkam_ui. Paths
# relative to src/.
target_sources(vorkam_core PRIVATE yearchange/TilikaudenVaihto.cpp yearchange/TilikaudenVaihto.h)
target_include_directories(vorkam_core PUBLIC yearchange)
target_sources(vorkam_ui PRIVATE yearchange/frmKaudenVaihto.cpp yearchange/frmKaudenVaihto.h
  yearchange/frmKaudenVaihto.ui)
