#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "app/frmMain.h"
#include "ui/frmOhje.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <functional>

namespace {

enum class Books { Writable, ReadOnly, Missing };

// A main window started on small books, on the same read-only, or on a missing file.
struct StartedWindow {
    explicit StartedWindow(TestEnv& env, Books books = Books::Writable)
        : file(env.path(QStringLiteral("kerho.mdb")))
    {
        if (books != Books::Missing)
            TestEnv::createDatabase(file);
        if (books == Books::ReadOnly)
            QFile::setPermissions(file, QFileDevice::ReadOwner);
        if (books != Books::Writable)
            dialogs.answerNo();
        env.writeIni("[VORKAM]\nDatabase=" + file.toUtf8() + "\n");
        window.startUp();
    }
    QString file;
    ScriptedDialogs dialogs;
    frmMain window;
};

// Clicks the button of that name, or triggers the menu command.
void run(frmMain& w, const QString& command)
{
    if (auto* button = w.findChild<QPushButton*>(command))
        button->click();
    else
        w.findChild<QAction*>(command)->trigger();
}

// Hands the next modal window to `work` once the event loop shows it.
void onNextModal(QWidget& owner, const std::function<void(QWidget&)>& work)
{
    QTimer::singleShot(0, &owner, [work] {
        if (QWidget* modal = QApplication::activeModalWidget())
            work(*modal);
    });
}

// The entries of 100,00 typed in these tests that reached the books in `file`.
int typedRows(const QString& file)
{
    int n = -1;
    withDatabase(file, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        if (q.exec(QStringLiteral("SELECT COUNT(*) FROM vi WHERE viArvo = 1000000")) && q.next())
            n = q.value(0).toInt();
    });
    return n;
}

} // namespace

class tst_frmMain : public QObject {
    Q_OBJECT

private slots:
    void commandsFollowTheDatabase_data()
    {
        QTest::addColumn<int>("books");
        QTest::newRow("database open") << int(Books::Writable);
        QTest::newRow("read-only") << int(Books::ReadOnly);
        QTest::newRow("no database") << int(Books::Missing);
    }

    void commandsFollowTheDatabase()
    {
        QFETCH(int, books);
        TestEnv env;
        StartedWindow started(env, Books(books));
        frmMain& w = started.window;
        const auto enabled = [&w](const char* name) {
            return w.findChild<QAction*>(QString::fromLatin1(name))->isEnabled();
        };
        // Windows of the books need a database, commands that rewrite them writable books; the
        // settings window also mends a database name that leads nowhere.
        QCOMPARE(enabled("mTositteet"), Books(books) != Books::Missing);
        QCOMPARE(enabled("mTilikaudenVaihto"), Books(books) == Books::Writable);
        QVERIFY(enabled("mAsetukset"));
    }

