# Sources of the vouchers subsystem, relative to src/.
set(VORKAM_VOUCHERS_CORE
)
set(VORKAM_VOUCHERS_UI
)
