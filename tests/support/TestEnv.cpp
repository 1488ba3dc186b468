#include "TestEnv.h"

#include "core/DBC.h"
#include "core/FileOps.h"
#include "core/Paths.h"
#include "core/ProgramEnd.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>

TestEnv::TestEnv()
{
    QDir().mkpath(programDir());
    QDir().mkpath(path(QStringLiteral("data")));
    Paths::setProgramDir(programDir());
    Paths::setDataDir(path(QStringLiteral("data")));
    Paths::setIniFile(iniFile());
    DBC::instance().SuljeDB();
    DBC::instance().setMode(QString(), false);
    FileOps::resetToDefaults();
    ProgramSettings::installation() = InstallationSettings();
    ProgramSettings::bookkeeping() = BookkeepingSettings::defaults(QDate::currentDate());
    ProgramEnd::setHandler([this] { ++m_programEnds; });
}

TestEnv::~TestEnv()
{
    DBC::instance().SuljeDB();
    FileOps::resetToDefaults();
    ProgramEnd::setHandler({});
    Paths::reset();
    // Read-only files must not stop the temporary folder from being removed.
    const auto entries = QDir(m_dir.path()).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo& f : entries)
        QFile(f.filePath()).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

void TestEnv::writeIni(const QByteArray& content) const
{
    QDir().mkpath(QFileInfo(iniFile()).absolutePath());
    writeFile(iniFile(), content);
}

bool TestEnv::exec(const QString& file, const QStringList& statements)
{
    bool ok = true;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        for (const QString& statement : statements) {
            ok = q.exec(statement);
            if (!ok) {
                qWarning("%s: %s", qPrintable(statement), qPrintable(q.lastError().text()));
                break;
            }
        }
    });
    return ok;
}

QByteArray TestEnv::readFile(const QString& file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool TestEnv::writeFile(const QString& file, const QByteArray& bytes)
{
    QFile f(file);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

bool TestEnv::createDatabase(const QString& file, Layout layout)
{
    bool ok = false;
    withDatabase(file, [&](QSqlDatabase& db) {
        Schema::createCoreTables(db);
        ok = layout == Layout::Oldest || Schema::UpdateDatabase(db).ok;
    });
    // Enough vouchers to fill several pages, so a damaged page leaves others readable.
    return ok
        && exec(file,
            { QStringLiteral("INSERT INTO tl (tlNumero, tlNimi, tlKuvaus) VALUES (1910, 'Pankkitili', ' '), "
                             "(2250, 'Edellisten tilikausien ylijäämä', ' '), (5000, 'Jäsenmaksut', ' ')"),
                QStringLiteral("INSERT INTO \"to\" (toNumero, toPvm, toSelite) "
                               "VALUES (1, '2011-02-01', 'Jäsenmaksu O''Brien')"),
                QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) VALUES "
                               "(1, 1, 'D', 255000, 'Jäsenmaksu'), (1, 3, 'K', 255000, 'Jäsenmaksu')"),
                QStringLiteral(
                    "WITH RECURSIVE n (i) AS (SELECT 2 UNION ALL SELECT i + 1 FROM n WHERE i < 401) "
                    "INSERT INTO \"to\" (toNumero, toPvm, toSelite) SELECT i, '2011-03-01', "
                    "'Tosite numero ' || i || ' jolla on pitkähkö selite sivujen täyttämiseksi' "
                    "FROM n") });
}
