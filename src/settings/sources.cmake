# The settings window: its rules in vorkam_core, the window in vorkam_ui. Paths relative to src/.
target_sources(vorkam_core PRIVATE settings/SettingsForm.cpp settings/SettingsForm.h)
target_include_directories(vorkam_core PUBLIC settings)
target_sources(vorkam_ui PRIVATE settings/frmAsetukset.cpp settings/frmAsetukset.h settings/frmAsetukset.ui)
