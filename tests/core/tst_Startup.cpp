#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/FileOps.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"
#include "core/Startup.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTest>

namespace {

const QString ReadOnlyInfo = QStringLiteral(
    "information: Tietokanta on kirjoitussuojatussa tilassa.\nEnnen avaamista Vorkamissa sen tulee olla "
    "kirjoitettavassa tilassa.");
const QString ReadOnlyQuestion
    = QStringLiteral("question: Haluatko, että Vorkam muuttaa tietokannan kirjoitettavaan tilaan?");
const QString NotCleared
    = QStringLiteral("information: Kirjoitussuojauksen poistaminen ei jostain syystä onnistunut.");
const QString NotFound
    = QStringLiteral("information: Tietokantaa ei löydy, korjaa asetuksista tietokannan nimi");
const QString TryDefault = QStringLiteral("question: Yritetäänkö avata oletustietokanta?");
const QString Damaged = QStringLiteral("plain: Tietokanta on vioittunut edellisen käyttökerran lopetuksen "
                                       "yhteydessä, yritän korjata tietokannan. Odota hetki.");
const QString RepairFailed = QStringLiteral("plain: Tietokannan korjaus ei onnistunut. Palauta tietokanta "
                                            "varmuuskopiolta ennen kuin jatkat Vorkamin käyttöä.");

Startup::Result runStartup(const QString& currency = QStringLiteral("1 234,50 €"))
{
    Startup startup;
    startup.formatCurrency = [currency] { return currency; };
    return startup.run();
}

void setDatabase(const TestEnv& env, const QString& file, const QByteArray& extra = QByteArray())
{
    env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n" + extra);
}

bool writable(const QString& file) { return QFileInfo(file).permissions() & QFileDevice::WriteOwner; }

// Books at `name` in the test's folder, named in the ini file; empty when they could not be made.
QString booksInUse(const TestEnv& env, const QString& name, TestEnv::Layout layout = TestEnv::Layout::Current)
{
    const QString file = env.path(name);
    if (!TestEnv::createDatabase(file, layout))
        return {};
    setDatabase(env, file);
    return file;
}

// The `nth` leaf page (numbered from 1) of a table or an index.
int leafPage(const QString& file, const QString& name, int nth)
{
    int page = 0;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT pageno FROM dbstat WHERE name = ? AND pagetype = 'leaf' ORDER BY "
                                 "pageno LIMIT 1 OFFSET ?"));
        q.addBindValue(name);
        q.addBindValue(nth);
        if (q.exec() && q.next())
            page = q.value(0).toInt();
    });
    return page;
}

// The bytes of good books after `damage`: a page of noise, a cut to a percentage, a bare header.
QByteArray damaged(const QString& file, const QString& damage)
{
    QByteArray bytes = TestEnv::readFile(file);
    int page = 0;
    if (damage == u"voucher page")
        page = leafPage(file, QStringLiteral("to"), 2);
    else if (damage == u"index")
        page = leafPage(file, QStringLiteral("ix_to_toNumero"), 0);
    else if (damage == u"accounts")
        page = leafPage(file, QStringLiteral("tl"), 0);
    else if (damage == u"header")
        return QByteArray("SQLite format 3\0", 16) + QByteArray(84, '\0');
    else
        return bytes.left(bytes.size() * damage.toInt() / 100);
    for (int i = (page - 1) * 4096; i < page * 4096 && i < bytes.size(); ++i)
        bytes[i] = char(0xA5 ^ (i & 0xFF));
    return bytes;
}

} // namespace

class tst_Startup : public QObject {
    Q_OBJECT

private slots:
    void cleanOpenUpgradesOldestLayout();
    void currencyInMarksWarns();
    void readOnly_data();
    void readOnly();
    void missingDatabase_data();
    void missingDatabase();
    void firstStartOpensOwnDemoCopy_data();
    void firstStartOpensOwnDemoCopy();
    void damagedFileIsRepaired_data();
    void damagedFileIsRepaired();
    void repairNotPutInPlace_data();
    void repairNotPutInPlace();
    void jetFileIsConvertedOnlyWhenAsked_data();
    void jetFileIsConvertedOnlyWhenAsked();
    void associationChoice_data();
    void associationChoice();
};

