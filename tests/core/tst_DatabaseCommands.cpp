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

const QString Done
    = QStringLiteral("information: Tietokannan varmuuskopiointi ja uudelleenjärjestely valmis.");
const QString RenameFailed = QStringLiteral("error: Tietokannan uudelleen nimeäminen ei onnistu.");
const QString FinalRenameFailed
    = QStringLiteral("error: Korjatun tietokannan uudelleen nimeäminen ei onnistu.");
const QString StopRestore = QStringLiteral("question: Haluatko keskeyttää tietokannan palautuksen?");

QString startMessage(const QString& folder)
{
    return QStringLiteral(
        "information: Aloitetaan tietokannan varmuuskopiointi ja uudelleenjärjestely.\nVarmista "
        "että kohde %1 on valmiina.\nKopiointi kestää hetken...")
        .arg(folder);
}

int voucherCount(const QString& file)
{
    int count = -1;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT COUNT(*) FROM \"to\"")) && q.next())
            count = q.value(0).toInt();
    });
    return count;
}

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
    void workNames();
    void backupAndReorganize();
    void folderWithoutSlashIsGluedToName();
    void copyFailureLeavesEverything();
    void failedStepKeepsTheBooks_data();
    void failedStepKeepsTheBooks();
    void restoreReplacesAfterQuestion();
    void restoreCanBeStopped();
    void restoreRefusesNonDatabase();
    void replacedBooksAreFlushedAroundTheRename();
};

// The work files' names replace the last character, whatever the extension (seura.md2, seura.md3).
void tst_DatabaseCommands::workNames()
{
    QCOMPARE(
        DatabaseCommands::workName(QStringLiteral("/koti/kirjat"), u'2'), QStringLiteral("/koti/kirja2"));
}

void tst_DatabaseCommands::backupAndReorganize()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    withDatabase(books.file, [](QSqlDatabase& db) {
        QSqlQuery(db).exec(QStringLiteral("DELETE FROM \"to\" WHERE toNumero > 100"));
    });
    const QByteArray before = TestEnv::readFile(books.file);
    const int vouchers = voucherCount(books.file);
    // A leftover compacted copy of an interrupted run and the previous file are replaced.
    QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("seura.md2")), "keskeytynyt"));
    QVERIFY(TestEnv::writeFile(env.path(QStringLiteral("seura.md3")), "viime kerta"));

    QVERIFY(DatabaseCommands::backupAndReorganize());
    QCOMPARE(dialogs.transcript(), (QStringList { startMessage(books.backupDir), Done }));
    QVERIFY(!DBC::instance().isOpen());
    QCOMPARE(TestEnv::readFile(books.backupDir + QStringLiteral("seura.mdb")), before);
    QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("seura.md3"))), before);
    QVERIFY(!QFile::exists(env.path(QStringLiteral("seura.md2"))));
    // The compacted database holds the same books in less space.
    QCOMPARE(voucherCount(books.file), vouchers);
    QVERIFY(QFileInfo(books.file).size() < before.size());
    QVERIFY(DBC::instance().AvaaDB().isOpen());

    // A second backup keeps the first under the time it was made.
    const QString first = books.backupDir + QStringLiteral("seura.mdb");
    const QString kept = DatabaseCommands::keptName(first);
    QVERIFY(kept.startsWith(books.backupDir + QStringLiteral("seura 20")) && kept.endsWith(u".mdb"));
    QVERIFY(DatabaseCommands::backupAndReorganize());
    QCOMPARE(dialogs.transcript().last(),
        Done + QStringLiteral("\nEdellinen varmuuskopio säilyi nimellä %1.").arg(kept));
    QCOMPARE(TestEnv::readFile(kept), before);
    QCOMPARE(TestEnv::readFile(first), TestEnv::readFile(env.path(QStringLiteral("seura.md3"))));
    const QString taken = DatabaseCommands::keptName(first);
    QVERIFY(TestEnv::writeFile(taken, "jo olemassa"));
    QVERIFY(!QFile::exists(DatabaseCommands::keptName(first)));
}

