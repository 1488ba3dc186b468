# Sources of the vouchers subsystem, relative to src/.
set(VORKAM_VOUCHERS_CORE
  vouchers/VoucherLayout.cpp
  vouchers/VientiRecord.cpp
  vouchers/TositeRecord.cpp
  vouchers/cTosite.cpp
  vouchers/cTositeEd.cpp
  vouchers/VoucherAccounts.cpp
)
set(VORKAM_VOUCHERS_UI
  vouchers/frmNewTositteet.cpp
  vouchers/frmNewTositteet.ui
)
