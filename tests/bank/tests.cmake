# Bank statements: reading camt.053 and TITO, proposals that learn, storing once.
vorkam_add_test(tst_BankImport SOURCES bank/tst_BankImport.cpp)