void tst_DatabaseCommands::folderWithoutSlashIsGluedToName()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    ProgramSettings::installation().DatabaseBackup = env.path(QStringLiteral("tikku"));
    QVERIFY(DatabaseCommands::backupAndReorganize());
    QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("tikkuseura.mdb"))), books.bytes);
}

// A folder the user named is not made: a missing memory stick is told, and nothing is touched.
void tst_DatabaseCommands::copyFailureLeavesEverything()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    ProgramSettings::installation().DatabaseBackup = env.path(QStringLiteral("ei-tikkua/"));
    QVERIFY(!DatabaseCommands::backupAndReorganize());
    const QString copyName = env.path(QStringLiteral("ei-tikkua/seura.mdb"));
    QCOMPARE(dialogs.transcript().last(),
        QStringLiteral("error: Tietokantaa ei voida kopioida \nhakemistosta: %1\nhakemistoon: %2\nTarkista "
                       "asetuksista tietokanta ja varmistushakemistot!\nYritä tämän jälkeen uudestaan.")
            .arg(books.file, copyName));
    QCOMPARE(TestEnv::readFile(books.file), books.bytes);
    QVERIFY(!QDir(env.path(QStringLiteral("ei-tikkua"))).exists());
    QVERIFY(!QFile::exists(env.path(QStringLiteral("seura.md2"))));
    QVERIFY(!QFile::exists(env.path(QStringLiteral("seura.md3"))));
}

void tst_DatabaseCommands::failedStepKeepsTheBooks_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("message"); // the start of the last message
    QTest::addColumn<bool>("compactedKept");
    QTest::addColumn<bool>("previousKept");
    // A folder that cannot be removed takes the name of the compacted copy or of the previous file.
    QTest::newRow("compaction") << "seura.md2/sisalto"
                                << "error: Tietokannan uudelleenjärjestely ei onnistunut. Palauta tietokanta "
                                   "varmuuskopiolta ennen kuin jatkat Vorkamin käyttöä.\n"
                                << false << false;
    QTest::newRow("renaming the books to the previous file")
        << "seura.md3/sisalto" << RenameFailed << true << false;
    QTest::newRow("renaming the compacted copy to the books") << "" << FinalRenameFailed << true << true;
}

// The books stay in place as they were, with whatever was made beside them.
void tst_DatabaseCommands::failedStepKeepsTheBooks()
{
    QFETCH(QString, obstacle);
    QFETCH(QString, message);
    QFETCH(bool, compactedKept);
    QFETCH(bool, previousKept);
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    if (obstacle.isEmpty())
        FileOps::instance().replace = [](const QString&, const QString&) { return false; };
    else
        QVERIFY(QDir().mkpath(env.path(obstacle)));
    QVERIFY(!DatabaseCommands::backupAndReorganize());
    QVERIFY2(dialogs.transcript().last().startsWith(message), qPrintable(dialogs.transcript().last()));
    QCOMPARE(TestEnv::readFile(books.file), books.bytes);
    if (compactedKept)
        QVERIFY(voucherCount(env.path(QStringLiteral("seura.md2"))) > 0);
    if (previousKept)
        QCOMPARE(TestEnv::readFile(env.path(QStringLiteral("seura.md3"))), books.bytes);
}

