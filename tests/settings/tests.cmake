# Tests of the settings window: its rules without a window, and the window offscreen.
vorkam_add_test(tst_SettingsForm SOURCES settings/tst_SettingsForm.cpp)
vorkam_add_test(tst_frmAsetukset UI SOURCES settings/tst_frmAsetukset.cpp)
