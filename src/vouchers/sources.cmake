# Sources of the vouchers subsystem, relative to src/.
set(VORKAM_VOUCHERS_CORE
  vouchers/VoucherLayout.cpp
  vouchers/VientiRecord.cpp
  vouchers/TositeRecord.cpp
  vouchers/cTosite.cpp
  vouchers/cTositeEd.cpp
)
set(VORKAM_VOUCHERS_UI
)
