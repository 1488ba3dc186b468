#include "DBC.h"
#include "DatabaseFile.h"
#include "FileOps.h"
#include "ProgramSettings.h"
#include "Schema.h"
#include "ScriptedDialogs.h"
#include "SettingsStore.h"
#include "Startup.h"
#include "TestEnv.h"

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
const QString NotFound
    = QStringLiteral("information: Tietokantaa ei löydy, korjaa asetuksista tietokannan nimi");
const QString TryDefault = QStringLiteral("question: Yritetäänkö avata oletustietokanta?");
const QString Damaged = QStringLiteral("plain: Tietokanta on vioittunut edellisen käyttökerran lopetuksen "
                                       "yhteydessä, yritän korjata tietokannan. Odota hetki.");
const QString RepairFailed = QStringLiteral("plain: Tietokannan korjaus ei onnistunut. Palauta tietokanta "
                                            "varmuuskopiolta ennen kuin jatkat Vorkamin käyttöä.");
const QString RenameDamagedFailed
    = QStringLiteral("plain: Vioittuneen tietokannan uudelleen nimeäminen ei onnistu.");

Startup::Result runStartup()
{
    Startup startup;
    startup.formatCurrency = [] { return QStringLiteral("1 234,50 €"); };
    return startup.run();
}

void setDatabase(const TestEnv& env, const QString& file, const QByteArray& extra = QByteArray())
{
    env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n" + extra);
}

bool writable(const QString& file) { return QFileInfo(file).permissions() & QFileDevice::WriteOwner; }

// Overwrites one page (numbered from 1) with noise: a damaged page, the rest intact.
QByteArray garbled(QByteArray bytes, int page)
{
    const int size = 4096;
    for (int i = (page - 1) * size; i < page * size && i < bytes.size(); ++i)
        bytes[i] = char(0xA5 ^ (i & 0xFF));
    return bytes;
}

int rootPage(const QString& file, const QString& name)
{
    int page = 0;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT rootpage FROM sqlite_master WHERE name = ?"));
        q.addBindValue(name);
        if (q.exec() && q.next())
            page = q.value(0).toInt();
    });
    return page;
}

// The `nth` leaf page of a table or an index.
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

} // namespace

class tst_Startup : public QObject {
    Q_OBJECT

private slots:
    void cleanOpenUpgradesOldestLayout();
    void currencyInMarksWarns();
    void readOnlyFile_data();
    void readOnlyFile();
    void readOnlyFolder();
    void missingDatabase_data();
    void missingDatabase();
    void firstStartOpensOwnDemoCopy_data();
    void firstStartOpensOwnDemoCopy();
    void refusedDefaultLeavesNoDatabase();
    void missingDefaultAsksAgain();
    void damagedFileIsRepaired_data();
    void damagedFileIsRepaired();
    void repairThatSavesNoAccountsFails();
    void hopelessFileIsLeftAsItWas_data();
    void hopelessFileIsLeftAsItWas();
    void repairNotPutInPlace_data();
    void repairNotPutInPlace();
    void jetFileIsConvertedOnlyWhenAsked_data();
    void jetFileIsConvertedOnlyWhenAsked();
    void foreignDatabaseIsNotUpgraded();
    void associationChoice_data();
    void associationChoice();
};

void tst_Startup::cleanOpenUpgradesOldestLayout()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("vanha seura.mdb"));
    QVERIFY(TestEnv::createDatabase(file, TestEnv::Layout::Oldest));
    setDatabase(env, file);

    const Startup::Result r = runStartup();
    QCOMPARE(dialogs.transcript(), QStringList());
    QVERIFY(r.databaseOpen);
    QVERIFY(r.upgraded);
    QVERIFY(!r.repaired);
    withDatabase(file, [](QSqlDatabase& db) {
        QVERIFY(!Schema::tableMissing(db, QStringLiteral("vipPohjat")));
        QVERIFY(!Schema::fieldMissing(db, QStringLiteral("toE"), QStringLiteral("toEAutomaatti")));
        QVERIFY(Schema::queryPresent(db, QStringLiteral("viennitL")));
    });
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
    const QString file = env.path(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    setDatabase(env, file);
    Startup startup;
    startup.formatCurrency = [] { return QStringLiteral("1 234,50 MK"); };
    startup.run();
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information), QStringList { Startup::currencyWarning() });
}

