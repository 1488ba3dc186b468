# Sources of the accounts subsystem, relative to src/.
set(VORKAM_ACCOUNTS_CORE
  accounts/cAlkusaldot.h
  accounts/cTili.cpp
  accounts/cTili.h
  accounts/PrintChoices.cpp
  accounts/PrintChoices.h
  accounts/Tilikartta.cpp
  accounts/Tilikartta.h
)
set(VORKAM_ACCOUNTS_UI
)
