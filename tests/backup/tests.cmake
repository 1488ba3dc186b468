# Tests of the memory-stick backup: the logic without windows, and the windows offscreen.
vorkam_add_test(tst_BackupStick SOURCES backup/tst_BackupStick.cpp backup/ScriptedDrives.h)
vorkam_add_test(tst_StickBackup SOURCES backup/tst_StickBackup.cpp backup/BackupTestSupport.h backup/ScriptedDrives.h)
vorkam_add_test(tst_StickRestore SOURCES backup/tst_StickRestore.cpp backup/BackupTestSupport.h)
vorkam_add_test(tst_BackupWindows APP SOURCES backup/tst_BackupWindows.cpp backup/BackupTestSupport.h
  backup/ScriptedDrives.h)