void tst_Startup::cleanOpenUpgradesOldestLayout()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = booksInUse(env, QStringLiteral("vanha seura.mdb"), TestEnv::Layout::Oldest);
    const Startup::Result r = runStartup();
    QCOMPARE(dialogs.transcript(), QStringList());
    QVERIFY(r.databaseOpen && r.upgraded && !r.repaired);
    // The start-up's own connection is closed at the end.
    QVERIFY(QSqlDatabase::connectionNames().isEmpty());
    // A second start finds nothing more to upgrade and writes nothing at all.
    const QByteArray upgraded = TestEnv::readFile(file);
    const QDateTime modified = QFileInfo(file).lastModified();
    QVERIFY(runStartup().databaseOpen);
    QCOMPARE(TestEnv::readFile(file), upgraded);
    QCOMPARE(QFileInfo(file).lastModified(), modified);
}

void tst_Startup::currencyInMarksWarns()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    booksInUse(env, QStringLiteral("seura.mdb"));
    runStartup(QStringLiteral("1 234,50 MK"));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information), QStringList { Startup::currencyWarning() });
}

void tst_Startup::readOnly_data()
{
    QTest::addColumn<bool>("folder"); // the folder is read-only, else the file
    QTest::addColumn<bool>("answerYes");
    QTest::addColumn<bool>("clearingWorks");
    QTest::addColumn<bool>("readOnly"); // opened for reading only
    QTest::addColumn<QStringList>("shown");
    const QStringList asked { ReadOnlyInfo, ReadOnlyQuestion };
    QTest::newRow("file, No: opened for reading") << false << false << true << true << asked;
    QTest::newRow("file, Yes: made writable") << false << true << true << false << asked;
    QTest::newRow("file, Yes, but the flag stays: opened for reading")
        << false << true << false << true << asked + QStringList { NotCleared };
    QTest::newRow("folder: opened for reading, nothing asked")
        << true << false << true << true
        << QStringList { "information: Tietokannan kansioon ei voi kirjoittaa, joten kirjanpito avataan vain "
                         "luettavaksi:\n%1" };
}

void tst_Startup::readOnly()
{
    QFETCH(bool, folder);
    QFETCH(bool, answerYes);
    QFETCH(bool, clearingWorks);
    QFETCH(bool, readOnly);
    QFETCH(QStringList, shown);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString dir = env.path(QStringLiteral("jaettu"));
    QVERIFY(QDir().mkpath(dir));
    const QString file = booksInUse(env, QStringLiteral("jaettu/seura.mdb"), TestEnv::Layout::Oldest);
    const QByteArray before = TestEnv::readFile(file);
    QVERIFY(QFile::setPermissions(folder ? dir : file,
        QFileDevice::ReadOwner | (folder ? QFileDevice::ExeOwner : QFileDevice::ReadGroup)));
    if (!clearingWorks)
        FileOps::instance().makeWritable = [](const QString&) { return false; };
    if (!folder)
        answerYes ? dialogs.answerYes() : dialogs.answerNo();

    const Startup::Result r = runStartup();
    QFile::setPermissions(dir, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    // Read-only books are a mode, not a stream of errors: no upgrade is tried.
    QCOMPARE(dialogs.transcript(), shown.replaceInStrings(QStringLiteral("%1"), dir));
    QVERIFY(r.databaseOpen);
    QCOMPARE(r.readOnly, readOnly);
    QCOMPARE(r.upgraded, !readOnly);
    QCOMPARE(writable(file), !readOnly || folder);
    QCOMPARE(r.caption.endsWith(QStringLiteral(" (vain luku)")), readOnly);
    if (readOnly) {
        // The program's own connection reads the books and cannot write them.
        QSqlDatabase db = DBC::instance().AvaaDB();
        QVERIFY(DatabaseFile::isReadOnly(db));
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("SELECT COUNT(*) FROM tl")) && q.next());
        QCOMPARE(q.value(0).toInt(), 3);
        QVERIFY(!q.exec(QStringLiteral("DELETE FROM tl")));
        DBC::instance().SuljeDB();
        QCOMPARE(TestEnv::readFile(file), before);
    }
}

void tst_Startup::missingDatabase_data()
{
    QTest::addColumn<bool>("demoInstalled");
    QTest::addColumn<QStringList>("answers"); // to "open the default?"
    QTest::newRow("default taken") << true << QStringList { "yes" };
    QTest::newRow("default refused") << true << QStringList { "no" };
    QTest::newRow("default missing: asked again") << false << QStringList { "yes", "no" };
}

