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
    void iniRoundTrip();
    void iniKeepsWhatItDoesNotUnderstand();
    void installationDefaultsAreStored();
    void installationValuesAreRead_data();
    void installationValuesAreRead();
    void unreadableIniGivesMessageAndDefaults();
    void bookkeepingDefaultsFromToday_data();
    void bookkeepingDefaultsFromToday();
    void bookkeepingRoundTrip();
    void badStoredValuesFallBack();
};

void tst_Settings::iniRoundTrip()
{
    TestEnv env;
    {
        IniSettingsStore ini(env.iniFile());
        QVERIFY(ini.loadProblem().isEmpty());
        QVERIFY(ini.write(QStringLiteral("Database"), QStringLiteral("/koti/seura/Jäsen ry.mdb")));
        QVERIFY(ini.write(QStringLiteral("MultiDb"), QStringLiteral("1")));
        QVERIFY(ini.write(QStringLiteral("Database"), QStringLiteral("/koti/seura/toinen.mdb")));
    }
    QCOMPARE(env.readIni(), QStringLiteral("[VORKAM]\nDatabase=/koti/seura/toinen.mdb\nMultiDb=1\n"));
    IniSettingsStore again(env.iniFile());
    QCOMPARE(again.read(QStringLiteral("database"), QStringLiteral("x")),
        QStringLiteral("/koti/seura/toinen.mdb"));
    QCOMPARE(again.read(QStringLiteral("Puuttuva"), QStringLiteral("oletus")), QStringLiteral("oletus"));
    again.setSection(QStringLiteral("MUU"));
    QCOMPARE(again.read(QStringLiteral("Database"), QStringLiteral("ei")), QStringLiteral("ei"));
}

void tst_Settings::iniKeepsWhatItDoesNotUnderstand()
{
    TestEnv env;
    const QByteArray garbled(
        "\xff\xfe roskaa\n[MUU]\nDatabase=/muu.mdb\n; kommentti\n[VORKAM]\r\nMultiDb=2\r\n"
        "rikkinainen rivi\n\x01\x02\n");
    env.writeIni(garbled);
    IniSettingsStore ini(env.iniFile());
    QCOMPARE(ini.read(QStringLiteral("Database"), QStringLiteral("-")), QStringLiteral("-"));
    QCOMPARE(ini.read(QStringLiteral("MultiDb"), QStringLiteral("0")), QStringLiteral("2"));
    QVERIFY(ini.write(QStringLiteral("Database"), QStringLiteral("/uusi.mdb")));
    const QByteArray after = TestEnv::readFile(env.iniFile());
    // Every line that was there is still there; the new key went into the VORKAM section.
    QVERIFY(
        after.startsWith("\xff\xfe roskaa\n[MUU]\nDatabase=/muu.mdb\n; kommentti\n[VORKAM]\nMultiDb=2\n"));
    QVERIFY(after.contains("rikkinainen rivi\n\x01\x02\nDatabase=/uusi.mdb\n"));
    QCOMPARE(
        IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), QStringLiteral("/uusi.mdb"));
}

void tst_Settings::installationDefaultsAreStored()
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
    // MultiDb keeps its default without being written.
    QCOMPARE(ini.read(QStringLiteral("MultiDb"), QStringLiteral("puuttuu")), QStringLiteral("puuttuu"));

    // An empty value counts as missing; a folder ending in "/" is joined without doubling it.
    Paths::setDataDir(env.path(QStringLiteral("data/")));
    env.writeIni("[VORKAM]\nDatabase=\n");
    ProgramSettings::loadInstallation();
    QCOMPARE(ProgramSettings::installation().Database, env.path(QStringLiteral("data/demo1.mdb")));
}

void tst_Settings::installationValuesAreRead_data()
{
    QTest::addColumn<QByteArray>("multiDb");
    QTest::addColumn<bool>("expected");
    QTest::newRow("0") << QByteArray("0") << false;
    QTest::newRow("-1 counts as yes") << QByteArray("-1") << true;
    QTest::newRow("text is no") << QByteArray("kyllä") << false;
}

