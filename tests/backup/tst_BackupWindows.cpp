#include "BackupTestSupport.h"
#include "Controls.h"
#include "ScriptedDialogs.h"
#include "ScriptedDrives.h"
#include "TestEnv.h"
#include "app/frmMain.h"
#include "backup/BackupStick.h"
#include "backup/frmBackup.h"
#include "backup/frmBackupManagement.h"
#include "backup/frmBackupRestore.h"
#include "core/DBC.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

QString text(const QWidget& w, const char* name) { return child<QLabel>(w, name)->text(); }
bool enabled(const QWidget& w, const char* name) { return child(w, name)->isEnabled(); }
void click(const QWidget& w, const char* name)
{
    QPushButton* button = child<QPushButton>(w, name);
    QVERIFY2(button->isEnabled(), name);
    button->click();
}

QStringList items(const QListWidget* list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i)
        names.append(list->item(i)->text());
    return names;
}

// A stick, and its copies of two days once added.
struct Stick {
    TestEnv env;
    ScriptedDrives drives;
    QString stick = drives.add(QStringLiteral("KOPIOTIKKU"));
    void addCopies()
    {
        for (const char* copy :
            { "20240105/seura.mdb", "20240312/kuoro.mdb", "20240312/seura.mdb", "20240312/tilit.mdb" }) {
            const QString file = BackupStick::backupFolder(stick) + u'/' + QString::fromLatin1(copy);
            QDir().mkpath(QFileInfo(file).absolutePath());
            QVERIFY(TestEnv::createDatabase(file));
        }
        // A note beside the copies is no copy.
        QVERIFY(TestEnv::writeFile(
            BackupStick::backupFolder(stick) + QStringLiteral("/20240312/muistio.txt"), "muista"));
    }
};

} // namespace

class tst_BackupWindows : public QObject {
    Q_OBJECT

private slots:
    void backupStepsOneAfterAnother();
    void managementDeletesEachAfterItsQuestion();
    void restoreFromMainWindowEndsTheProgram();
};

// The steps one after another, and the misses before them: missing books, no stick, a full one,
// and a stick pulled out before the copy, each sending the user back to step 1.
void tst_BackupWindows::backupStepsOneAfterAnother()
{
    TestEnv env;
    ScriptedDrives drives;
    drives.add(QStringLiteral("DATA"));
    ScriptedDialogs dialogs;
    const frmBackup missing(env.path(QStringLiteral("poissa.mdb")));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information).size(), 1);
    const QString books = env.path(QStringLiteral("kirjat/seura.mdb"));
    QVERIFY(openBooks(books));
    frmBackup w(books);
    w.backup().today = QDate(2024, 3, 12);
    QVERIFY(!enabled(w, "cKopioi"));

    click(w, "cEtsiMuistitikku");
    drives.add(QStringLiteral("kopiotikku"), true, QFileInfo(books).size());
    click(w, "cEtsiMuistitikku");
    QVERIFY(!enabled(w, "cKopioi"));
    // One byte more than the books is room enough.
    drives.list[1].freeBytes = QFileInfo(books).size() + 1;
    click(w, "cEtsiMuistitikku");
    drives.list.removeAt(1);
    click(w, "cKopioi");
    QVERIFY(!enabled(w, "cKopioi"));

    const QString stick = drives.add(QStringLiteral("kopiotikku"));
    click(w, "cEtsiMuistitikku");

    click(w, "cKopioi");
    QVERIFY(QFileInfo::exists(stick + QStringLiteral("/Vorkam/20240312/seura.mdb")));

    click(w, "cTiivista");
    QVERIFY(text(w, "lblVaihe5").startsWith(QStringLiteral("5. Tiivistys onnistui.")));
    // The missing books and the missing stick were told, the lost stick as an error.
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information).size(), 2);
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error), QStringList(BackupStick::lostMessage()));
}

// The management tells a stick without copies; it deletes each chosen copy after its own question.
void tst_BackupWindows::managementDeletesEachAfterItsQuestion()
{
    Stick s;
    ScriptedDialogs dialogs;
    frmBackupManagement w;
    click(w, "cEtsiMuistitikku");
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information).size(), 1);

    s.addCopies();
    click(w, "cEtsiMuistitikku");
    QListWidget* files = child<QListWidget>(w, "lstTietokanta");
    QCOMPARE(items(child<QListWidget>(w, "lstPaiva")), QStringList({ "12.3.2024", "5.1.2024" }));
    QCOMPARE(items(files), QStringList({ "kuoro.mdb", "seura.mdb", "tilit.mdb" }));
    // Chosen from the bottom up; asked in list order; No to the first still asks the second.
    files->item(2)->setSelected(true);
    files->item(0)->setSelected(true);
    dialogs.answerNo().answerYes();
    click(w, "cPoistaValitut");
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Question).size(), 2);
    QCOMPARE(items(files), QStringList({ "kuoro.mdb", "seura.mdb" }));
    QVERIFY(!QFileInfo::exists(BackupStick::dayFolder(s.stick, QStringLiteral("20240312")) + "/tilit.mdb"));
}

// The restore from the main window: choosing another day lists its copies. A copy restored where
// no books lie yet asks nothing: the program ends and its next start opens the restored books.
void tst_BackupWindows::restoreFromMainWindowEndsTheProgram()
{
    Stick s;
    s.addCopies();
    const QString books = s.env.path(QStringLiteral("kerho.mdb"));
    QVERIFY(TestEnv::createDatabase(books));
    s.env.writeIni("[VORKAM]\nDatabase=" + books.toUtf8() + "\n");
    ScriptedDialogs dialogs;
    frmMain main;
    main.startUp();
    bool driven = false;
    QTimer::singleShot(0, this, [&] {
        auto* w = qobject_cast<frmBackupRestore*>(QApplication::activeModalWidget());
        QVERIFY(w);
        click(*w, "cEtsiMuistitikku");
        QListWidget* days = child<QListWidget>(*w, "lstPaiva");
        QListWidget* files = child<QListWidget>(*w, "lstTietokanta");
        days->setCurrentRow(1);
        QCOMPARE(items(files), QStringList(QStringLiteral("seura.mdb")));
        days->setCurrentRow(0);
        files->setCurrentRow(0);
        click(*w, "cPalauta");
        driven = true;
    });
    main.findChild<QAction*>(QStringLiteral("mKopiotikkuPalautus"))->trigger();
    QVERIFY(driven);
    QCOMPARE(s.env.programEnds(), 1);
    QVERIFY(!DBC::instance().isOpen());
    QVERIFY(
        s.env.readIni().contains(QStringLiteral("Database=") + s.env.path(QStringLiteral("data/kuoro.mdb"))));
}

QTEST_MAIN(tst_BackupWindows)
#include "tst_BackupWindows.moc"