void tst_Startup::missingDatabase()
{
    QFETCH(bool, demoInstalled);
    QFETCH(QStringList, answers);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString demo = env.programDir() + QStringLiteral("/demo1.mdb");
    if (demoInstalled)
        QVERIFY(TestEnv::createDatabase(demo));
    const QString missing = env.path(QStringLiteral("ei-ole.mdb"));
    setDatabase(env, missing);
    for (const QString& answer : answers)
        answer == u"yes" ? dialogs.answerYes() : dialogs.answerNo();

    const Startup::Result r = runStartup();
    QStringList expected;
    for (qsizetype i = 0; i < answers.size(); ++i)
        expected << NotFound << TryDefault;
    QCOMPARE(dialogs.transcript(), expected);
    const QString remembered = IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {});
    if (answers.last() == u"no") {
        QVERIFY(!r.databaseOpen);
        QCOMPARE(r.caption, QStringLiteral("Vorkam"));
        QCOMPARE(remembered, missing);
        QVERIFY(!QFile::exists(missing));
        return;
    }
    QVERIFY(r.databaseOpen && r.defaultTaken && r.upgraded);
    // The default is the user's copy of the demo, remembered once it has been opened and upgraded.
    const QString own = env.path(QStringLiteral("data/demo1.mdb"));
    QCOMPARE(ProgramSettings::installation().Database, own);
    QCOMPARE(remembered, own);
    QVERIFY(r.caption.endsWith(QStringLiteral(" - demo1.mdb")));
}

void tst_Startup::firstStartOpensOwnDemoCopy_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<bool>("ownExists");
    QTest::addColumn<bool>("shippedReadOnly");
    QTest::addColumn<bool>("dataBlocked");
    QTest::newRow("no settings yet") << QByteArray() << false << false << false;
    QTest::newRow("installed demo is read-only") << QByteArray() << false << true << false;
    QTest::newRow("settings name the program's demo") << QByteArray("PROGRAM") << false << false << false;
    QTest::newRow("own copy is kept") << QByteArray() << true << false << false;
    QTest::newRow("data folder cannot be made") << QByteArray() << false << false << true;
}

void tst_Startup::firstStartOpensOwnDemoCopy()
{
    QFETCH(QByteArray, ini);
    QFETCH(bool, ownExists);
    QFETCH(bool, shippedReadOnly);
    QFETCH(bool, dataBlocked);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString shipped = env.programDir() + QStringLiteral("/demo1.mdb");
    const QString own = env.path(QStringLiteral("data/demo1.mdb"));
    QVERIFY(TestEnv::createDatabase(shipped));
    if (ownExists) {
        QVERIFY(TestEnv::createDatabase(own));
        withDatabase(
            own, [](QSqlDatabase& db) { QSqlQuery(db).exec(QStringLiteral("CREATE TABLE oma(x)")); });
    }
    if (dataBlocked) {
        QVERIFY(QDir(env.path(QStringLiteral("data"))).removeRecursively());
        QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("data")), "tiedosto kansion paikalla"));
        dialogs.answerNo();
    }
    if (shippedReadOnly)
        QVERIFY(QFile::setPermissions(shipped, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    if (ini == "PROGRAM")
        setDatabase(env, shipped);
    const QByteArray shippedBytes = TestEnv::readFile(shipped);

    const Startup::Result r = runStartup();
    // Nothing is ever written into the program's folder.
    QCOMPARE(TestEnv::readFile(shipped), shippedBytes);
    QCOMPARE(QDir(env.programDir()).entryList(QDir::Files | QDir::Hidden), QStringList { "demo1.mdb" });
    if (dataBlocked) {
        QVERIFY(!r.databaseOpen);
        QVERIFY2(
            dialogs.transcript().value(0).contains(QStringLiteral("Esimerkkiyhdistyksen kirjanpitoa ei voi "
                                                                  "kopioida")),
            qPrintable(dialogs.transcript().join(u'\n')));
        return;
    }
    QCOMPARE(dialogs.transcript(), QStringList());
    QVERIFY(r.databaseOpen && !r.readOnly);
    QVERIFY(writable(own));
    QCOMPARE(ProgramSettings::installation().Database, own);
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), own);
    bool kept = false;
    withDatabase(
        own, [&](QSqlDatabase& db) { kept = QSqlQuery(db).exec(QStringLiteral("SELECT * FROM oma")); });
    QCOMPARE(kept, ownExists);
}

void tst_Startup::damagedFileIsRepaired_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<bool>("allSaved");
    QTest::newRow("a garbled page of vouchers") << "voucher page" << false;
    QTest::newRow("an index page garbled: the check fails, the rows are whole") << "index" << true;
}