void tst_Startup::readOnlyFile_data()
{
    QTest::addColumn<bool>("answerYes");
    QTest::addColumn<bool>("clearingWorks");
    QTest::addColumn<bool>("readOnly"); // opened for reading only
    QTest::newRow("No: opened for reading") << false << true << true;
    QTest::newRow("Yes: made writable") << true << true << false;
    QTest::newRow("Yes, but the flag stays: opened for reading") << true << false << true;
}

void tst_Startup::readOnlyFile()
{
    QFETCH(bool, answerYes);
    QFETCH(bool, clearingWorks);
    QFETCH(bool, readOnly);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("suojattu.mdb"));
    QVERIFY(TestEnv::createDatabase(file, TestEnv::Layout::Oldest));
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    const QByteArray before = TestEnv::readFile(file);
    setDatabase(env, file);
    if (!clearingWorks)
        FileOps::instance().makeWritable = [](const QString&) { return false; };
    answerYes ? dialogs.answerYes() : dialogs.answerNo();

    const Startup::Result r = runStartup();
    QStringList expected { ReadOnlyInfo, ReadOnlyQuestion };
    if (answerYes && !clearingWorks)
        expected.append(
            QStringLiteral("information: Kirjoitussuojauksen poistaminen ei jostain syystä onnistunut."));
    // Read-only books are a mode, not a stream of errors: no upgrade is tried.
    QCOMPARE(dialogs.transcript(), expected);
    QVERIFY(r.databaseOpen);
    QCOMPARE(r.readOnly, readOnly);
    QCOMPARE(r.upgraded, !readOnly);
    QCOMPARE(writable(file), !readOnly);
    QCOMPARE(r.caption.endsWith(QStringLiteral(" (vain luku)")), readOnly);
    if (readOnly) {
        QCOMPARE(TestEnv::readFile(file), before);
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

void tst_Startup::readOnlyFolder()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString folder = env.path(QStringLiteral("jaettu"));
    QVERIFY(QDir().mkpath(folder));
    const QString file = folder + QStringLiteral("/seura.mdb");
    QVERIFY(TestEnv::createDatabase(file));
    const QByteArray before = TestEnv::readFile(file);
    QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    setDatabase(env, file);
    const Startup::Result r = runStartup();
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QCOMPARE(dialogs.transcript(),
        QStringList {
            QStringLiteral("information: Tietokannan kansioon ei voi kirjoittaa, joten kirjanpito avataan "
                           "vain luettavaksi:\n")
            + folder });
    QVERIFY(r.databaseOpen && r.readOnly);
    QCOMPARE(TestEnv::readFile(file), before);
}

void tst_Startup::missingDatabase_data()
{
    QTest::addColumn<QString>("database");
    QTest::newRow("missing file") << QStringLiteral("ei-ole.mdb");
    QTest::newRow("missing folder") << QStringLiteral("ei-kansiota/seura.mdb");
    QTest::newRow("a folder") << QStringLiteral("kansio");
}

void tst_Startup::missingDatabase()
{
    QFETCH(QString, database);
    TestEnv env;
    ScriptedDialogs dialogs;
    QDir().mkpath(env.path(QStringLiteral("kansio")));
    QVERIFY(TestEnv::createDatabase(env.programDir() + QStringLiteral("/demo1.mdb")));
    setDatabase(env, env.path(database));
    dialogs.answerYes();

    const Startup::Result r = runStartup();
    QCOMPARE(dialogs.transcript(), (QStringList { NotFound, TryDefault }));
    QVERIFY(r.databaseOpen);
    QVERIFY(r.defaultTaken);
    QVERIFY(r.upgraded);
    // The default is the user's copy of the demo, remembered once it has been opened and upgraded.
    const QString own = env.path(QStringLiteral("data/demo1.mdb"));
    QCOMPARE(ProgramSettings::installation().Database, own);
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), own);
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
    }
    if (shippedReadOnly)
        QVERIFY(QFile::setPermissions(shipped, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    if (ini == "PROGRAM")
        setDatabase(env, shipped);
    const QByteArray shippedBytes = TestEnv::readFile(shipped);
    const QDateTime shippedTime = QFileInfo(shipped).lastModified();
    if (dataBlocked)
        dialogs.answerNo();

    const Startup::Result r = runStartup();
    // Nothing is ever written into the program's folder.
    QCOMPARE(TestEnv::readFile(shipped), shippedBytes);
    QCOMPARE(QFileInfo(shipped).lastModified(), shippedTime);
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
    QVERIFY(r.databaseOpen);
    QVERIFY(!r.readOnly);
    QVERIFY(writable(own));
    QCOMPARE(ProgramSettings::installation().Database, own);
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), own);
    bool kept = false;
    withDatabase(
        own, [&](QSqlDatabase& db) { kept = QSqlQuery(db).exec(QStringLiteral("SELECT * FROM oma")); });
    QCOMPARE(kept, ownExists);
}

