# Tests of the vouchers subsystem: vorkam_add_test(name SOURCES vouchers/tst_X.cpp) or with UI for windows.
vorkam_add_test(tst_cTosite SOURCES vouchers/tst_cTosite.cpp)
vorkam_add_test(tst_cTositeEd SOURCES vouchers/tst_cTositeEd.cpp)
vorkam_add_test(tst_TositeMuokkaus SOURCES vouchers/tst_TositeMuokkaus.cpp)
vorkam_add_test(tst_frmNewTositteet UI SOURCES vouchers/tst_frmNewTositteet.cpp)
vorkam_add_test(tst_VoucherInput SOURCES vouchers/tst_VoucherInput.cpp)
vorkam_add_test(tst_cTositeTarkistus SOURCES vouchers/tst_cTositeTarkistus.cpp)
vorkam_add_test(tst_TositeHaku SOURCES vouchers/tst_TositeHaku.cpp)
vorkam_add_test(tst_Tositepohjat SOURCES vouchers/tst_Tositepohjat.cpp)
