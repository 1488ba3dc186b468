#include "Dates.h"
#include "ProgramSettings.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "frmMain.h"
#include "frmOhje.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QSqlQuery>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>

namespace {

// A main window started on a small association database, or on a missing file refused.
struct StartedWindow {
    explicit StartedWindow(TestEnv& env, bool withDatabase)
    {
        const QString file = env.path(QStringLiteral("kerho.mdb"));
        if (withDatabase)
            TestEnv::createDatabase(file);
        else
            dialogs.answerNo();
        env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
        window.startUp();
    }
    ScriptedDialogs dialogs;
    frmMain window;
};

} // namespace

class tst_frmMain : public QObject {
    Q_OBJECT

private slots:
    void commandsFollowTheDatabase_data();
    void commandsFollowTheDatabase();
    void workingWindowsOpenOnce_data();
    void workingWindowsOpenOnce();
    void manualAndClose();
    void restoreEndsProgram();
    void workingWindowsAreLeftFirst_data();
    void workingWindowsAreLeftFirst();
    void readOnlyBooksAreShownNotChanged();
    void aboutWindowOpens();
    void settingsChangeTheCaptionAtOnce();
    void newBooksFromModelAfterWorkingWindows();
    void maintenanceLeavesWorkingWindowsFirst();
    void yearChangeLeavesWorkingWindowsFirst();
};

void tst_frmMain::commandsFollowTheDatabase_data()
{
    QTest::addColumn<bool>("withDatabase");
    QTest::addColumn<QString>("caption");
    QTest::newRow("database open") << true << "Vorkam - kerho - kerho.mdb";
    QTest::newRow("no database") << false << "Vorkam";
}

void tst_frmMain::commandsFollowTheDatabase()
{
    QFETCH(bool, withDatabase);
    QFETCH(QString, caption);
    TestEnv env;
    StartedWindow started(env, withDatabase);
    frmMain& w = started.window;
    QCOMPARE(w.windowTitle(), caption);
    // Windows and commands of the books need a database.
    for (const char* name : { "mTositteet", "mTilit", "mTulosJaTase", "mAvausviennit", "mTilinpaatosviennit",
             "mVarmistus", "mKopiotikkuVarmistus", "mMuokkaaTietokantaa", "mLuoTietokantaNykyisesta",
             "mTilikaudenVaihto", "mService" })
        QVERIFY2(w.findChild<QAction*>(QString::fromLatin1(name))->isEnabled() == withDatabase, name);
    QCOMPARE(w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->isEnabled(), withDatabase);
    QCOMPARE(w.findChild<QPushButton*>(QStringLiteral("cTulosJaTase"))->isEnabled(), withDatabase);
    // The settings window also mends a database name that leads nowhere; models need no books.
    for (const char* name : { "mPalautus", "mKopiotikkuPalautus", "mKopioTikkuHallinta", "mSulje", "mTietoja",
             "mAsetukset", "mLuoTietokantaMallistaYhdistys", "mLuoTietokantaMallistaAOY",
             "mLuoTietokantaMallistaLions", "mLuoTietokantaMallistaMetalli" })
        QVERIFY2(w.findChild<QAction*>(QString::fromLatin1(name))->isEnabled(), name);
}

void tst_frmMain::workingWindowsOpenOnce_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("window");
    QTest::addColumn<QString>("title");
    QTest::newRow("cTositteet") << "cTositteet"
                                << "frmNewTositteet"
                                << "Tositteet";
    QTest::newRow("mAvausviennit") << "mAvausviennit"
                                   << "frmNewTositteet"
                                   << "Avausviennit";
    QTest::newRow("mTilinpaatosviennit") << "mTilinpaatosviennit"
                                         << "frmNewTositteet" << QString::fromUtf8("Tilinpäätösviennit");
    QTest::newRow("cTilit") << "cTilit"
                            << "frmTilitNew"
                            << "Tilit";
    QTest::newRow("mTulosJaTase") << "mTulosJaTase"
                                  << "frmNewTulosJaTase"
                                  << "Tuloslaskelma ja tase";
    QTest::newRow("mService") << "mService"
                              << "frmService" << QString::fromUtf8("Huoltotiedoston lähetys");
}

void tst_frmMain::workingWindowsOpenOnce()
{
    QFETCH(QString, command);
    QFETCH(QString, window);
    QFETCH(QString, title);
    TestEnv env;
    StartedWindow started(env, true);
    frmMain& w = started.window;
    for (int i = 0; i < 2; ++i) {
        if (auto* button = w.findChild<QPushButton*>(command))
            button->click();
        else
            w.findChild<QAction*>(command)->trigger();
    }
    const QList<QWidget*> opened = w.findChildren<QWidget*>(window, Qt::FindDirectChildrenOnly);
    QCOMPARE(opened.size(), 1);
    QVERIFY(opened.first()->isWindow());
    QVERIFY2(opened.first()->windowTitle().contains(title), qPrintable(opened.first()->windowTitle()));
    QVERIFY(opened.first()->testAttribute(Qt::WA_DeleteOnClose));
}

