# Sources of the vouchers subsystem, relative to src/.
set(VORKAM_VOUCHERS_CORE
  vouchers/AmountInput.cpp
  vouchers/TositeMuokkaus.cpp
  vouchers/TositeRecord.cpp
  vouchers/VientiRecord.cpp
  vouchers/VoucherAccounts.cpp
  vouchers/VoucherLayout.cpp
  vouchers/cTosite.cpp
  vouchers/cTositeEd.cpp
)
set(VORKAM_VOUCHERS_UI
  vouchers/TositeListModel.cpp
  vouchers/VientiDelegate.cpp
  vouchers/VientiModel.cpp
  vouchers/frmNewTositteet.cpp
  vouchers/frmNewTositteet.ui
)