void tst_Startup::refusedDefaultLeavesNoDatabase()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString missing = env.path(QStringLiteral("ei-ole.mdb"));
    setDatabase(env, missing);
    dialogs.answerNo();
    const Startup::Result r = runStartup();
    QCOMPARE(dialogs.transcript(), (QStringList { NotFound, TryDefault }));
    QVERIFY(!r.databaseOpen);
    QCOMPARE(r.caption, QStringLiteral("Vorkam"));
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), missing);
    QVERIFY(!QFile::exists(missing));
}

void tst_Startup::missingDefaultAsksAgain()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    setDatabase(env, env.path(QStringLiteral("ei-ole.mdb")));
    dialogs.answerYes().answerNo();
    const Startup::Result r = runStartup();
    QCOMPARE(dialogs.transcript(), (QStringList { NotFound, TryDefault, NotFound, TryDefault }));
    QVERIFY(!r.databaseOpen);
    QVERIFY(!QFile::exists(env.programDir() + QStringLiteral("/demo1.mdb")));
}

void tst_Startup::damagedFileIsRepaired_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<bool>("repaired");
    QTest::addColumn<bool>("allSaved");
    QTest::newRow("a garbled page of vouchers") << "voucher page" << true << false;
    QTest::newRow("an index page garbled: the check fails, the rows are whole") << "index" << true << true;
    QTest::newRow("the first 90 %") << "90" << true << false;
    QTest::newRow("the first 60 %: no voucher is left") << "60" << false << false;
}

// A damaged book is repaired from what can still be read, the user is told per table what was
// saved and what was lost, the original is kept, and the repaired books open in the same run.
// Books from which no voucher (or no account) can be saved are never replaced by empty ones.
void tst_Startup::damagedFileIsRepaired()
{
    QFETCH(QString, damage);
    QFETCH(bool, repaired);
    QFETCH(bool, allSaved);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    QByteArray bytes = TestEnv::readFile(file);
    QVERIFY(bytes.size() > 8 * 4096);
    if (damage == u"voucher page")
        bytes = garbled(bytes, leafPage(file, QStringLiteral("to"), 2));
    else if (damage == u"index")
        bytes = garbled(bytes, leafPage(file, QStringLiteral("ix_to_toNumero"), 0));
    else
        bytes = bytes.left(bytes.size() * damage.toInt() / 100);
    QVERIFY(TestEnv::writeFile(file, bytes));
    setDatabase(env, file);

    const Startup::Result r = runStartup();
    const QStringList shown = dialogs.transcript();
    QCOMPARE(shown.first(), Damaged);
    QCOMPARE(shown.size(), repaired ? 2 : 3);
    QCOMPARE(r.databaseOpen, repaired);
    QVERIFY(!r.upgraded);
    const QString told = shown.last();
    QVERIFY2(told.contains(QStringLiteral("Tositteet: 401 / ")), qPrintable(told));
    if (!repaired) {
        QCOMPARE(shown.at(1), RepairFailed);
        QVERIFY(told.contains(QStringLiteral("Tositteet: 401 / 0 – 401 riviä menetettiin")));
        QCOMPARE(TestEnv::readFile(file), bytes);
        QVERIFY(!QFile::exists(file + u'2') && !QFile::exists(file + QStringLiteral("OLD")));
        return;
    }
    QVERIFY(told.startsWith(QStringLiteral("information: Tietokanta korjattiin.")));
    QCOMPARE(told.contains(QStringLiteral("Kaikki rivit saatiin talteen.")), allSaved);
    QVERIFY(r.repaired && r.repairedOpen);
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
    QVERIFY(next.databaseOpen);
    QVERIFY(next.upgraded);
}