// Repaired from what can be read, told per table, the original kept, opened in the same run.
void tst_Startup::damagedFileIsRepaired()
{
    QFETCH(QString, damage);
    QFETCH(bool, allSaved);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = booksInUse(env, QStringLiteral("seura.mdb"));
    const QByteArray bytes = damaged(file, damage);
    QVERIFY(TestEnv::writeFile(file, bytes));

    const Startup::Result r = runStartup();
    const QStringList shown = dialogs.transcript();
    QCOMPARE(shown.size(), 2);
    QCOMPARE(shown.first(), Damaged);
    QVERIFY(r.databaseOpen && r.repaired && r.repairedOpen && !r.upgraded);
    const QString told = shown.last();
    QVERIFY2(told.startsWith(QStringLiteral("information: Tietokanta korjattiin.")), qPrintable(told));
    QCOMPARE(told.contains(QStringLiteral("Kaikki rivit saatiin talteen.")), allSaved);
    // The damaged original survives byte for byte; the repaired file takes its place.
    QCOMPARE(TestEnv::readFile(file + QStringLiteral("OLD")), bytes);
    QVERIFY(!QFile::exists(file + u'2'));
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("PRAGMA integrity_check")) && q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("ok"));
        // What the user was told is what the repaired books hold.
        QVERIFY(q.exec(QStringLiteral("SELECT COUNT(*) FROM \"to\"")) && q.next());
        const int vouchers = q.value(0).toInt();
        QVERIFY(told.contains(QStringLiteral("Tositteet: 401 / %1\n").arg(vouchers))
            || told.contains(QStringLiteral("Tositteet: 401 / %1 – %2 riviä menetettiin")
                                 .arg(vouchers)
                                 .arg(401 - vouchers)));
        QCOMPARE(vouchers == 401, allSaved);
        QVERIFY(vouchers > 0);
        // Keys once used are never given again.
        QVERIFY(q.exec(QStringLiteral("SELECT seq FROM sqlite_sequence WHERE name = 'to'")) && q.next());
        QVERIFY(q.value(0).toInt() >= 401);
    });

    // The next start opens the repaired file cleanly and upgrades it.
    dialogs.clear();
    const Startup::Result next = runStartup();
    QCOMPARE(dialogs.transcript(), QStringList());
    QVERIFY(next.databaseOpen && next.upgraded);
}

void tst_Startup::repairNotPutInPlace_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QStringList>("told"); // after the first message, each a part of one
    QTest::addColumn<QString>("obstacle"); // "OLD": an earlier repair's OLD file; "replace": no rename
    QTest::newRow("only the header: nothing found to tell")
        << "header" << QStringList { RepairFailed } << QString();
    QTest::newRow("no account is left") << "accounts" << QStringList { RepairFailed, "tilit" } << QString();
    QTest::newRow("the first 60 %: no voucher is left")
        << "60" << QStringList { RepairFailed, "Tositteet: 401 / 0 – 401 riviä menetettiin" } << QString();
    QTest::newRow("an OLD file of an earlier repair")
        << "voucher page" << QStringList { "plain: Vioittuneen tietokannan uudelleen nimeäminen ei onnistu." }
        << "OLD";
    QTest::newRow("the repaired file cannot take the books' name")
        << "voucher page" << QStringList { "plain: Korjatun tietokannan uudelleen nimeäminen ei onnistu." }
        << "replace";
}

// Books from which no account or no voucher can be saved are never replaced by empty ones, and a
// repaired file that cannot take their place leaves the damaged books under their own name.
void tst_Startup::repairNotPutInPlace()
{
    QFETCH(QString, damage);
    QFETCH(QStringList, told);
    QFETCH(QString, obstacle);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = booksInUse(env, QStringLiteral("seura.mdb"));
    const QByteArray bytes = damaged(file, damage);
    QVERIFY(TestEnv::writeFile(file, bytes));
    if (obstacle == u"OLD")
        QVERIFY(TestEnv::writeFile(file + QStringLiteral("OLD"), "edellinen korjaus"));
    else if (obstacle == u"replace")
        FileOps::instance().replace = [](const QString&, const QString&) { return false; };

    const Startup::Result r = runStartup();
    const QStringList shown = dialogs.transcript();
    QCOMPARE(shown.size(), told.size() + 1);
    QCOMPARE(shown.first(), Damaged);
    for (qsizetype i = 0; i < told.size(); ++i)
        QVERIFY2(shown.at(i + 1).contains(told.at(i)), qPrintable(shown.at(i + 1)));
    QVERIFY(!r.databaseOpen);
    QCOMPARE(TestEnv::readFile(file), bytes);
    // The repaired copy is left only when one was made; the OLD file is the earlier one or a copy.
    QCOMPARE(QFile::exists(file + u'2'), !obstacle.isEmpty());
    if (obstacle == u"OLD")
        QCOMPARE(TestEnv::readFile(file + QStringLiteral("OLD")), QByteArray("edellinen korjaus"));
    else
        QCOMPARE(TestEnv::readFile(file + QStringLiteral("OLD")), obstacle.isEmpty() ? QByteArray() : bytes);
}

