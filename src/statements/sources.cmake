# Sources of the statements subsystem, relative to src/.
set(VORKAM_STATEMENTS_CORE
  statements/TemplateText.cpp
  statements/TemplateText.h
  statements/TemplateTree.cpp
  statements/TemplateTree.h
  statements/cMalli.cpp
  statements/cMalli.h
  statements/cMalliRivi.cpp
  statements/cMalliRivi.h
)
