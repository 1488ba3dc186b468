# Tests of the vouchers subsystem: vorkam_add_test(name SOURCES vouchers/tst_X.cpp) or with UI for windows.
vorkam_add_test(tst_cTosite SOURCES vouchers/tst_cTosite.cpp)
vorkam_add_test(tst_cTositeEd SOURCES vouchers/tst_cTositeEd.cpp)
vorkam_add_test(tst_VoucherEditor SOURCES vouchers/tst_VoucherEditor.cpp)
vorkam_add_test(tst_frmNewTositteet UI SOURCES vouchers/tst_frmNewTositteet.cpp)
vorkam_add_test(tst_VoucherInput SOURCES vouchers/tst_VoucherInput.cpp)
# The journal and the general ledger read the report definitions of the program's folder.
vorkam_add_test(tst_JournalPrinting SOURCES vouchers/tst_JournalPrinting.cpp)
add_dependencies(tst_JournalPrinting vorkam_reports)
vorkam_add_test(tst_cTositeTarkistus SOURCES vouchers/tst_cTositeTarkistus.cpp)
vorkam_add_test(tst_VoucherSearch SOURCES vouchers/tst_VoucherSearch.cpp)
vorkam_add_test(tst_VoucherTemplates SOURCES vouchers/tst_VoucherTemplates.cpp)
vorkam_add_test(tst_VoucherTools UI SOURCES vouchers/tst_VoucherTools.cpp)
vorkam_add_test(tst_TarkistusKomento SOURCES vouchers/tst_TarkistusKomento.cpp)
add_dependencies(tst_TarkistusKomento vorkam_report vorkam_data)
# Odd texts through every text field, the search, the settings, the commands and a report.
vorkam_add_test(tst_OddText SOURCES vouchers/tst_OddText.cpp)
add_dependencies(tst_OddText vorkam_reports)