// Books from which no account can be saved are not replaced by empty books.
void tst_Startup::repairThatSavesNoAccountsFails()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    QByteArray bytes = garbled(TestEnv::readFile(file), rootPage(file, QStringLiteral("tl")));
    QVERIFY(TestEnv::writeFile(file, bytes));
    setDatabase(env, file);
    const Startup::Result r = runStartup();
    const QStringList shown = dialogs.transcript();
    QCOMPARE(shown.mid(0, 2), (QStringList { Damaged, RepairFailed }));
    QCOMPARE(shown.size(), 3);
    QVERIFY2(shown.last().contains(QStringLiteral("tilit")), qPrintable(shown.last()));
    QVERIFY(!r.databaseOpen);
    QCOMPARE(TestEnv::readFile(file), bytes);
    QVERIFY(!QFile::exists(file + u'2'));
    QVERIFY(!QFile::exists(file + QStringLiteral("OLD")));
}

void tst_Startup::hopelessFileIsLeftAsItWas_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("zero bytes") << QByteArray();
    QTest::newRow("text") << QByteArray("Tämä ei ole tietokanta vaan muistilista.\n");
    QTest::newRow("only the header survived") << QByteArray("SQLite format 3\0", 16) + QByteArray(84, '\0');
}

void tst_Startup::hopelessFileIsLeftAsItWas()
{
    QFETCH(QByteArray, content);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("roska.mdb"));
    QVERIFY(TestEnv::writeFile(file, content));
    setDatabase(env, file);
    const Startup::Result r = runStartup();
    QCOMPARE(dialogs.transcript(), (QStringList { Damaged, RepairFailed }));
    QVERIFY(!r.databaseOpen);
    QCOMPARE(TestEnv::readFile(file), content);
    QVERIFY(!QFile::exists(file + u'2'));
    QVERIFY(!QFile::exists(file + QStringLiteral("OLD")));
}

void tst_Startup::repairNotPutInPlace_data()
{
    QTest::addColumn<bool>("leftoverOld");
    QTest::addColumn<QString>("message");
    QTest::newRow("an OLD file of an earlier repair") << true << RenameDamagedFailed;
    QTest::newRow("the repaired file cannot take the books' name")
        << false << QStringLiteral("plain: Korjatun tietokannan uudelleen nimeäminen ei onnistu.");
}

// When the repaired file cannot be put in place, the damaged books stay under their own name (a
// program stopped at that moment finds them there), with the repaired file beside them.
void tst_Startup::repairNotPutInPlace()
{
    QFETCH(bool, leftoverOld);
    QFETCH(QString, message);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    const QByteArray bytes = garbled(TestEnv::readFile(file), 3);
    QVERIFY(TestEnv::writeFile(file, bytes));
    if (leftoverOld)
        QVERIFY(TestEnv::writeFile(file + QStringLiteral("OLD"), "edellinen korjaus"));
    else
        FileOps::instance().replace = [](const QString&, const QString&) { return false; };
    setDatabase(env, file);
    runStartup();
    QCOMPARE(dialogs.transcript(), (QStringList { Damaged, message }));
    QCOMPARE(TestEnv::readFile(file), bytes);
    QCOMPARE(TestEnv::readFile(file + QStringLiteral("OLD")),
        leftoverOld ? QByteArray("edellinen korjaus") : bytes);
    QVERIFY(QFile::exists(file + u'2'));
}