// The manual opens in Vorkam's own help window, where it can be searched and left; a web
// browser only on request.
void tst_frmMain::manualAndClose()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    QDir().mkpath(env.programDir() + QStringLiteral("/kayttoohje"));
    TestEnv::writeFile(env.programDir() + QStringLiteral("/kayttoohje/index.html"),
        "<html><body><h1>Vorkam</h1><p><a href=\"asetukset.html\">Asetukset</a></p></body></html>");
    TestEnv::writeFile(env.programDir() + QStringLiteral("/kayttoohje/asetukset.html"),
        "<html><body><h1>Asetukset</h1><p>Tilikausi vaihdetaan...</p></body></html>");
    frmMain w;
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cKayttotuki")), Qt::LeftButton);
    auto* help = w.findChild<frmOhje*>(QStringLiteral("frmOhje"));
    QVERIFY(help && help->isVisible());
    QVERIFY(help->etsi(QStringLiteral("Asetukset")));
    QVERIFY(!help->etsi(QStringLiteral("tilinpäätösviennit")));
    // The search goes on to the next page of the manual.
    auto* browser = help->findChild<QTextBrowser*>(QStringLiteral("tbOhje"));
    QVERIFY(help->etsi(QStringLiteral("tilikausi VAIHDETAAN")));
    QVERIFY2(browser->source().path().endsWith(QStringLiteral("/asetukset.html")),
        qPrintable(browser->source().toString()));
    QVERIFY(browser->textCursor().hasSelection());
    help->findChild<QAction*>(QStringLiteral("mTakaisin"))->trigger();
    QVERIFY(browser->toPlainText().contains(QStringLiteral("Asetukset")));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::OpenUrl), QStringList());
    help->findChild<QAction*>(QStringLiteral("mAvaaSelaimessa"))->trigger();
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::OpenUrl),
        QStringList {
            QUrl::fromLocalFile(env.programDir() + QStringLiteral("/kayttoohje/index.html")).toString() });
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cSulje")), Qt::LeftButton);
    QCOMPARE(env.programEnds(), 1);
    w.findChild<QAction*>(QStringLiteral("mSulje"))->trigger();
    QCOMPARE(env.programEnds(), 2);
}

void tst_frmMain::restoreEndsProgram()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString backup = env.path(QStringLiteral("varmistus.mdb"));
    const QString target = env.path(QStringLiteral("palautettu.mdb"));
    QVERIFY(TestEnv::createDatabase(backup));
    dialogs.answerOpenFile(backup).answerSaveFile(target);
    frmMain w;
    w.findChild<QAction*>(QStringLiteral("mPalautus"))->trigger();
    QCOMPARE(env.programEnds(), 1);
    QCOMPARE(TestEnv::readFile(target), TestEnv::readFile(backup));
}

void tst_frmMain::workingWindowsAreLeftFirst_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("program end by the button") << "cSulje";
    QTest::newRow("program end by the menu") << "mSulje";
    QTest::newRow("restore of a backup") << "mPalautus";
}

// Ending the program or replacing the books runs each working window's leave check first: an
// amount without an account keeps the program open, and rows typed are saved into the books
// they were typed for, never into restored ones.
void tst_frmMain::workingWindowsAreLeftFirst()
{
    QFETCH(QString, command);
    TestEnv env;
    StartedWindow started(env, true);
    frmMain& w = started.window;
    const QString books = env.path(QStringLiteral("kerho.mdb"));
    const QString backup = env.path(QStringLiteral("varmistus.mdb"));
    const QString restored = env.path(QStringLiteral("palautettu.mdb"));
    QVERIFY(TestEnv::createDatabase(backup));
    const auto run = [&] {
        if (auto* button = w.findChild<QPushButton*>(command))
            button->click();
        else
            w.findChild<QAction*>(command)->trigger();
    };
    w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->click();
    auto* vouchers = w.findChild<QWidget*>(QStringLiteral("frmNewTositteet"));
    QVERIFY(vouchers);
    QAbstractItemModel* rows = vouchers->findChild<QTableView*>(QStringLiteral("grdViennit"))->model();
    rows->setData(rows->index(4, 1), QStringLiteral("100"));
    started.dialogs.clear();
    run();
    QCOMPARE(
        started.dialogs.transcript(), QStringList { QStringLiteral("information: Tarkista tilivalinta.") });
    QCOMPARE(env.programEnds(), 0);
    QVERIFY(vouchers->isVisible());

    rows->setData(rows->index(4, 0), QStringLiteral("1910"));
    if (command == u"mPalautus")
        started.dialogs.answerOpenFile(backup).answerSaveFile(restored);
    run();
    QCOMPARE(env.programEnds(), 1);
    const auto typedRows = [](const QString& file) {
        int n = -1;
        withDatabase(file, [&](QSqlDatabase& db) {
            QSqlQuery q(db);
            if (q.exec(QStringLiteral("SELECT COUNT(*) FROM vi WHERE viArvo = 1000000")) && q.next())
                n = q.value(0).toInt();
        });
        return n;
    };
    QCOMPARE(typedRows(books), 1);
    if (command == u"mPalautus")
        QCOMPARE(typedRows(restored), 0);
}

