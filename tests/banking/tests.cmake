# Bank statements: reading camt.053 and TITO, proposals that learn, storing once.
# The command line runs the built vorkam_report on a copy of the demo.
vorkam_add_test(tst_BankImport SOURCES banking/tst_BankImport.cpp)
add_dependencies(tst_BankImport vorkam_report vorkam_data)
vorkam_add_test(tst_BankImportWindow UI SOURCES banking/tst_BankImportWindow.cpp)
add_dependencies(tst_BankImportWindow vorkam_data)