void tst_Settings::installationValuesAreRead()
{
    QFETCH(QByteArray, multiDb);
    QFETCH(bool, expected);
    TestEnv env;
    env.writeIni("[VORKAM]\nDatabase=/seura/seura.mdb\nDatabaseBackup=/tikku/\nMultiDb=" + multiDb + "\n");
    QCOMPARE(ProgramSettings::loadInstallation(), QString());
    QCOMPARE(ProgramSettings::installation().Database, QStringLiteral("/seura/seura.mdb"));
    QCOMPARE(ProgramSettings::installation().DatabaseBackup, QStringLiteral("/tikku/"));
    QCOMPARE(ProgramSettings::installation().MultiDb, expected);
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

void tst_Settings::bookkeepingDefaultsFromToday_data()
{
    QTest::addColumn<QDate>("today");
    QTest::newRow("new year's day") << QDate(2027, 1, 1);
    QTest::newRow("new year's eve of a leap year") << QDate(2024, 12, 31);
}

void tst_Settings::bookkeepingDefaultsFromToday()
{
    QFETCH(QDate, today);
    TestEnv env;
    const QString file = env.path(QStringLiteral("uusi.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    withDatabase(file, [&](QSqlDatabase& db) { ProgramSettings::loadBookkeeping(db, file, today); });
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    QCOMPARE(s.TilikausiAlku, QDate(today.year(), 1, 1));
    QCOMPARE(s.TilikausiLoppu, QDate(today.year(), 12, 31));
    QCOMPARE(s.EdTilikausiAlku, QDate(today.year() - 1, 1, 1));
    QCOMPARE(s.EdTilikausiLoppu, QDate(today.year() - 1, 1, 1));
    QCOMPARE(s.LaskettavaTili, 0);
    QCOMPARE(s.Fontti, QStringLiteral("Times New Roman"));
    QCOMPARE(s.FonttiKoko, qint16(10));
    QVERIFY(!s.VanhatTositteet);
    QCOMPARE(s.Seurannimi, QStringLiteral("uusi"));
}

void tst_Settings::bookkeepingRoundTrip()
{
    TestEnv env;
    const QString file = env.path(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    BookkeepingSettings& s = ProgramSettings::bookkeeping();
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
    withDatabase(file, [&](QSqlDatabase& db) {
        ProgramSettings::loadBookkeeping(db, file);
        QSqlQuery q(db);
        // One row per key, dates in the Finnish short form.
        q.exec(QStringLiteral("SELECT COUNT(*), COUNT(DISTINCT setKey) FROM Settings"));
        q.next();
        QCOMPARE(q.value(0).toInt(), q.value(1).toInt());
        q.exec(QStringLiteral("SELECT setString FROM Settings WHERE setKey = 'TilikausiLoppu'"));
        q.next();
        QCOMPARE(q.value(0).toString(), QStringLiteral("30.6.2012"));
    });
    QCOMPARE(s.TilikausiAlku, QDate(2011, 7, 1));
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

void tst_Settings::badStoredValuesFallBack()
{
    TestEnv env;
    const QString file = env.path(QStringLiteral("huono.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    withDatabase(file, [&](QSqlDatabase& db) {
        DbSettingsStore store(db);
        store.write(QStringLiteral("TilikausiAlku"), QStringLiteral("30.2.2011"));
        store.write(QStringLiteral("TilikausiLoppu"), QStringLiteral("2011-12-31"));
        store.write(QStringLiteral("LaskettavaTili"), QStringLiteral("12abc"));
        store.write(QStringLiteral("VanhatTositteet"), QStringLiteral("kyllä"));
        store.write(QStringLiteral("FonttiKoko"), QString());
        // Rows written by hand with another case are the same settings, read and written in
        // place rather than added again.
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("INSERT INTO Settings (setSection, setKey, setString) VALUES "
                                      "('Vorkam', 'seurannimi', 'Käsin kirjoitettu ry')")));
        QCOMPARE(store.read(QStringLiteral("Seurannimi"), QString()), QStringLiteral("Käsin kirjoitettu ry"));
        QVERIFY(store.write(QStringLiteral("SEURANNIMI"), QStringLiteral("Korjattu ry")));
        QVERIFY(q.exec(
            QStringLiteral("SELECT COUNT(*), MAX(setString) FROM Settings WHERE setKey = 'seurannimi'")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 1);
        QCOMPARE(q.value(1).toString(), QStringLiteral("Korjattu ry"));
        ProgramSettings::loadBookkeeping(db, file, QDate(2026, 5, 5));
    });
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    QCOMPARE(s.TilikausiAlku, QDate(2026, 1, 1));
    QCOMPARE(s.TilikausiLoppu, QDate(2026, 12, 31));
    QCOMPARE(s.LaskettavaTili, 12);
    QVERIFY(!s.VanhatTositteet);
    QCOMPARE(s.FonttiKoko, qint16(0));
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_Settings.moc"
