#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DBC.h"
#include "core/DatabaseCommands.h"
#include "core/DatabaseFile.h"
#include "core/FileOps.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTest>

namespace {

// A database in use with a backup folder, as the main window would have them.
struct Books {
    explicit Books(TestEnv& env, const QString& name = QStringLiteral("seura.mdb"))
        : file(env.path(name))
        , backupDir(env.path(QStringLiteral("varmistus/")))
    {
        QDir().mkpath(backupDir);
        TestEnv::createDatabase(file);
        ProgramSettings::installation().Database = file;
        ProgramSettings::installation().DatabaseBackup = backupDir;
        DBC::instance().AvaaDB();
        bytes = TestEnv::readFile(file);
    }
    QString file;
    QString backupDir;
    QByteArray bytes;
};

} // namespace

class tst_DatabaseCommands : public QObject {
    Q_OBJECT

private slots:
    void backupAndReorganize();
    void failedStepKeepsTheBooks_data();
    void failedStepKeepsTheBooks();
    void restore();
    void replacedBooksAreFlushedAroundTheRename();
};

void tst_DatabaseCommands::backupAndReorganize()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    // A folder the user named is not made: a missing memory stick is told, and nothing is touched.
    ProgramSettings::installation().DatabaseBackup = env.path(QStringLiteral("ei-tikkua/"));
    QVERIFY(!DatabaseCommands::backupAndReorganize());
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error).size(), 1);
    QCOMPARE(TestEnv::readFile(books.file), books.bytes);
    QVERIFY(!QDir(env.path(QStringLiteral("ei-tikkua"))).exists());

    ProgramSettings::installation().DatabaseBackup = books.backupDir;
    // A leftover compacted copy of an interrupted run and the previous file are replaced.
    QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("seura.md2")), "keskeytynyt"));
    QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("seura.md3")), "viime kerta"));

    QVERIFY(DatabaseCommands::backupAndReorganize());
    QCOMPARE(dialogs.shown().last().kind, ScriptedDialogs::Kind::Information);
    QCOMPARE(TestEnv::readFile(books.backupDir + QStringLiteral("seura.mdb")), books.bytes);
    QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("seura.md3"))), books.bytes);
    QVERIFY(!QFile::exists(env.path(QStringLiteral("seura.md2"))));
    // The compacted books took the place of the old ones.
    QVERIFY(TestEnv::readFile(books.file) != books.bytes && DatabaseFile::examine(books.file));

    // A second backup keeps the first under the time it was made, beside an earlier kept copy.
    const QString first = books.backupDir + QStringLiteral("seura.mdb");
    const QString taken = DatabaseCommands::keptName(first);
    QVERIFY(TestEnv::writeFile(taken, "jo olemassa"));
    const QString kept = DatabaseCommands::keptName(first);
    QVERIFY(DatabaseCommands::backupAndReorganize());
    QCOMPARE(TestEnv::readFile(kept), books.bytes);
    QCOMPARE(TestEnv::readFile(taken), QByteArray("jo olemassa"));
}

void tst_DatabaseCommands::failedStepKeepsTheBooks_data()
{
    QTest::addColumn<QString>("obstacle");
    // A folder that cannot be removed takes the name of the compacted copy or of the previous file.
    QTest::newRow("compaction") << "seura.md2/sisalto";
    QTest::newRow("renaming the books to the previous file") << "seura.md3/sisalto";
    QTest::newRow("renaming the compacted copy to the books") << "";
}

// The books stay in place as they were.
void tst_DatabaseCommands::failedStepKeepsTheBooks()
{
    QFETCH(QString, obstacle);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    if (obstacle.isEmpty())
        FileOps::instance().replace = [](const QString&, const QString&) { return false; };
    else
        QVERIFY(QDir().mkpath(env.path(obstacle)));
    QVERIFY(!DatabaseCommands::backupAndReorganize());
    QCOMPARE(dialogs.shown().last().kind, ScriptedDialogs::Kind::Error);
    QCOMPARE(TestEnv::readFile(books.file), books.bytes);
}

// A file that is not a database is refused; a target that exists is replaced only after a
// question, and the restored books are taken in use.
void tst_DatabaseCommands::restore()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    const QString backup = env.path(QStringLiteral("varmistus/vanha.mdb"));
    QVERIFY(TestEnv::createDatabase(backup));
    withDatabase(backup, [](QSqlDatabase& db) { QSqlQuery(db).exec(QStringLiteral("DELETE FROM \"to\"")); });
    const QString junk = env.path(QStringLiteral("kuva.mdb"));
    QVERIFY(TestEnv::writeFile(junk, "\x89PNG kuva eikä tietokanta"));

    // The junk is refused and the user goes on; the books are not to be replaced, and the user stops.
    dialogs.answerOpenFile(junk)
        .answerNo()
        .answerOpenFile(backup)
        .answerSaveFile(books.file)
        .answerNo()
        .answerYes();
    QVERIFY(!DatabaseCommands::restoreFromBackup());
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error).size(), 1);
    QCOMPARE(TestEnv::readFile(books.file), books.bytes);

    dialogs.answerOpenFile(backup).answerSaveFile(books.file).answerYes();
    QVERIFY(DatabaseCommands::restoreFromBackup());
    QCOMPARE(dialogs.shown().last().kind, ScriptedDialogs::Kind::Information);
    QCOMPARE(TestEnv::readFile(books.file), TestEnv::readFile(backup));
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), books.file);
    QCOMPARE(dialogs.remainingAnswers(), 0);
}

// A power cut right after a step must find the old books or the whole new ones: the new file is
// flushed while the books are still the old ones, and their folder once the books are the new.
void tst_DatabaseCommands::replacedBooksAreFlushedAroundTheRename()
{
    TestEnv env;
    const QString books = env.path(QStringLiteral("seura.mdb"));
    const QString other = env.path(QStringLiteral("toinen.mdb"));
    QStringList flushes; // "file" or "folder", with whether the books were new at that moment
    FileOps::instance().flush = [&](const QString& path) {
        flushes << (QFileInfo(path).isDir() ? QStringLiteral("folder ") : QStringLiteral("file "))
                + (TestEnv::readFile(books) == "vanhat" ? QStringLiteral("old") : QStringLiteral("new"));
        return true;
    };
    for (const auto& step : { FileOps::instance().copy, FileOps::instance().replace }) {
        QVERIFY(TestEnv::writeFile(books, "vanhat"));
        QVERIFY(TestEnv::writeFile(other, "uudet"));
        flushes.clear();
        QVERIFY(step(other, books));
        const qsizetype oldFile = flushes.indexOf(QStringLiteral("file old"));
        QVERIFY2(oldFile >= 0 && flushes.indexOf(QStringLiteral("folder new")) > oldFile,
            qPrintable(flushes.join(u", ")));
    }
}

QTEST_GUILESS_MAIN(tst_DatabaseCommands)
#include "tst_DatabaseCommands.moc"
