# Tests of the accounts subsystem: vorkam_add_test(name SOURCES accounts/tst_X.cpp) or with UI for windows.
