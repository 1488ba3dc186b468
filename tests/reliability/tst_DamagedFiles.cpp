#include "../core/JetFixtures.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "backup/StickRestore.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"
#include "core/Startup.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <unistd.h>

// Damaged and foreign files where Vorkam expects books: none may crash Vorkam, each is told to
// the user, and the file keeps its bytes unless the repair ran and kept the original beside it.

namespace {

// What the start-up makes of the file: opened, refused without trying more, refused after a
// repair that could save nothing, or repaired.
enum Start { Opened, Refused, RepairFailed, Repaired };

const QString Stick = QStringLiteral("tikku/Vorkam/20240312/seura.mdb");

// Good books of the demo association, then changed by `statements`.
bool demoBooks(const QString& file, const QStringList& statements)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    return QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/demo1.mdb"), file)
        && QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        && TestEnv::exec(file, statements);
}

// Makes the file of kind `kind` at `file`; false when it could not be made.
bool make(const TestEnv& env, const QString& kind, const QString& file)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    // Good books of several pages.
    const QString model = env.path(QStringLiteral("malli.mdb"));
    const QByteArray good = TestEnv::createDatabase(model) ? TestEnv::readFile(model) : QByteArray();
    if (kind == u"zero bytes")
        return TestEnv::writeFile(file, {});
    if (kind == u"garbled page")
        return TestEnv::writeFile(file, JetFixtures::garbled(good, JetFixtures::pageCount(good) / 2));
    if (kind == u"directory")
        return QDir().mkpath(file);
    if (kind == u"no read permission")
        return TestEnv::writeFile(file, good) && QFile::setPermissions(file, QFileDevice::WriteOwner);
    if (kind == u"Jet header") {
        QByteArray jet(4096 * 4, '\0');
        jet.replace(0, 19, QByteArray("\x00\x01\x00\x00Standard Jet DB\x00", 20).left(19));
        return TestEnv::writeFile(file, jet);
    }
    if (kind == u"other program's SQLite")
        return TestEnv::exec(file,
            { QStringLiteral("CREATE TABLE kuvat (id INTEGER PRIMARY KEY, nimi TEXT, kuva BLOB)"),
                QStringLiteral("INSERT INTO kuvat (nimi) VALUES ('kesä.jpg')") });
    if (kind == u"newer layout")
        return demoBooks(file,
            { QStringLiteral("CREATE TABLE tulevaisuus (id INTEGER PRIMARY KEY, tieto TEXT)"),
                QStringLiteral("ALTER TABLE tl ADD COLUMN tlUusiSarake TEXT DEFAULT 'x'") });
    if (kind == u"garbage settings")
        return demoBooks(file,
            { QStringLiteral("UPDATE Settings SET setString = '31.13.20x1' WHERE setKey LIKE '%Tilikausi%'"),
                QStringLiteral("UPDATE Settings SET setString = '-99999999999' WHERE setKey IN ('MargYla', "
                               "'MargAla')"),
                QStringLiteral(
                    "UPDATE Settings SET setString = 'leveä' WHERE setKey IN ('MargVas', 'MargOik', "
                    "'FonttiKoko', 'VoittoTaseella', 'LaskettavaTili')") });
    if (kind == u"template group cycle") {
        // Two rows of the income statement each name the other as their group.
        return demoBooks(file,
            { QStringLiteral("UPDATE mr SET mrBelongsToGroup = 3 WHERE mrID = 2"),
                QStringLiteral("UPDATE mr SET mrBelongsToGroup = 2 WHERE mrID = 3") });
    }
    return false;
}

// vorkam_report's exit code, -1 when it crashed, hung or a sanitizer spoke, and what it told.
std::pair<int, QString> vorkamReport(const QStringList& args)
{
    QProcess p;
    p.start(QStringLiteral(VORKAM_BIN_DIR "/vorkam_report"), args);
    const bool ended = p.waitForFinished(120000);
    if (!ended)
        p.kill();
    p.waitForFinished();
    const QString err = QString::fromLocal8Bit(p.readAllStandardError());
    const bool crashed = !ended || p.exitStatus() != QProcess::NormalExit
        || err.contains(QStringLiteral("Sanitizer")) || err.contains(QStringLiteral("runtime error"));
    return { crashed ? -1 : p.exitCode(), err };
}

// Root's capabilities pass every permission. So the permission case run by root is run again in a
// child process of this test with every capability dropped (still root, so it reads the build
// wherever it lies, but held to the files' permission bits), which makes its own files and meets
// them as they are; its result is this case's result. True when the case was run there.
bool ranWithoutCapabilities(const QString& kind)
{
    if (kind != u"no read permission" || ::geteuid() != 0 || ::prctl(PR_CAPBSET_READ, CAP_DAC_OVERRIDE) != 1)
        return false;
    const QString function = QString::fromLatin1(QTest::currentTestFunction());
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStringLiteral("setpriv"),
        { QStringLiteral("--bounding-set=-all"), QStringLiteral("--inh-caps=-all"), QStringLiteral("--"),
            QCoreApplication::applicationFilePath(), function + u':' + kind });
    p.waitForFinished(300000);
    const QString out = QString::fromLocal8Bit(p.readAll()) + p.errorString();
    const QString passed = QStringLiteral("PASS   : tst_DamagedFiles::%1(%2)").arg(function, kind);
    if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0 || !out.contains(passed))
        QTest::qFail(qPrintable(QStringLiteral("without capabilities:\n") + out), __FILE__, __LINE__);
    return true;
}

// One row: the kind of file and what the start-up makes of it, the file made at its place in the
// test's folder, and the file's bytes as made.
struct Case {
    const TestEnv& env;
    QString kind;
    int start;
    QString file;
    QByteArray before;
};

