# The memory-stick backup, its management and the restore: the logic in vorkam_core, the windows
# in vorkam_ui. Paths relative to src/.
target_sources(vorkam_core PRIVATE
  backup/BackupStick.cpp
  backup/BackupStick.h
  backup/Drives.cpp
  backup/Drives.h
  backup/StickBackup.cpp
  backup/StickBackup.h
  backup/StickRestore.cpp
  backup/StickRestore.h
  backup/SystemDrives.cpp
  backup/SystemDrives.h
  backup/VerifiedCopy.cpp
  backup/VerifiedCopy.h
)
target_include_directories(vorkam_core PUBLIC backup)
# Labels of sticks that the desktop has not published are read with util-linux's libblkid.
pkg_check_modules(BLKID REQUIRED IMPORTED_TARGET blkid)
target_link_libraries(vorkam_core PRIVATE PkgConfig::BLKID)
target_sources(vorkam_ui PRIVATE
  backup/frmBackup.cpp
  backup/frmBackup.h
  backup/frmBackup.ui
  backup/frmBackupManagement.cpp
  backup/frmBackupManagement.h
  backup/frmBackupManagement.ui
  backup/frmBackupRestore.cpp
  backup/frmBackupRestore.h
  backup/frmBackupRestore.ui
  backup/StickDays.cpp
  backup/StickDays.h
)
