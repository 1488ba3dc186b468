#include "ModelChecks.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DBC.h"
#include "core/DatabaseCreation.h"
#include "core/DatabaseFile.h"
#include "core/Paths.h"
#include "core/ProgramSettings.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

using Source = DatabaseCreation::Source;
Q_DECLARE_METATYPE(DatabaseCreation::Source)

namespace {

const QString BinDir = QStringLiteral(VORKAM_BIN_DIR);

// The kinds of what was shown, in order: "information", "input" and so on.
QStringList kinds(const ScriptedDialogs& dialogs)
{
    QStringList result;
    for (const ScriptedDialogs::Shown& shown : dialogs.shown())
        result << ScriptedDialogs::kindName(shown.kind);
    return result;
}

// The models as the build made them, in the test's own program folder.
void installModels(const TestEnv& env)
{
    const QString folder = env.programDir() + QStringLiteral("/mallit/");
    QDir().mkpath(folder);
    for (const char* model : { "perusmalli.mdb", "aoymalli.mdb", "metalli.mdb", "lions.mdb" })
        QFile::copy(
            BinDir + QStringLiteral("/mallit/") + QLatin1String(model), folder + QLatin1String(model));
}

// The installation as the main window has it after a start on `books`.
void useBooks(const TestEnv& env, const QString& books)
{
    env.writeIni("[VORKAM]\nDatabase=" + books.toUtf8() + "\n");
    ProgramSettings::loadInstallation();
}

QStringList dataFiles(const TestEnv& env)
{
    return QDir(env.path(QStringLiteral("data")))
        .entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

class tst_DatabaseCreation : public QObject {
    Q_OBJECT

private slots:
    void names_data();
    void names();
    void refusedLeavesNothing_data();
    void refusedLeavesNothing();
    void settingCannotBeWritten();
    void modelBecomesNewBooks_data();
    void modelBecomesNewBooks();
    void copyOfBooksInUse();
};

void tst_DatabaseCreation::names_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("name"); // empty: refused
    textRow("eight, an apostrophe", "O'Brien1", "O'Brien1");
    textRow("twelve letters cut", "Hiihtoseuraa", "Hiihtose");
    textRow("blank at the cut", "abcdefg hij", "abcdefg");
    textRow(".MDB typed", "SEURA.MDB", "SEURA");
    textRow("characters of two code units", "😀😀😀😀😀😀😀😀😀", "😀😀😀😀😀😀😀😀");
    // Refused: nothing left once .mdb is cut, a refused character, a hidden file, two dots, a
    // control character.
    for (const char* refused : { ".mdb", "a/b", ".piilo", "a..b", "seu\nra" })
        QTest::addRow("refused \"%s\"", refused) << QString::fromUtf8(refused) << QString();
}

void tst_DatabaseCreation::names()
{
    QFETCH(QString, typed);
    QFETCH(QString, name);
    const DatabaseCreation::Name checked = DatabaseCreation::checkName(typed);
    QCOMPARE(checked.name, name);
    QCOMPARE(checked.message.isEmpty(), !name.isEmpty());
}

void tst_DatabaseCreation::refusedLeavesNothing_data()
{
    QTest::addColumn<QVariant>("typed"); // invalid: the input box cancelled
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("after"); // the kind of message after the name question
    const auto row = [](const char* tag, const QVariant& typed, const char* obstacle, const char* after) {
        QTest::newRow(tag) << typed << QString::fromUtf8(obstacle) << QString::fromUtf8(after);
    };
    const QString seura = QStringLiteral("seura");
    row("cancelled", QVariant(), "", "");
    row("name in use, cut to it", QStringLiteral("vanhaseura"), "", "information");
    row("data folder cannot be made", seura, "data folder", "error");
    row("model missing", seura, "no models", "error");
    row("the user stays", seura, "user stays", "");
    row("the disk fills up once the copy has begun", seura, "full disk", "error");
}

// Nothing is copied, written or ended; the leave check comes last, just before the copy.
void tst_DatabaseCreation::refusedLeavesNothing()
{
    QFETCH(QVariant, typed);
    QFETCH(QString, obstacle);
    QFETCH(QString, after);
    TestEnv env;
    ScriptedDialogs dialogs;
    if (obstacle != u"no models")
        installModels(env);
    if (obstacle == u"data folder") {
        TestEnv::writeFile(env.path(QStringLiteral("tiedosto")), "x");
        Paths::setDataDir(env.path(QStringLiteral("tiedosto/Vorkam")));
    }
    const QString existing = env.path(QStringLiteral("data/vanhaseu.mdb"));
    TestEnv::writeFile(existing, "varattu");
    typed.isValid() ? dialogs.answerInput(typed.toString()) : dialogs.cancelInput();
    rlimit saved {};
    getrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, SIG_IGN);
    bool leaveChecked = false;
    const bool created = DatabaseCreation::run(Source::Yhdistys, [&] {
        leaveChecked = true;
        rlimit full = saved;
        full.rlim_cur = 8 * 1024;
        return obstacle == u"full disk" ? setrlimit(RLIMIT_FSIZE, &full) == 0 : obstacle != u"user stays";
    });
    setrlimit(RLIMIT_FSIZE, &saved);
    QVERIFY(!created);
    QStringList expected { "information", "input" };
    if (!after.isEmpty())
        expected << after;
    QCOMPARE(kinds(dialogs), expected);
    QCOMPARE(leaveChecked, obstacle == u"user stays" || obstacle == u"full disk");
    QCOMPARE(dataFiles(env), QStringList { QStringLiteral("vanhaseu.mdb") });
    QCOMPARE(TestEnv::readFile(existing), QByteArray("varattu"));
    QCOMPARE(env.programEnds(), 0);
    QVERIFY(!env.readIni().contains(QStringLiteral("Database")));
}