// Books the user keeps read-only open for reading: every window shows them, no command writes,
// and no box shows an engine error.
void tst_frmMain::readOnlyBooksAreShownNotChanged()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString file = env.path(QStringLiteral("kerho.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner));
    env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
    const QByteArray before = TestEnv::readFile(file);
    dialogs.answerNo();
    frmMain w;
    w.startUp();
    QVERIFY(w.windowTitle().endsWith(QStringLiteral("(vain luku)")));
    QVERIFY(!w.findChild<QAction*>(QStringLiteral("mVarmistus"))->isEnabled());
    QVERIFY(!w.findChild<QAction*>(QStringLiteral("mMuokkaaTietokantaa"))->isEnabled());
    QVERIFY(!w.findChild<QAction*>(QStringLiteral("mTilikaudenVaihto"))->isEnabled());
    QVERIFY(w.findChild<QAction*>(QStringLiteral("mService"))->isEnabled());
    w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->click();
    w.findChild<QPushButton*>(QStringLiteral("cTilit"))->click();
    auto* vouchers = w.findChild<QWidget*>(QStringLiteral("frmNewTositteet"));
    auto* accounts = w.findChild<QWidget*>(QStringLiteral("frmTilitNew"));
    QVERIFY(vouchers && accounts);
    QCOMPARE(vouchers->findChild<QLineEdit*>(QStringLiteral("tTositenumero"))->text(), QStringLiteral("401"));
    for (const char* name : { "cUusi", "cTallenna", "cPoista", "cPeru" }) {
        QVERIFY2(!vouchers->findChild<QPushButton*>(QString::fromLatin1(name))->isEnabled(), name);
        QVERIFY2(!accounts->findChild<QPushButton*>(QString::fromLatin1(name))->isEnabled(), name);
    }
    QAbstractItemModel* rows = vouchers->findChild<QTableView*>(QStringLiteral("grdViennit"))->model();
    QVERIFY(!(rows->flags(rows->index(0, 0)) & Qt::ItemIsEditable));
    vouchers->findChild<QPushButton*>(QStringLiteral("cEdellinen"))->click();
    QVERIFY(w.close());
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Error), QStringList());
    QCOMPARE(TestEnv::readFile(file), before);
}

void tst_frmMain::aboutWindowOpens()
{
    TestEnv env;
    frmMain w;
    bool seen = false;
    QStringList libraries;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        seen = dialog && dialog->objectName() == QLatin1String("frmAbout");
        if (!dialog)
            return;
        // Each library with the version actually loaded.
        const auto* table = dialog->findChild<QTableWidget*>(QStringLiteral("tKirjastot"));
        for (int row = 0; table && row < table->rowCount(); ++row)
            libraries << table->item(row, 0)->text() + u' ' + table->item(row, 1)->text();
        dialog->accept();
    });
    w.findChild<QAction*>(QStringLiteral("mTietoja"))->trigger();
    QVERIFY(seen);
    QVERIFY2(libraries.contains(QStringLiteral("Qt ") + QString::fromLatin1(qVersion())),
        qPrintable(libraries.join(u',')));
    QVERIFY2(libraries.filter(QRegularExpression(QStringLiteral("^SQLite 3\\.\\d+"))).size() == 1,
        qPrintable(libraries.join(u',')));
}