    // Each command opens its working window, as a window of its own, once however often it runs.
    void workingWindowsOpenOnce()
    {
        TestEnv env;
        StartedWindow started(env);
        frmMain& w = started.window;
        const QStringList commands
            = { "cTositteet", "mTilinpaatosviennit", "cTilit", "mTulosJaTase", "mService" };
        for (const QString& command : commands) {
            run(w, command);
            run(w, command);
        }
        QStringList opened;
        for (QWidget* child : w.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (child->isWindow() && child->testAttribute(Qt::WA_DeleteOnClose))
                opened << child->windowTitle();
        QCOMPARE(opened,
            (QStringList { "Tositteet", "Tositteet - Tilinpäätösviennit", "Tilit",
                "Vorkam - Tuloslaskelma ja tase", "Huoltotiedoston lähetys" }));
    }

    // The manual opens in the help window, searchable; a web browser only on request.
    void manual()
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
        // The search goes on to the next page of the manual.
        auto* browser = help->findChild<QTextBrowser*>(QStringLiteral("tbOhje"));
        QVERIFY(help->etsi(QStringLiteral("tilikausi VAIHDETAAN")));
        QVERIFY2(browser->source().path().endsWith(QStringLiteral("/asetukset.html")),
            qPrintable(browser->source().toString()));
        QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::OpenUrl), QStringList());
        help->findChild<QAction*>(QStringLiteral("mAvaaSelaimessa"))->trigger();
        QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::OpenUrl),
            QStringList { QUrl::fromLocalFile(env.programDir() + QStringLiteral("/kayttoohje/asetukset.html"))
                              .toString() });
    }

    void workingWindowsAreLeftFirst_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("input"); // the answer the command asks for
        QTest::addColumn<int>("ends"); // program ends requested
        QTest::addColumn<int>("kept"); // typed entries left in the books
        QTest::addColumn<QString>("modal"); // the window the command opens
        const auto row = [](const char* tag, const char* command, const char* input, int ends, int kept,
                             const char* modal = "") {
            QTest::newRow(tag) << command << input << ends << kept << modal;
        };
        row("program end by the button", "cSulje", "", 1, 1);
        row("restore of a backup", "mPalautus", "", 1, 1);
        row("new books from a model", "mLuoTietokantaMallistaAOY", "taloyhtiö", 1, 1);
        row("vouchers deleted", "mMuokkaaTietokantaa", "poista nykyiset tositteet", 0, 0);
        row("year change", "mTilikaudenVaihto", "", 0, 1, "frmKaudenVaihto");
    }

    // Commands that end or replace the books run the leave check first: a refusal stops them, and
    // typed rows go into the books they were typed for, never into restored or new ones.
    void workingWindowsAreLeftFirst()
    {
        QFETCH(QString, command);
        QFETCH(QString, input);
        QFETCH(int, ends);
        QFETCH(int, kept);
        QFETCH(QString, modal);
        TestEnv env;
        QDir().mkpath(env.programDir() + QStringLiteral("/mallit"));
        QVERIFY(QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/mallit/aoymalli.mdb"),
            env.programDir() + QStringLiteral("/mallit/aoymalli.mdb")));
        StartedWindow started(env);
        frmMain& w = started.window;
        w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->click();
        auto* vouchers = w.findChild<QWidget*>(QStringLiteral("frmNewTositteet"));
        QVERIFY(vouchers);
        QAbstractItemModel* rows = vouchers->findChild<QTableView*>(QStringLiteral("grdViennit"))->model();
        rows->setData(rows->index(4, 1), QStringLiteral("100"));
        started.dialogs.clear();
        if (!input.isEmpty())
            started.dialogs.answerInput(input);
        run(w, command);
        QVERIFY2(started.dialogs.transcript().endsWith(QStringLiteral("information: Tarkista tilivalinta.")),
            qPrintable(started.dialogs.transcript().join(u'\n')));
        QCOMPARE(env.programEnds(), 0);
        QVERIFY(vouchers->isVisible());

        rows->setData(rows->index(4, 0), QStringLiteral("1910"));
        const QString backup = env.path(QStringLiteral("varmistus.mdb"));
        const QString restored = env.path(QStringLiteral("palautettu.mdb"));
        if (command == u"mPalautus") {
            QVERIFY(TestEnv::createDatabase(backup));
            started.dialogs.answerOpenFile(backup).answerSaveFile(restored);
        }
        if (!input.isEmpty())
            started.dialogs.answerInput(input);
        QString shown;
        bool shownOverVouchers = false;
        onNextModal(w, [&](QWidget& window) {
            shown = window.objectName();
            shownOverVouchers = w.findChild<QWidget*>(QStringLiteral("frmNewTositteet"));
            window.close();
        });
        run(w, command);
        QCOMPARE(shown, modal);
        QVERIFY(!shownOverVouchers);
        QVERIFY(!w.findChild<QWidget*>(QStringLiteral("frmNewTositteet")));
        QCOMPARE(env.programEnds(), ends);
        QCOMPARE(typedRows(started.file), kept);
        if (command == u"mPalautus")
            QCOMPARE(typedRows(restored), 0);
    }

    // Read-only books are shown and never written, with no engine error shown.
    void readOnlyBooksAreShownNotChanged()
    {
        TestEnv env;
        StartedWindow started(env, Books::ReadOnly);
        frmMain& w = started.window;
        const QByteArray before = TestEnv::readFile(started.file);
        w.findChild<QPushButton*>(QStringLiteral("cTositteet"))->click();
        w.findChild<QPushButton*>(QStringLiteral("cTilit"))->click();
        auto* vouchers = w.findChild<QWidget*>(QStringLiteral("frmNewTositteet"));
        auto* accounts = w.findChild<QWidget*>(QStringLiteral("frmTilitNew"));
        QVERIFY(vouchers && accounts);
        QCOMPARE(
            vouchers->findChild<QLineEdit*>(QStringLiteral("tTositenumero"))->text(), QStringLiteral("401"));
        for (QWidget* window : { vouchers, accounts })
            QVERIFY(!window->findChild<QPushButton*>(QStringLiteral("cTallenna"))->isEnabled());
        QAbstractItemModel* rows = vouchers->findChild<QTableView*>(QStringLiteral("grdViennit"))->model();
        QVERIFY(!(rows->flags(rows->index(0, 0)) & Qt::ItemIsEditable));
        vouchers->findChild<QPushButton*>(QStringLiteral("cEdellinen"))->click();
        QVERIFY(w.close());
        QCOMPARE(started.dialogs.texts(ScriptedDialogs::Kind::Error), QStringList());
        QCOMPARE(TestEnv::readFile(started.file), before);
    }
};

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
