#include "TestEnv.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

class tst_Settings : public QObject {
    Q_OBJECT

private slots:
    void iniKeepsWhatItDoesNotUnderstand();
    void installationDefaultsAreStoredAndValuesRead();
    void unreadableIniGivesMessageAndDefaults();
    void bookkeeping();
};

// Lines the ini file does not understand are kept; a key is read whatever its case and written in
// place, in the VORKAM section.
void tst_Settings::iniKeepsWhatItDoesNotUnderstand()
{
    TestEnv env;
    const QByteArray garbled(
        "\xff\xfe roskaa\n[MUU]\nDatabase=/muu.mdb\n; kommentti\n[VORKAM]\r\nMultiDb=2\r\n"
        "rikkinainen rivi\n\x01\x02\n");
    env.writeIni(garbled);
    IniSettingsStore ini(env.iniFile());
    QCOMPARE(ini.read(QStringLiteral("Database"), QStringLiteral("-")), QStringLiteral("-"));
    QCOMPARE(ini.read(QStringLiteral("multidb"), QStringLiteral("0")), QStringLiteral("2"));
    QVERIFY(ini.write(QStringLiteral("Database"), QStringLiteral("/uusi.mdb")));
    QVERIFY(ini.write(QStringLiteral("Database"), QStringLiteral("/koti/seura/Jäsen ry.mdb")));
    QCOMPARE(TestEnv::readFile(env.iniFile()),
        QByteArray("\xff\xfe roskaa\n[MUU]\nDatabase=/muu.mdb\n; kommentti\n[VORKAM]\nMultiDb=2\n"
                   "rikkinainen rivi\n\x01\x02\nDatabase=/koti/seura/Jäsen ry.mdb\n"));
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("DATABASE"), QString()),
        QStringLiteral("/koti/seura/Jäsen ry.mdb"));
}

void tst_Settings::installationDefaultsAreStoredAndValuesRead()
{
    TestEnv env;
    QCOMPARE(ProgramSettings::loadInstallation(), QString());
    const InstallationSettings& s = ProgramSettings::installation();
    QCOMPARE(s.Database, env.path(QStringLiteral("data/demo1.mdb")));
    QCOMPARE(s.DatabaseBackup, env.path(QStringLiteral("data/varmistukset/")));
    QVERIFY(!s.MultiDb);
    IniSettingsStore ini(env.iniFile());
    QCOMPARE(ini.read(QStringLiteral("AppPath"), {}), env.programDir());
    QCOMPARE(ini.read(QStringLiteral("Database"), {}), s.Database);
    QCOMPARE(ini.read(QStringLiteral("DatabaseBackup"), {}), s.DatabaseBackup);

    // Stored values are used as they stand; any number but 0 says yes.
    env.writeIni("[VORKAM]\nDatabase=/seura/seura.mdb\nDatabaseBackup=/tikku/\nMultiDb=-1\n");
    QCOMPARE(ProgramSettings::loadInstallation(), QString());
    QCOMPARE(s.Database, QStringLiteral("/seura/seura.mdb"));
    QCOMPARE(s.DatabaseBackup, QStringLiteral("/tikku/"));
    QVERIFY(s.MultiDb);
}

void tst_Settings::unreadableIniGivesMessageAndDefaults()
{
    TestEnv env;
    // The ini file's name is taken by a folder: it can be neither read nor written.
    QVERIFY(QDir().mkpath(env.iniFile()));
    const QString problem = ProgramSettings::loadInstallation();
    QVERIFY2(problem.contains(QStringLiteral("ei voi lukea")), qPrintable(problem));
    QCOMPARE(ProgramSettings::installation().Database, env.path(QStringLiteral("data/demo1.mdb")));
    QVERIFY(!ProgramSettings::saveDatabase());
}

// Missing settings take their defaults from today; stored values that cannot be read fall back to
// them, and a number is read as far as it has digits. What is saved is read back as it was.
void tst_Settings::bookkeeping()
{
    TestEnv env;
    const QString file = env.path(QStringLiteral("uusi.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    withDatabase(file, [&](QSqlDatabase& db) {
        DbSettingsStore store(db);
        store.write(QStringLiteral("TilikausiAlku"), QStringLiteral("30.2.2011"));
        store.write(QStringLiteral("LaskettavaTili"), QStringLiteral("12abc"));
        store.write(QStringLiteral("VanhatTositteet"), QStringLiteral("kyllä"));
        // A row written by hand with another case is the same setting, read and written in place.
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("INSERT INTO Settings (setSection, setKey, setString) "
                                                  "VALUES ('Vorkam', 'email', 'kasin@seura.fi')")));
        QCOMPARE(store.read(QStringLiteral("Email"), QString()), QStringLiteral("kasin@seura.fi"));
        QVERIFY(store.write(QStringLiteral("EMAIL"), QStringLiteral("korjattu@seura.fi")));
        ProgramSettings::loadBookkeeping(db, file, QDate(2024, 12, 31));
    });
    BookkeepingSettings& s = ProgramSettings::bookkeeping();
    QCOMPARE(s.TilikausiAlku, QDate(2024, 1, 1));
    QCOMPARE(s.TilikausiLoppu, QDate(2024, 12, 31));
    QCOMPARE(s.EdTilikausiLoppu, QDate(2023, 1, 1));
    QCOMPARE(s.LaskettavaTili, 12);
    QVERIFY(!s.VanhatTositteet);
    QCOMPARE(s.Email, QStringLiteral("korjattu@seura.fi"));
    QCOMPARE(s.Fontti, QStringLiteral("Times New Roman"));
    QCOMPARE(s.FonttiKoko, qint16(10));
    QCOMPARE(s.Seurannimi, QStringLiteral("uusi"));

    s.TilikausiAlku = QDate(2011, 7, 1);
    s.TilikausiLoppu = QDate(2012, 6, 30);
    s.EdTilikausiAlku = QDate(2010, 7, 1);
    s.EdTilikausiLoppu = QDate(2011, 6, 30);
    s.VoittoTaseella = 4;
    s.VaakaTulostus = true;
    s.MargOik = 1;
    s.MargVas = 2;
    s.MargYla = 3;
    s.MargAla = 4;
    s.Seurannimi = QStringLiteral("Kalle's Kerho ry");
    withDatabase(file, [](QSqlDatabase& db) { QVERIFY(ProgramSettings::saveBookkeeping(db)); });

    ProgramSettings::bookkeeping() = BookkeepingSettings::defaults(QDate(2000, 1, 1));
    withDatabase(file, [&](QSqlDatabase& db) { ProgramSettings::loadBookkeeping(db, file); });
    QCOMPARE(s.TilikausiAlku, QDate(2011, 7, 1));
    QCOMPARE(s.TilikausiLoppu, QDate(2012, 6, 30));
    QCOMPARE(s.EdTilikausiLoppu, QDate(2011, 6, 30));
    QCOMPARE(s.VoittoTaseella, 4);
    QVERIFY(s.VaakaTulostus);
    QCOMPARE(s.Seurannimi, QStringLiteral("Kalle's Kerho ry"));
    const ReportMargins& m = ProgramSettings::reportMargins();
    QCOMPARE(m.right, 48);
    QCOMPARE(m.left, 96);
    QCOMPARE(m.top, 144);
    QCOMPARE(m.bottom, 192);
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_Settings.moc"