void tst_Startup::jetFileIsConvertedOnlyWhenAsked_data()
{
    QTest::addColumn<QString>("fixture");
    QTest::addColumn<bool>("answerYes");
    QTest::addColumn<bool>("readOnlyFile");
    QTest::newRow("No: refused as before") << "vanha-seura-jet4.mdb" << false << false;
    QTest::newRow("Yes: converted and opened") << "seura-jet4.mdb" << true << false;
    QTest::newRow("Yes, oldest layout: converted and upgraded") << "vanha-seura-jet4.mdb" << true << false;
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
    QCOMPARE(dialogs.failures(), QStringList());
    const QStringList transcript = dialogs.transcript();
    QCOMPARE(transcript.size(), 2);
    QCOMPARE(transcript.at(0),
        QStringLiteral("question: Tietokanta %1 on vanhassa muodossa. Muunnetaanko se Vorkamin muotoon? "
                       "Alkuperäinen tiedosto säilytetään nimellä vanha-jet.mdb.")
            .arg(file));
    if (!answerYes) {
        QVERIFY(transcript.at(1).startsWith(
            QStringLiteral("error: Tietokanta %1 on vanhassa Jet-muodossa").arg(file)));
        QVERIFY(transcript.at(1).contains(QStringLiteral("muunnettava")));
        QVERIFY(!r.databaseOpen);
        QCOMPARE(TestEnv::readFile(file), before);
        QCOMPARE(QDir(env.path(QString())).entryList(QStringList { QStringLiteral("vanha*") }),
            QStringList { QStringLiteral("vanha.mdb") });
        return;
    }
    QVERIFY(transcript.at(1).startsWith(
        QStringLiteral("information: Vanhan tietokannan muunnos Vorkamin muotoon")));
    QVERIFY(transcript.at(1).contains(QStringLiteral("  vi: 26 / 26")));
    QVERIFY(transcript.at(1).endsWith(QStringLiteral("Raportti on tallessa tiedostossa %1.")
                                          .arg(env.path(QStringLiteral("vanha-muunnos.txt")))));
    QVERIFY(r.databaseOpen);
    QVERIFY(r.converted);
    QVERIFY(r.upgraded);
    QVERIFY(!r.readOnly);
    QCOMPARE(r.caption, QStringLiteral("Vorkam - vanha - vanha.mdb"));
    QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("vanha-jet.mdb"))), before);
    QCOMPARE(DBC::instance().AvaaDB().tables().contains(QStringLiteral("vipPohjat")), true);
    QCOMPARE(ProgramSettings::installation().Database, file);
    if (fixture == u"seura-jet4.mdb")
        QCOMPARE(ProgramSettings::bookkeeping().TilikausiAlku, QDate(2011, 1, 1));
    // The next start opens the converted books without a word.
    dialogs.clear();
    QVERIFY(runStartup().databaseOpen);
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_Startup::foreignDatabaseIsNotUpgraded()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("muu.mdb"));
    withDatabase(file,
        [](QSqlDatabase& db) { QSqlQuery(db).exec(QStringLiteral("CREATE TABLE osoitteet (nimi TEXT)")); });
    const QByteArray before = TestEnv::readFile(file);
    setDatabase(env, file);
    const Startup::Result r = runStartup();
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error),
        QStringList {
            QStringLiteral("Tiedosto %1 ei ole Vorkamin tietokanta: siitä puuttuu taulu tl.").arg(file) });
    QVERIFY(!r.databaseOpen);
    QCOMPARE(TestEnv::readFile(file), before);
}

void tst_Startup::associationChoice_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("expectedStart");
    QTest::addColumn<QString>("expectedDatabase");
    const auto row = [](const char* tag, const char* current, const char* answer, const char* expectedStart,
                         const char* expectedDatabase) {
        QTest::newRow(tag) << QString::fromUtf8(current) << QString::fromUtf8(answer)
                           << QString::fromUtf8(expectedStart) << QString::fromUtf8(expectedDatabase);
    };
    row("chosen", "a.mdb", "b.mdb", "a.mdb", "b.mdb");
    row("cancelled keeps the current", "a.mdb", "", "a.mdb", "a.mdb");
    row("a folder starts the dialog there", "kirjat", "b.mdb", "kirjat", "b.mdb");
}

void tst_Startup::associationChoice()
{
    QFETCH(QString, current);
    QFETCH(QString, answer);
    QFETCH(QString, expectedStart);
    QFETCH(QString, expectedDatabase);
    TestEnv env;
    ScriptedDialogs dialogs;
    QVERIFY(TestEnv::createDatabase(env.path(QStringLiteral("a.mdb"))));
    QVERIFY(TestEnv::createDatabase(env.path(QStringLiteral("b.mdb"))));
    QDir().mkpath(env.path(QStringLiteral("kirjat")));
    setDatabase(env, env.path(current), "MultiDb=2\n");
    dialogs.answerOpenFile(answer.isEmpty() ? QString() : env.path(answer));
    if (expectedDatabase != answer && !current.endsWith(QLatin1String(".mdb")))
        dialogs.answerNo();
    runStartup();
    QCOMPARE(dialogs.shown().first().text, QStringLiteral("Seuran valinta | ") + env.path(expectedStart));
    QCOMPARE(ProgramSettings::installation().Database, env.path(expectedDatabase));
    QCOMPARE(
        IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), env.path(expectedDatabase));
}

QTEST_GUILESS_MAIN(tst_Startup)
#include "tst_Startup.moc"
