#include "core/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace {
QString g_programDir;
QString g_dataDir;
QString g_iniFile;
} // namespace

namespace Paths {

QString programDir()
{
    if (!g_programDir.isEmpty())
        return g_programDir;
    return QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QDir::currentPath();
}

QString dataDir()
{
    if (!g_dataDir.isEmpty())
        return g_dataDir;
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + QStringLiteral("/Vorkam");
}

QString iniFile()
{
    if (!g_iniFile.isEmpty())
        return g_iniFile;
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vorkam/lxvorkam.ini");
}

namespace {
QString join(const QString& dir, const QString& name)
{
    return dir.endsWith(u'/') ? dir + name : dir + u'/' + name;
}
} // namespace

QString defaultDatabase() { return join(dataDir(), QStringLiteral("demo1.mdb")); }

QString programDemo() { return join(programDir(), QStringLiteral("demo1.mdb")); }

QString defaultBackupDir() { return dataDir() + QStringLiteral("/varmistukset/"); }

void setProgramDir(const QString& dir) { g_programDir = dir; }
void setDataDir(const QString& dir) { g_dataDir = dir; }
void setIniFile(const QString& file) { g_iniFile = file; }

void reset()
{
    g_programDir.clear();
    g_dataDir.clear();
    g_iniFile.clear();
}

} // namespace Paths
