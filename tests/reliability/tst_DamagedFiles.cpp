#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "backup/StickRestore.h"
#include "core/DBC.h"
#include "core/DatabaseFile.h"
#include "core/ProgramSettings.h"
#include "core/Startup.h"
#include "settings/SettingsForm.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <unistd.h>

// Damaged and foreign files where Vorkam expects books: none may crash Vorkam, each is told to
// the user, and the file keeps its bytes unless the repair ran and kept the original beside it.

namespace {

// What the start-up makes of the file: opened (for writing or only for reading), refused
// without trying more, refused after a repair that could save nothing, or repaired.
enum Start { Opened, ReadOnly, Refused, RepairFailed, Repaired };

const QString Stick = QStringLiteral("tikku/Vorkam/20240312/seura.mdb");

QByteArray hashOf(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return QByteArray("(ei luettavissa)");
    QCryptographicHash h(QCryptographicHash::Sha256);
    h.addData(&f);
    return h.result().toHex();
}

// Good books of the demo association, then changed by `statements`.
bool demoBooks(const QString& file, const QStringList& statements)
{
    QDir().mkpath(QFileInfo(file).absolutePath());
    return QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/demo1.mdb"), file)
        && QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        && TestEnv::exec(file, statements);
}

QByteArray garble(QByteArray bytes, qsizetype from, qsizetype size)
{
    for (qsizetype i = from; i < from + size && i < bytes.size(); ++i)
        bytes[i] = char(0xA5 ^ (i & 0xFF));
    return bytes;
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
        return TestEnv::writeFile(file, garble(good, (good.size() / 4096 / 2) * 4096, 4096));
    if (kind == u"directory")
        return QDir().mkpath(file);
    if (kind == u"symlink loop")
        return QFile::link(file + QStringLiteral(".toinen"), file)
            && QFile::link(file, file + QStringLiteral(".toinen"));
    if (kind == u"no read permission")
        return TestEnv::writeFile(file, good) && QFile::setPermissions(file, QFileDevice::WriteOwner);
    if (kind == u"read-only file and folder")
        return TestEnv::writeFile(file, good) && QFile::setPermissions(file, QFileDevice::ReadOwner)
            && QFile::setPermissions(
                QFileInfo(file).absolutePath(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
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

struct Report {
    int code = -1;
    bool crashed = false;
    QString err;
};

Report vorkamReport(const QStringList& args)
{
    QProcess p;
    p.start(QStringLiteral(VORKAM_BIN_DIR "/vorkam_report"), args);
    if (!p.waitForFinished(120000)) {
        p.kill();
        p.waitForFinished();
        return { -1, true, QStringLiteral("(ei päättynyt)") };
    }
    const QString err = QString::fromLocal8Bit(p.readAllStandardError());
    return { p.exitCode(),
        p.exitStatus() != QProcess::NormalExit || err.contains(QStringLiteral("Sanitizer"))
            || err.contains(QStringLiteral("runtime error")),
        err };
}

// Root's capabilities pass every permission. So a permission case run by root is run again in a
// child process of this test with every capability dropped (still root, so it reads the build
// wherever it lies, but held to the files' permission bits), which makes its own files and meets
// them as they are; its result is this case's result. True when the case was run there.
bool ranWithoutCapabilities(const QString& kind)
{
    if ((kind != u"no read permission" && kind != u"read-only file and folder") || ::geteuid() != 0
        || ::prctl(PR_CAPBSET_READ, CAP_DAC_OVERRIDE) != 1)
        return false;
    // The child's temporary folders are made in a folder of its own, which this test removes.
    QTemporaryDir tmp;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("TMPDIR"), tmp.path());
    const QString function = QString::fromLatin1(QTest::currentTestFunction());
    QProcess p;
    p.setProcessEnvironment(env);
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStringLiteral("setpriv"),
        { QStringLiteral("--bounding-set=-all"), QStringLiteral("--inh-caps=-all"), QStringLiteral("--"),
            QCoreApplication::applicationFilePath(), function + u':' + kind });
    p.waitForFinished(300000);
    const QString out
        = p.error() == QProcess::FailedToStart ? p.errorString() : QString::fromLocal8Bit(p.readAll());
    const QString passed = QStringLiteral("PASS   : tst_DamagedFiles::%1(%2)").arg(function, kind);
    if (p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0 || !out.contains(passed))
        QTest::qFail(qPrintable(QStringLiteral("without capabilities:\n") + out), __FILE__, __LINE__);
    return true;
}

// One row: the kind of file and what the start-up makes of it, the file made at its place in the
// test's folder, and the file's hash as made.
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
    test(Case { env, kind, start, file, hashOf(file) });
}

} // namespace

