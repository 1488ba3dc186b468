#pragma once

#include <QString>

// The three places Vorkam keeps files. Tests point all of them at temporary folders.
namespace Paths {

// The executable's folder (build/bin when run from the build): demo1.mdb, mallit/, the
// report definitions and the manual lie there.
QString programDir();
// Where new databases are created: ~/Documents/Vorkam.
QString dataDir();
// The installation settings file: $XDG_CONFIG_HOME/Vorkam/lxvorkam.ini.
QString iniFile();

// The default database: the user's own copy of the demo association, the data folder's
// demo1.mdb. The program's folder may be read-only; nothing is ever written there.
QString defaultDatabase();
// The demo association shipped in the program's folder, copied to defaultDatabase() at the
// first start.
QString programDemo();
// The default backup folder, with its trailing "/": the data folder's varmistukset/.
QString defaultBackupDir();

void setProgramDir(const QString& dir);
void setDataDir(const QString& dir);
void setIniFile(const QString& file);
// Back to the real locations.
void reset();

} // namespace Paths
