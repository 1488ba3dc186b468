# Sources of the accounts subsystem, relative to src/.
set(VORKAM_ACCOUNTS_CORE
)
set(VORKAM_ACCOUNTS_UI
)