void tst_Startup::jetFileIsConvertedOnlyWhenAsked_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<bool>("answerYes");
    QTest::addColumn<bool>("readOnlyFile");
    QTest::newRow("No: refused as before") << "vanha-seura-jet4.mdb" << false << false;
    QTest::newRow("Yes: converted and opened") << "seura-jet4.mdb" << true << false;
    // The old file is only read: its read-only flag asks nothing.
    QTest::newRow("Yes, read-only old file") << "seura-jet4.mdb" << true << true;
}

void tst_Startup::jetFileIsConvertedOnlyWhenAsked()
{
    QFETCH(QString, fixture);
    QFETCH(bool, answerYes);
    QFETCH(bool, readOnlyFile);
    const QString source = QStringLiteral(VORKAM_SHARED_DIR "/fixtures/jet/") + fixture;
    if (!QFile::exists(source))
        QSKIP("The old-format sample files are not beside the project.");
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("vanha.mdb"));
    QVERIFY(QFile::copy(source, file));
    QFile::setPermissions(
        file, readOnlyFile ? QFileDevice::ReadOwner : QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const QByteArray before = TestEnv::readFile(file);
    setDatabase(env, file);
    answerYes ? dialogs.answerYes() : dialogs.answerNo();
    const Startup::Result r = runStartup();
    const QStringList transcript = dialogs.transcript();
    QCOMPARE(transcript.size(), 2);
    QCOMPARE(transcript.at(0),
        QStringLiteral("question: Tietokanta %1 on vanhassa muodossa. Muunnetaanko se Vorkamin muotoon? "
                       "Alkuperäinen tiedosto säilytetään nimellä vanha-jet.mdb.")
            .arg(file));
    if (!answerYes) {
        QVERIFY(transcript.at(1).startsWith(
            QStringLiteral("error: Tietokanta %1 on vanhassa Jet-muodossa").arg(file)));
        QVERIFY(!r.databaseOpen);
        QCOMPARE(TestEnv::readFile(file), before);
        QCOMPARE(QDir(env.path(QString())).entryList(QStringList { QStringLiteral("vanha*") }),
            QStringList { QStringLiteral("vanha.mdb") });
        return;
    }
    QVERIFY(transcript.at(1).endsWith(QStringLiteral("Raportti on tallessa tiedostossa %1.")
                                          .arg(env.path(QStringLiteral("vanha-muunnos.txt")))));
    QVERIFY(r.databaseOpen && r.converted && r.upgraded && !r.readOnly);
    QCOMPARE(ProgramSettings::installation().Database, file);
    // The converted books' own settings are in use.
    QCOMPARE(ProgramSettings::bookkeeping().TilikausiAlku, QDate(2011, 1, 1));
    // The next start opens the converted books without a word.
    dialogs.clear();
    QVERIFY(runStartup().databaseOpen);
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_Startup::associationChoice_data()
{
    QTest::addColumn<QString>("current"); // where the choice starts
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("expected");
    textRow("chosen", "a.mdb", "b.mdb", "b.mdb");
    textRow("cancelled keeps the current", "a.mdb", "", "a.mdb");
    textRow("a folder starts the dialog there", "kirjat", "b.mdb", "b.mdb");
}

void tst_Startup::associationChoice()
{
    QFETCH(QString, current);
    QFETCH(QString, answer);
    QFETCH(QString, expected);
    TestEnv env;
    ScriptedDialogs dialogs;
    QVERIFY(TestEnv::createDatabase(env.path(QStringLiteral("a.mdb"))));
    QVERIFY(TestEnv::createDatabase(env.path(QStringLiteral("b.mdb"))));
    QDir().mkpath(env.path(QStringLiteral("kirjat")));
    setDatabase(env, env.path(current), "MultiDb=2\n");
    dialogs.answerOpenFile(answer.isEmpty() ? QString() : env.path(answer));
    runStartup();
    QCOMPARE(dialogs.shown().first().text, QStringLiteral("Seuran valinta | ") + env.path(current));
    QCOMPARE(ProgramSettings::installation().Database, env.path(expected));
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), env.path(expected));
}

QTEST_GUILESS_MAIN(tst_Startup)
#include "tst_Startup.moc"
