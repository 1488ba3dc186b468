#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DBC.h"
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

// The kinds of what was shown, in order: "information", "question" and so on.
QStringList kinds(const ScriptedDialogs& dialogs)
{
    QStringList result;
    for (const ScriptedDialogs::Shown& shown : dialogs.shown())
        result << ScriptedDialogs::kindName(shown.kind);
    return result;
}

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

// The bytes of good books after `damage`: a page of vouchers made noise, or a cut to a percentage.
QByteArray damaged(const QString& file, const QString& damage)
{
    QByteArray bytes = TestEnv::readFile(file);
    if (damage != u"voucher page")
        return bytes.left(bytes.size() * damage.toInt() / 100);
    const int page = leafPage(file, QStringLiteral("to"), 2);
    for (int i = (page - 1) * 4096; i < page * 4096 && i < bytes.size(); ++i)
        bytes[i] = char(0xA5 ^ (i & 0xFF));
    return bytes;
}

} // namespace

class tst_Startup : public QObject {
    Q_OBJECT

private slots:
    void cleanOpenUpgradesOldestLayout();
    void readOnly_data();
    void readOnly();
    void firstStartOpensOwnDemoCopy_data();
    void firstStartOpensOwnDemoCopy();
    void repair_data();
    void repair();
    void jetFileIsConvertedWhenAsked();
    void associationChoice();
};

// An old layout is upgraded without a word; the next start writes nothing at all, and a currency
// still in marks is warned of.
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
    const QByteArray upgraded = TestEnv::readFile(file);
    const QDateTime modified = QFileInfo(file).lastModified();
    QVERIFY(runStartup(QStringLiteral("1 234,50 MK")).databaseOpen);
    QCOMPARE(
        dialogs.transcript(), QStringList { QStringLiteral("information: ") + Startup::currencyWarning() });
    QCOMPARE(TestEnv::readFile(file), upgraded);
    QCOMPARE(QFileInfo(file).lastModified(), modified);
}

void tst_Startup::readOnly_data()
{
    QTest::addColumn<bool>("folder"); // the folder is read-only, else the file, and Yes is answered
    QTest::newRow("file, Yes: made writable") << false;
    QTest::newRow("folder: opened for reading, nothing asked") << true;
}

void tst_Startup::readOnly()
{
    QFETCH(bool, folder);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString dir = env.path(QStringLiteral("jaettu"));
    QVERIFY(QDir().mkpath(dir));
    const QString file = booksInUse(env, QStringLiteral("jaettu/seura.mdb"), TestEnv::Layout::Oldest);
    const QByteArray before = TestEnv::readFile(file);
    QVERIFY(QFile::setPermissions(folder ? dir : file,
        QFileDevice::ReadOwner | (folder ? QFileDevice::ExeOwner : QFileDevice::ReadGroup)));
    if (!folder)
        dialogs.answerYes();

    const Startup::Result r = runStartup();
    QFile::setPermissions(dir, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    // Read-only books are a mode, not a stream of errors: no upgrade is tried.
    const QStringList told { "information", "question" };
    QCOMPARE(kinds(dialogs), folder ? told.mid(0, 1) : told);
    QVERIFY(r.databaseOpen);
    QCOMPARE(r.readOnly, folder);
    QCOMPARE(r.upgraded, !folder);
    QVERIFY(writable(file));
    if (folder) {
        // The program's own connection reads the books and cannot write them.
        QVERIFY(!QSqlQuery(DBC::instance().AvaaDB()).exec(QStringLiteral("DELETE FROM tl")));
        DBC::instance().SuljeDB();
        QCOMPARE(TestEnv::readFile(file), before);
    }
}

void tst_Startup::firstStartOpensOwnDemoCopy_data()
{
    // "program": the settings name the program's demo; "own": the user's copy exists; "missing":
    // the settings name a file that is not there; "blocked": the data folder cannot be made.
    QTest::addColumn<QString>("start");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("no settings yet") << "" << QStringList();
    QTest::newRow("settings name the program's demo") << "program" << QStringList();
    QTest::newRow("own copy is kept") << "own" << QStringList();
    QTest::newRow("missing books: the default is offered")
        << "missing" << QStringList { "information", "question" };
    QTest::newRow("data folder cannot be made")
        << "blocked" << QStringList { "information", "information", "question" };
}

void tst_Startup::firstStartOpensOwnDemoCopy()
{
    QFETCH(QString, start);
    QFETCH(QStringList, shown);
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString shipped = env.programDir() + QStringLiteral("/demo1.mdb");
    const QString own = env.path(QStringLiteral("data/demo1.mdb"));
    const QString missing = env.path(QStringLiteral("ei-ole.mdb"));
    QVERIFY(TestEnv::createDatabase(shipped));
    if (start == u"own") {
        QVERIFY(TestEnv::createDatabase(own));
        withDatabase(
            own, [](QSqlDatabase& db) { QSqlQuery(db).exec(QStringLiteral("CREATE TABLE oma(x)")); });
    }
    if (start == u"blocked") {
        QVERIFY(QDir(env.path(QStringLiteral("data"))).removeRecursively());
        QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("data")), "tiedosto kansion paikalla"));
        dialogs.answerNo();
    }
    if (start == u"missing") {
        setDatabase(env, missing);
        dialogs.answerYes();
    }
    // The installed demo is read-only; the user's copy is the user's to change.
    QVERIFY(QFile::setPermissions(shipped, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    if (start == u"program")
        setDatabase(env, shipped);
    const QByteArray shippedBytes = TestEnv::readFile(shipped);

    const Startup::Result r = runStartup();
    QCOMPARE(kinds(dialogs), shown);
    // Nothing is ever written into the program's folder, and missing books are never made.
    QCOMPARE(TestEnv::readFile(shipped), shippedBytes);
    QCOMPARE(QDir(env.programDir()).entryList(QDir::Files | QDir::Hidden), QStringList { "demo1.mdb" });
    QVERIFY(!QFile::exists(missing));
    if (start == u"blocked") {
        QVERIFY(!r.databaseOpen);
        return;
    }
    QVERIFY(r.databaseOpen && !r.readOnly);
    QVERIFY(writable(own));
    QCOMPARE(ProgramSettings::installation().Database, own);
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), own);
    bool kept = false;
    withDatabase(
        own, [&](QSqlDatabase& db) { kept = QSqlQuery(db).exec(QStringLiteral("SELECT * FROM oma")); });
    QCOMPARE(kept, start == u"own");
}