class tst_DamagedFiles : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data();
    void startup();
    void settingsWindow();
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
    row("symlink loop", Refused);
    row("no read permission", Refused);
    row("read-only file and folder", ReadOnly);
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
        // conversion, a read-only file to be made writable: no.
        if (c.kind == u"directory" || c.kind == u"symlink loop" || c.kind == u"Jet header"
            || c.kind == u"no read permission" || c.kind == u"read-only file and folder")
            dialogs.answerNo();

        Startup startup;
        startup.formatCurrency = [] { return QStringLiteral("1 234,50 €"); };
        const Startup::Result r = startup.run();
        DBC::instance().SuljeDB();

        const QStringList shown = dialogs.transcript();
        // The user is told why the books cannot be read; read-only books stay read-only.
        if (c.kind == u"no read permission")
            QVERIFY2(shown.join(u'\n').contains(QStringLiteral("käyttöoikeus puuttuu")),
                qPrintable(shown.join(u'\n')));
        if (c.start == ReadOnly)
            QVERIFY(!QFileInfo(c.file).isWritable());
        QCOMPARE(r.databaseOpen, c.start == Opened || c.start == ReadOnly || c.start == Repaired);
        QCOMPARE(r.readOnly, c.start == ReadOnly);
        QCOMPARE(r.repaired, c.start == Repaired || c.start == RepairFailed);
        if (c.start != Opened)
            QVERIFY2(!shown.isEmpty(), "the user is told");
        // The damaged original is kept as it was beside the repaired books.
        if (c.start == Repaired)
            QCOMPARE(hashOf(c.file + QStringLiteral("OLD")), c.before);
        else if (c.start != Opened)
            QCOMPARE(hashOf(c.file), c.before);
        // Dates that are no dates give way to the defaults.
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        QVERIFY(s.TilikausiAlku.isValid() && s.TilikausiLoppu.isValid());
    });
}

// The settings window is given the file as the new database: it is refused with a message
// unless the start-up could use it, and never changed.
void tst_DamagedFiles::settingsWindow()
{
    onFile(QStringLiteral("muut/seura.mdb"), [](const Case& c) {
        c.env.writeIni("[VORKAM]\n");
        ScriptedDialogs dialogs;
        if (c.kind == u"Jet header" || c.kind == u"read-only file and folder")
            dialogs.answerNo(); // not converted, not made writable

        SettingsForm form = SettingsForm::current();
        form.Database = c.file;
        const SettingsForm::Saved saved = form.save(QSqlDatabase());
        QVERIFY(!dialogs.shown().isEmpty());
        if (c.start == Refused || c.start == RepairFailed) {
            QVERIFY(saved.stopped);
            QCOMPARE(saved.refused, QStringList(QStringLiteral("tDatabase")));
            QVERIFY(ProgramSettings::installation().Database != c.file);
        }
        if (c.start == Opened || c.start == Repaired)
            QVERIFY(saved.databaseChanged);
        if (c.start != Repaired)
            QCOMPARE(hashOf(c.file), c.before);
        else
            QCOMPARE(hashOf(c.file + QStringLiteral("OLD")), c.before);
    });
}

// The file lies on the backup stick as a copy of the day: it never replaces the books in the data
// folder, and neither file changes.
void tst_DamagedFiles::restoreFromStick()
{
    onFile(Stick, [](const Case& c) {
        const QString books = c.env.path(QStringLiteral("data/seura.mdb"));
        QVERIFY(TestEnv::createDatabase(books));
        const QByteArray booksBefore = hashOf(books);
        ScriptedDialogs dialogs;
        // Sound books of Vorkam: the books in use are not replaced. An old-format copy: not converted.
        if (c.start == Opened || c.start == ReadOnly || c.kind == u"Jet header")
            dialogs.answerNo();

        const StickRestore::Outcome outcome = StickRestore::restore(c.file);
        QVERIFY(outcome != StickRestore::Outcome::Restored);
        QVERIFY(!dialogs.shown().isEmpty());
        QCOMPARE(hashOf(books), booksBefore);
        QCOMPARE(hashOf(c.file), c.before);
        QCOMPARE(QDir(c.env.path(QStringLiteral("data"))).entryList(QDir::Files | QDir::Hidden),
            QStringList(QStringLiteral("seura.mdb")));
    });
}

// vorkam_report's voucher check and income statement: a clear Finnish refusal (exit 3) or a
// report; the voucher check changes nothing in a file that is not sound books.
void tst_DamagedFiles::report()
{
    onFile(QStringLiteral("data/seura.mdb"), [](const Case& c) {
        const Report check = vorkamReport({ c.file, QStringLiteral("tarkistus") });
        QVERIFY2(!check.crashed, qPrintable(check.err));
        if (c.start != Opened && c.start != ReadOnly) {
            QCOMPARE(check.code, 3);
            QVERIFY2(check.err.contains(QStringLiteral("Tiedosto"))
                    || check.err.contains(QStringLiteral("Kirjanpito")),
                qPrintable(check.err));
            QCOMPARE(hashOf(c.file), c.before);
        } else {
            QVERIFY2(check.code == 0 || check.code == 1, qPrintable(check.err));
        }

        const Report statement = vorkamReport({ c.file, QStringLiteral("tuloslaskelma"),
            QStringLiteral("--template"), QStringLiteral("Yhdistyksen tuloslaskelma"),
            QStringLiteral("--pdf"), c.env.path(QStringLiteral("tula.pdf")) });
        QVERIFY2(!statement.crashed, qPrintable(statement.err));
        QVERIFY2(statement.code == 0 || !statement.err.trimmed().isEmpty(), "a refusal is explained");
        // Rows left out of the statement are told, so that a short total is explained.
        if (c.kind == u"template group cycle")
            QVERIFY2(statement.err.contains(QStringLiteral("eivät kuulu mihinkään pääryhmään")),
                qPrintable(statement.err));
        if (c.start != Opened && c.start != ReadOnly)
            QCOMPARE(hashOf(c.file), c.before);
    });
}

QTEST_GUILESS_MAIN(tst_DamagedFiles)
#include "tst_DamagedFiles.moc"
