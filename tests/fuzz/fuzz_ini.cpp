#include "FuzzText.h"
#include "core/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

// The installation settings file: any content is read, and writing one key stores it so that it
// reads back while every other key keeps its value.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // In memory where there is such a folder: every write of the store syncs the file to disk.
    static QTemporaryDir dir(QDir(QStringLiteral("/dev/shm")).exists()
            ? QStringLiteral("/dev/shm/vorkam-fuzz-XXXXXX")
            : QDir::tempPath() + QStringLiteral("/vorkam-fuzz-XXXXXX"));
    const QString file = dir.path() + QStringLiteral("/lxvorkam.ini");
    const QByteArray bytes = fuzzBytes(data, size);
    {
        QFile f(file);
        if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        f.write(bytes);
    }
    IniSettingsStore ini(file);
    const QString backup = ini.read(QStringLiteral("DatabaseBackup"), QStringLiteral("-"));
    const QString multi = ini.read(QStringLiteral("MultiDb"), QStringLiteral("-"));
    ini.read(QStringLiteral("Database"), QString());

    // The value written is the input's first line, as both readings give it.
    const QString value = QString::fromUtf8(bytes.left(bytes.indexOf('\n') < 0 ? 200 : bytes.indexOf('\n')));
    FUZZ_CHECK(ini.write(QStringLiteral("Database"), value), "the ini file could not be written");
    const IniSettingsStore again(file);
    FUZZ_CHECK(
        again.read(QStringLiteral("Database"), QString()) == QString(value).replace(u'\r', u' ').trimmed(),
        "a written value does not read back");
    FUZZ_CHECK(again.read(QStringLiteral("DatabaseBackup"), QStringLiteral("-")) == backup,
        "writing one key changed another");
    FUZZ_CHECK(again.read(QStringLiteral("MultiDb"), QStringLiteral("-")) == multi,
        "writing one key changed another");
    return 0;
}