// Runs `test` on this row's file made at `relative`, unless a child without capabilities ran it.
template <typename Test> void onFile(const QString& relative, Test test)
{
    QFETCH_GLOBAL(QString, kind);
    QFETCH_GLOBAL(int, start);
    if (ranWithoutCapabilities(kind))
        return;
    TestEnv env;
    const QString file = env.path(relative);
    QVERIFY(make(env, kind, file));
    test(Case { env, kind, start, file, TestEnv::readFile(file) });
}

} // namespace

class tst_DamagedFiles : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data();
    void startup();
    void restoreFromStick();
    void report();
};

// Every test runs on every kind of file.
void tst_DamagedFiles::initTestCase_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("start");
    const auto row
        = [](const char* kind, int start) { QTest::newRow(kind) << QString::fromLatin1(kind) << start; };
    row("zero bytes", RepairFailed);
    row("garbled page", Repaired);
    row("directory", Refused);
    row("no read permission", Refused);
    row("Jet header", Refused);
    row("other program's SQLite", Refused);
    row("newer layout", Opened);
    row("garbage settings", Opened);
    row("template group cycle", Opened);
}

// The start-up as the program runs it: the books named in the ini file are opened, checked,
// upgraded and their settings read. Every question is answered no.
void tst_DamagedFiles::startup()
{
    onFile(QStringLiteral("data/seura.mdb"), [](const Case& c) {
        c.env.writeIni("[VORKAM]\nDatabase=" + c.file.toUtf8() + "\n");
        ScriptedDialogs dialogs;
        // A missing or unreadable file offers the default database, an old-format file its
        // conversion: no.
        if (c.kind == u"directory" || c.kind == u"Jet header" || c.kind == u"no read permission")
            dialogs.answerNo();

        Startup startup;
        startup.formatCurrency = [] { return QStringLiteral("1 234,50 €"); };
        const Startup::Result r = startup.run();
        DBC::instance().SuljeDB();

        const QString shown = dialogs.transcript().join(u'\n');
        // The user is told why the books cannot be read.
        if (c.kind == u"no read permission")
            QVERIFY2(shown.contains(QStringLiteral("käyttöoikeus puuttuu")), qPrintable(shown));
        QCOMPARE(r.databaseOpen, c.start == Opened || c.start == Repaired);
        QCOMPARE(r.repaired, c.start == Repaired || c.start == RepairFailed);
        // The damaged original is kept as it was beside the repaired books.
        if (c.start != Opened) {
            QVERIFY2(!shown.isEmpty(), "the user is told");
            QCOMPARE(
                TestEnv::readFile(c.start == Repaired ? c.file + QStringLiteral("OLD") : c.file), c.before);
        }
        // Dates that are no dates give way to the defaults.
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        QVERIFY(s.TilikausiAlku.isValid() && s.TilikausiLoppu.isValid());
    });
}

// The file lies on the backup stick as a copy of the day: it never replaces the books in the data
// folder, and neither file changes.
void tst_DamagedFiles::restoreFromStick()
{
    onFile(Stick, [](const Case& c) {
        const QString books = c.env.path(QStringLiteral("data/seura.mdb"));
        QVERIFY(TestEnv::createDatabase(books));
        const QByteArray booksBefore = TestEnv::readFile(books);
        ScriptedDialogs dialogs;
        // Sound books of Vorkam: the books in use are not replaced. An old-format copy: not converted.
        if (c.start == Opened || c.kind == u"Jet header")
            dialogs.answerNo();

        QVERIFY(StickRestore::restore(c.file) != StickRestore::Outcome::Restored);
        QVERIFY(!dialogs.shown().isEmpty());
        QCOMPARE(TestEnv::readFile(books), booksBefore);
        QCOMPARE(TestEnv::readFile(c.file), c.before);
        QCOMPARE(QDir(c.env.path(QStringLiteral("data"))).entryList(QDir::Files | QDir::Hidden),
            QStringList(QStringLiteral("seura.mdb")));
    });
}

// vorkam_report's voucher check: on sound books a report, on any other file a clear Finnish
// refusal (exit 3) that changes nothing; and on sound books the income statement.
void tst_DamagedFiles::report()
{
    onFile(QStringLiteral("data/seura.mdb"), [](const Case& c) {
        const auto [check, checkSaid] = vorkamReport({ c.file, QStringLiteral("tarkistus") });
        if (c.start != Opened) {
            QVERIFY2(check == 3
                    && (checkSaid.contains(QStringLiteral("Tiedosto"))
                        || checkSaid.contains(QStringLiteral("Kirjanpito"))),
                qPrintable(checkSaid));
            QCOMPARE(TestEnv::readFile(c.file), c.before);
            return;
        }
        QVERIFY2(check == 0 || check == 1, qPrintable(checkSaid));
        const auto [statement, said] = vorkamReport({ c.file, QStringLiteral("tuloslaskelma"),
            QStringLiteral("--template"), QStringLiteral("Yhdistyksen tuloslaskelma"),
            QStringLiteral("--pdf"), c.env.path(QStringLiteral("tula.pdf")) });
        QVERIFY2(statement == 0 || (statement > 0 && !said.trimmed().isEmpty()), qPrintable(said));
        // Rows left out of the statement are told, so that a short total is explained.
        if (c.kind == u"template group cycle")
            QVERIFY2(said.contains(QStringLiteral("eivät kuulu mihinkään pääryhmään")), qPrintable(said));
    });
}

QTEST_GUILESS_MAIN(tst_DamagedFiles)
#include "tst_DamagedFiles.moc"