void tst_DatabaseCreation::settingCannotBeWritten()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    installModels(env);
    // A folder stands where the ini file should be.
    QDir().mkpath(env.iniFile());
    ProgramSettings::installation().Database = QStringLiteral("/vanha/seura.mdb");
    dialogs.answerInput(QStringLiteral("uusi"));
    QVERIFY(!DatabaseCreation::run(Source::Yhdistys));
    QCOMPARE(ProgramSettings::installation().Database, QStringLiteral("/vanha/seura.mdb"));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error).size(), 1);
    QVERIFY(DatabaseFile::examine(env.path(QStringLiteral("data/uusi.mdb"))));
    QCOMPARE(env.programEnds(), 0);
}

void tst_DatabaseCreation::modelBecomesNewBooks_data()
{
    QTest::addColumn<Source>("source");
    QTest::addColumn<QString>("model");
    QTest::newRow("Yhdistyksen malli") << Source::Yhdistys << "perusmalli";
    QTest::newRow("Lions") << Source::Lions << "lions";
}

// The new books are named for the next start and are a copy of the model their source names,
// which passes that model's checks.
void tst_DatabaseCreation::modelBecomesNewBooks()
{
    QFETCH(Source, source);
    QFETCH(QString, model);
    TestEnv env;
    ScriptedDialogs dialogs;
    installModels(env);
    dialogs.answerInput(QStringLiteral("uusi"));
    QVERIFY(DatabaseCreation::run(source));
    QCOMPARE(kinds(dialogs), (QStringList { "information", "input", "information", "information" }));
    QCOMPARE(env.programEnds(), 1);
    const QString created = env.path(QStringLiteral("data/uusi.mdb"));
    QVERIFY2(env.readIni().contains(QStringLiteral("Database=") + created), qPrintable(env.readIni()));
    QCOMPARE(dataFiles(env), QStringList { QStringLiteral("uusi.mdb") });
    const ModelChecks::ShippedBook book = ModelChecks::shippedBook(model);
    QVERIFY2(!book.name.isEmpty(), qPrintable(model));
    withDatabase(created, [&](QSqlDatabase& db) {
        const QStringList findings = ModelChecks::checkShippedBook(db, book, QDate::currentDate().year());
        QVERIFY2(findings.isEmpty(), qPrintable(findings.join(u'\n')));
    });
}

void tst_DatabaseCreation::copyOfBooksInUse()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString books = env.path(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::createDatabase(books));
    useBooks(env, books);
    QVERIFY(DBC::instance().AvaaDB().isOpen());
    dialogs.answerInput(QStringLiteral("seura2"));
    QVERIFY(DatabaseCreation::run(Source::Nykyinen));
    const QString copy = env.path(QStringLiteral("data/seura2.mdb"));
    // The copy is made from the open books (the latest change included, as the copy test shows).
    withDatabase(copy, [](QSqlDatabase& db) {
        QSqlQuery check(db);
        QVERIFY(check.exec(QStringLiteral("SELECT COUNT(*) FROM \"to\"")) && check.next());
        QCOMPARE(check.value(0).toInt(), 401);
    });
    QCOMPARE(env.programEnds(), 1);
    // The books the copy was made from are left as they were and closed.
    QVERIFY(!DBC::instance().isOpen());
    QVERIFY(DatabaseFile::examine(books));
}

QTEST_GUILESS_MAIN(tst_DatabaseCreation)
#include "tst_DatabaseCreation.moc"