void tst_DatabaseCommands::restoreReplacesAfterQuestion()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    env.writeIni("[VORKAM]\nDatabase=" + books.file.toUtf8() + "\n");
    const QString backup = env.path(QStringLiteral("varmistus/vanha.mdb"));
    QVERIFY(TestEnv::createDatabase(backup));
    withDatabase(backup, [](QSqlDatabase& db) { QSqlQuery(db).exec(QStringLiteral("DELETE FROM \"to\"")); });
    const QByteArray backupBytes = TestEnv::readFile(backup);

    // The first target is refused, then the user goes on and takes the database in use.
    dialogs.answerOpenFile(backup)
        .answerSaveFile(books.file)
        .answerNo()
        .answerNo()
        .answerSaveFile(books.file)
        .answerYes();
    QVERIFY(DatabaseCommands::restoreFromBackup());
    const QStringList t = dialogs.transcript();
    QCOMPARE(t.at(2), QStringLiteral("question: Tiedosto on jo olemassa, korvataanko varmuuskopiolla?"));
    QCOMPARE(t.at(3), StopRestore);
    QCOMPARE(t.last(),
        QStringLiteral("information: Tietokanta on palautettu. Vorkam suljetaan, jotta palautettu "
                       "tietokanta otetaan käyttöön seuraavalla käynnistyksellä."));
    QCOMPARE(TestEnv::readFile(books.file), backupBytes);
    QCOMPARE(IniSettingsStore(env.iniFile()).read(QStringLiteral("Database"), {}), books.file);
    QCOMPARE(dialogs.remainingAnswers(), 0);
}

void tst_DatabaseCommands::restoreCanBeStopped()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    const QString backup = env.path(QStringLiteral("varmistus/vanha.mdb"));
    QVERIFY(TestEnv::createDatabase(backup));
    // Cancelling the first dialog asks whether to stop; No shows it again; the target is then cancelled.
    dialogs.answerOpenFile(QString()).answerNo().answerOpenFile(backup).answerSaveFile(QString()).answerYes();
    QVERIFY(!DatabaseCommands::restoreFromBackup());
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Question), (QStringList(2, StopRestore.mid(10))));
    QCOMPARE(TestEnv::readFile(books.file), books.bytes);
    QVERIFY(!DBC::instance().isOpen());
}

void tst_DatabaseCommands::restoreRefusesNonDatabase()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    const QString junk = env.path(QStringLiteral("kuva.mdb"));
    QVERIFY(TestEnv::writeFile(junk, "\x89PNG kuva eikä tietokanta"));
    dialogs.answerOpenFile(junk).answerYes();
    QVERIFY(!DatabaseCommands::restoreFromBackup());
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error).size(), 1);
    QCOMPARE(TestEnv::readFile(books.file), books.bytes);
}

QTEST_GUILESS_MAIN(tst_DatabaseCommands)
// A power cut right after a step must find the old books or the whole new ones: the new file is
// flushed while the books are still the old ones, and their folder once the books are the new.
void tst_DatabaseCommands::replacedBooksAreFlushedAroundTheRename()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    Books books(env);
    QStringList flushes; // "file" or "folder", with whether the books were new at that moment
    FileOps::instance().flush = [&](const QString& path) {
        flushes << (QFileInfo(path).isDir() ? QStringLiteral("folder ") : QStringLiteral("file "))
                + (TestEnv::readFile(books.file) == books.bytes ? QStringLiteral("old")
                                                                : QStringLiteral("new"));
        return true;
    };
    const auto flushedAround = [&] {
        return flushes.indexOf(QStringLiteral("file old")) >= 0
            && flushes.indexOf(QStringLiteral("folder new")) > flushes.indexOf(QStringLiteral("file old"));
    };
    QVERIFY(DatabaseCommands::backupAndReorganize());
    QVERIFY2(flushedAround(), qPrintable(flushes.join(u", ")));

    DBC::instance().SuljeDB();
    for (const auto& step : { FileOps::instance().copy, FileOps::instance().replace }) {
        books.bytes = TestEnv::readFile(books.file);
        const QString other = env.path(QStringLiteral("toinen.mdb"));
        QVERIFY(TestEnv::writeFile(other, books.bytes + "+"));
        flushes.clear();
        QVERIFY(step(other, books.file));
        QVERIFY2(flushedAround(), qPrintable(flushes.join(u", ")));
    }
}

#include "tst_DatabaseCommands.moc"