void tst_frmMain::settingsChangeTheCaptionAtOnce()
{
    TestEnv env;
    StartedWindow started(env, true);
    frmMain& w = started.window;
    bool seen = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        seen = dialog && dialog->objectName() == QLatin1String("frmAsetukset");
        if (!dialog)
            return;
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("tSeurannimi"));
        name->selectAll();
        QTest::keyClicks(name, QStringLiteral("Kerho O'Hara ry"));
        dialog->findChild<QPushButton*>(QStringLiteral("cTallenna"))->click();
        dialog->findChild<QPushButton*>(QStringLiteral("cSulje"))->click();
    });
    w.findChild<QAction*>(QStringLiteral("mAsetukset"))->trigger();
    QVERIFY(seen);
    QCOMPARE(w.windowTitle(), QStringLiteral("Vorkam - Kerho O'Hara ry - kerho.mdb"));
    QCOMPARE(started.dialogs.transcript(), QStringList());
    QCOMPARE(env.programEnds(), 0);
}

// A new association's books are made only after the working windows have been left: rows typed
// are saved into the books they were typed for, then the program ends on the new setting.
void tst_frmMain::newBooksFromModelAfterWorkingWindows()
{
    TestEnv env;
    StartedWindow started(env, true);
    frmMain& w = started.window;
    QDir().mkpath(env.programDir() + QStringLiteral("/mallit"));
    QVERIFY(QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/mallit/aoymalli.mdb"),
        env.programDir() + QStringLiteral("/mallit/aoymalli.mdb")));
    w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->click();
    auto* vouchers = w.findChild<QWidget*>(QStringLiteral("frmNewTositteet"));
    QAbstractItemModel* rows = vouchers->findChild<QTableView*>(QStringLiteral("grdViennit"))->model();
    rows->setData(rows->index(4, 0), QStringLiteral("1910"));
    rows->setData(rows->index(4, 1), QStringLiteral("100"));
    started.dialogs.clear();
    started.dialogs.answerInput(QStringLiteral("taloyhtiö"));
    w.findChild<QAction*>(QStringLiteral("mLuoTietokantaMallistaAOY"))->trigger();
    QCOMPARE(env.programEnds(), 1);
    QVERIFY(!w.findChild<QWidget*>(QStringLiteral("frmNewTositteet")));
    const QString created = env.path(QStringLiteral("data/taloyhti.mdb"));
    QVERIFY(QFile::exists(created));
    QVERIFY(env.readIni().contains(QStringLiteral("Database=") + created));
    int typed = -1;
    withDatabase(env.path(QStringLiteral("kerho.mdb")), [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT COUNT(*) FROM vi WHERE viArvo = 1000000")) && q.next())
            typed = q.value(0).toInt();
    });
    QCOMPARE(typed, 1);
}

void tst_frmMain::maintenanceLeavesWorkingWindowsFirst()
{
    TestEnv env;
    StartedWindow started(env, true);
    frmMain& w = started.window;
    w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->click();
    QVERIFY(w.findChild<QWidget*>(QStringLiteral("frmNewTositteet")));
    started.dialogs.clear();
    started.dialogs.answerInput(QStringLiteral("poista nykyiset tositteet"));
    w.findChild<QAction*>(QStringLiteral("mMuokkaaTietokantaa"))->trigger();
    // The window showing the vouchers was left before they were deleted, and wrote nothing back.
    QVERIFY(!w.findChild<QWidget*>(QStringLiteral("frmNewTositteet")));
    QVERIFY(started.dialogs.transcript().last().startsWith(
        QStringLiteral("information: Nykyiset tositteet poistettu.\nVarmuuskopio ennen muutosta: ")));
    int vouchers = -1;
    withDatabase(env.path(QStringLiteral("kerho.mdb")), [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT COUNT(*) FROM \"to\"")) && q.next())
            vouchers = q.value(0).toInt();
    });
    QCOMPARE(vouchers, 0);
    QCOMPARE(env.programEnds(), 0);
}

// The year change leaves the working windows first and opens its own window over the books.
void tst_frmMain::yearChangeLeavesWorkingWindowsFirst()
{
    TestEnv env;
    StartedWindow started(env, true);
    frmMain& w = started.window;
    w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->click();
    QVERIFY(w.findChild<QWidget*>(QStringLiteral("frmNewTositteet")));
    QString shown;
    QTimer::singleShot(0, &w, [&] {
        QWidget* window = QApplication::activeModalWidget();
        if (!window)
            return;
        shown = window->objectName() + u' '
            + window->findChild<QLabel*>(QStringLiteral("lblTilikausiAlku"))->text();
        QVERIFY(!w.findChild<QWidget*>(QStringLiteral("frmNewTositteet")));
        window->findChild<QPushButton*>(QStringLiteral("cPeru"))->click();
    });
    w.findChild<QAction*>(QStringLiteral("mTilikaudenVaihto"))->trigger();
    QCOMPARE(shown,
        QStringLiteral("frmKaudenVaihto ") + Dates::format(ProgramSettings::bookkeeping().TilikausiAlku));
}

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