void tst_Startup::repair_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QString>("obstacle"); // "OLD": an earlier repair's OLD file; "replace": no rename
    QTest::newRow("a page of vouchers garbled: repaired") << "voucher page" << QString();
    QTest::newRow("the first 60 %: no voucher is left") << "60" << QString();
    QTest::newRow("an OLD file of an earlier repair") << "voucher page"
                                                      << "OLD";
    QTest::newRow("the repaired file cannot take the books' name") << "voucher page"
                                                                   << "replace";
}

// Damaged books are repaired from what can be read and opened in the same run. Books from which
// no account or no voucher can be saved are never replaced by empty ones, and a repaired file that
// cannot take their place leaves the damaged books under their own name.
void tst_Startup::repair()
{
    QFETCH(QString, damage);
    QFETCH(QString, obstacle);
    const bool repaired = damage == u"voucher page" && obstacle.isEmpty();
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
    QCOMPARE(kinds(dialogs).mid(0, 2), (QStringList { "plain", repaired ? "information" : "plain" }));
    QCOMPARE(r.databaseOpen, repaired);
    // The repaired copy is left only when it could not take the books' place. The damaged
    // original survives byte for byte beside a repaired file; an earlier OLD file is kept.
    QCOMPARE(QFile::exists(file + u'2'), !obstacle.isEmpty());
    if (obstacle == u"OLD")
        QCOMPARE(TestEnv::readFile(file + QStringLiteral("OLD")), QByteArray("edellinen korjaus"));
    else
        QCOMPARE(TestEnv::readFile(file + QStringLiteral("OLD")), damage == u"60" ? QByteArray() : bytes);
    if (!repaired) {
        QCOMPARE(TestEnv::readFile(file), bytes);
        return;
    }
    QVERIFY(r.repaired && r.repairedOpen && !r.upgraded);
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("SELECT COUNT(*) FROM \"to\"")) && q.next());
        QVERIFY(q.value(0).toInt() > 0);
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

// An old-format file is converted when the user agrees. It is only read, so its read-only flag
// asks nothing; the converted books open at once, with their own settings, and at the next start
// without a word. (A No leaves the file as it was: the damaged-files test.)
void tst_Startup::jetFileIsConvertedWhenAsked()
{
    const QString source = QStringLiteral(VORKAM_SHARED_DIR "/fixtures/jet/seura-jet4.mdb");
    if (!QFile::exists(source))
        QSKIP("The old-format sample files are not beside the project.");
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("vanha.mdb"));
    QVERIFY(QFile::copy(source, file));
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner));
    setDatabase(env, file);
    dialogs.answerYes();
    const Startup::Result r = runStartup();
    QCOMPARE(kinds(dialogs), (QStringList { "question", "information" }));
    QVERIFY(r.databaseOpen && r.converted && r.upgraded && !r.readOnly);
    QCOMPARE(ProgramSettings::installation().Database, file);
    QCOMPARE(ProgramSettings::bookkeeping().TilikausiAlku, QDate(2011, 1, 1));
    dialogs.clear();
    QVERIFY(runStartup().databaseOpen);
    QCOMPARE(dialogs.transcript(), QStringList());
}

// With several associations the start asks which one; a cancelled choice keeps the current one.
void tst_Startup::associationChoice()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString a = env.path(QStringLiteral("a.mdb"));
    const QString b = env.path(QStringLiteral("b.mdb"));
    QVERIFY(TestEnv::createDatabase(a));
    QVERIFY(TestEnv::createDatabase(b));
    setDatabase(env, a, "MultiDb=2\n");
    dialogs.answerOpenFile(b);
    runStartup();
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), b);
    dialogs.answerOpenFile(QString());
    runStartup();
    QCOMPARE(ProgramSettings::installation().Database, b);
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), b);
}

QTEST_GUILESS_MAIN(tst_Startup)
#include "tst_Startup.moc"
