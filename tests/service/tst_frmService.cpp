#include "Controls.h"
#include "LocalSmtp.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"
#include "service/ServiceMail.h"
#include "service/frmService.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSqlQuery>
#include <QTest>

namespace {

// Books in use, open through the shared connection, with the mail settings given; snapshots
// go to the world's own tmp folder.
struct Books {
    TestEnv env;
    ScriptedDialogs dialogs;
    QString file = env.path(QStringLiteral("kirjat/kööri.mdb"));
    QString tmp = env.path(QStringLiteral("tmp"));
    Books(const QString& email, const QString& smtp)
    {
        QDir().mkpath(env.path(QStringLiteral("kirjat")));
        QDir().mkpath(tmp);
        QVERIFY(TestEnv::createDatabase(file));
        ProgramSettings::installation().Database = file;
        ProgramSettings::bookkeeping().Email = email;
        ProgramSettings::bookkeeping().SMTP = smtp;
        QVERIFY(DBC::instance().AvaaDB().isOpen());
    }
    ~Books() { DBC::instance().SuljeDB(); }
    QStringList leftInTmp() const
    {
        return QDir(tmp).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::Hidden);
    }
};

void click(const QWidget& w, const char* name) { child<QPushButton>(w, name)->click(); }

} // namespace

class tst_frmService : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(!QGuiApplication::overrideCursor()); }
    void filledFromTheSettings();
    void refusalShownAtItsField_data();
    void refusalShownAtItsField();
    void failureShowsTheReasonAndAdvice();
    void sendsWithALoginWhenDemanded();
    void closingDuringASendStopsIt();
};

void tst_frmService::filledFromTheSettings()
{
    Books books(QStringLiteral("anna@kuoro.fi"), QStringLiteral("smtp.kuoro.fi"));
    frmService w(DBC::instance().AvaaDB());
    QCOMPARE(child<QLineEdit>(w, "tReceiver")->text(), QStringLiteral("tuki@vorkam.fi"));
    QCOMPARE(child<QLineEdit>(w, "tSender")->text(), QStringLiteral("anna@kuoro.fi"));
    QVERIFY(child(w, "tUserName")->isHidden());
    QVERIFY(child(w, "tPassword")->isHidden());
    QCOMPARE(child<QProgressBar>(w, "pbarSendProgress")->value(), 0);

    // An installation's own support address comes from the ini file.
    books.env.writeIni("[VORKAM]\nDatabase=" + books.file.toUtf8() + "\nHuoltoOsoite= apu@liitto.fi \n");
    QVERIFY(ProgramSettings::loadInstallation().isEmpty());
    QCOMPARE(ProgramSettings::installation().HuoltoOsoite, QStringLiteral("apu@liitto.fi"));
    QVERIFY(!books.env.readIni().contains(QStringLiteral("tuki@vorkam.fi")));
    frmService other(DBC::instance().AvaaDB());
    QCOMPARE(child<QLineEdit>(other, "tReceiver")->text(), QStringLiteral("apu@liitto.fi"));
}

// Which refusal comes first is ServiceMail's rule; the window shows it and moves to the field.
void tst_frmService::refusalShownAtItsField_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QString>("receiver");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("focus");
    QTest::newRow("no sender") << ""
                               << "tuki@vorkam.fi"
                               << "information: Täytä vielä lähettäjän sähköpostiosoite."
                               << "tSender";
    QTest::newRow("bad receiver")
        << "anna@kuoro.fi"
        << "@vorkam.fi"
        << "information: Vastaanottajan sähköpostiosoite \"@vorkam.fi\" ei kelpaa. Tarkista osoite."
        << "tReceiver";
}

void tst_frmService::refusalShownAtItsField()
{
    QFETCH(QString, sender);
    QFETCH(QString, receiver);
    QFETCH(QString, shown);
    QFETCH(QString, focus);
    Books books(sender, QStringLiteral("smtp.kuoro.fi"));
    frmService w(DBC::instance().AvaaDB());
    w.setSnapshotFolder(books.tmp);
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    child<QLineEdit>(w, "tReceiver")->setText(receiver);
    click(w, "cSend");
    QCOMPARE(books.dialogs.transcript(), QStringList { shown });
    QVERIFY(!w.sending());
    QVERIFY(child(w, "cSend")->isEnabled());
    QVERIFY(!QGuiApplication::overrideCursor());
    QCOMPARE(books.leftInTmp(), QStringList());
    QCOMPARE(QApplication::focusWidget(), child(w, qPrintable(focus)));
}

void tst_frmService::failureShowsTheReasonAndAdvice()
{
    LocalSmtp smtp({ QStringLiteral("--refuse"), QStringLiteral("tuki@vorkam.fi") });
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    Books books(QStringLiteral("anna@kuoro.fi"), smtp.server());
    frmService w(DBC::instance().AvaaDB());
    w.setSnapshotFolder(books.tmp);
    click(w, "cSend");
    QTRY_VERIFY_WITH_TIMEOUT(!books.dialogs.shown().isEmpty(), 20000);
    // The title, the server's reason and the advice, one a line.
    const QStringList lines = books.dialogs.texts(ScriptedDialogs::Kind::Error).value(0).split(u'\n');
    QVERIFY2(lines.size() == 3 && lines.at(1).contains(QStringLiteral("550")), qPrintable(lines.join(u'|')));
    QCOMPARE(lines.at(0), QStringLiteral("Huoltotiedoston lähetys epäonnistui."));
    QCOMPARE(lines.at(2), QStringLiteral("Palvelin ei hyväksynyt osoitetta."));
    QVERIFY(!QGuiApplication::overrideCursor());
    QCOMPARE(books.leftInTmp(), QStringList());
    QVERIFY(child(w, "tUserName")->isHidden());
}

// The server demands a login: the first send shows the fields for it, the second, by the menu
// command, sends a snapshot of the books with the login, which is stored nowhere.
void tst_frmService::sendsWithALoginWhenDemanded()
{
    LocalSmtp smtp({ "--tls", "starttls", "--login", "anna:salainen" });
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    Books books(QStringLiteral("anna@kuoro.fi"), smtp.server());
    frmService w(DBC::instance().AvaaDB());
    w.setSnapshotFolder(books.tmp);
    w.mailer().setTrustedCertificates(smtp.certificate);
    click(w, "cSend");
    QTRY_VERIFY_WITH_TIMEOUT(!books.dialogs.shown().isEmpty(), 20000);
    const QString error = books.dialogs.texts(ScriptedDialogs::Kind::Error).value(0);
    QVERIFY2(
        error.endsWith(QStringLiteral("Palvelin vaatii käyttäjätunnuksen ja salasanan.\nKirjoita palvelimen "
                                      "käyttäjätunnus ja salasana ja lähetä uudelleen.")),
        qPrintable(error));
    QVERIFY(!child(w, "tUserName")->isHidden());
    QVERIFY(!child(w, "tPassword")->isHidden());
    child<QLineEdit>(w, "tUserName")->setText(QStringLiteral("anna"));
    child<QLineEdit>(w, "tPassword")->setText(QStringLiteral("salainen"));
    child<QPlainTextEdit>(w, "tMessage")->setPlainText(QStringLiteral("Tase ei täsmää."));
    books.dialogs.clear();
    QList<int> values;
    connect(child<QProgressBar>(w, "pbarSendProgress"), &QProgressBar::valueChanged, this,
        [&](int value) { values.append(value); });
    ProgramSettings::bookkeeping().Seurannimi = QStringLiteral("Kuoro Kööri ry");
    const QByteArray user = qgetenv("USER");
    qputenv("USER", "ymparisto"); // the user record names the user, not the environment
    child<QAction>(w, "mSend")->trigger();
    qputenv("USER", user);
    QVERIFY(w.sending());
    QVERIFY(!child(w, "cSend")->isEnabled());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QTRY_VERIFY_WITH_TIMEOUT(!books.dialogs.shown().isEmpty(), 20000);
    QCOMPARE(books.dialogs.transcript(),
        QStringList { QStringLiteral("information: Huoltotiedosto lähetettiin onnistuneesti.") });
    QVERIFY(!QGuiApplication::overrideCursor());
    QVERIFY(child(w, "cSend")->isEnabled());
    QCOMPARE(values.last(), 100);
    QCOMPARE(books.leftInTmp(), QStringList());

    const QJsonObject received = smtp.message(1);
    // The user's name as the user record has it, whatever $USER said then, and the association's.
    QCOMPARE(received["subject"].toString(),
        ServiceMail::subject(
            ServiceMail::userName(), QStringLiteral("Kuoro Kööri ry"), QDate::currentDate()));
    QCOMPARE(received["text"].toString(), QStringLiteral("Tase ei täsmää."));
    QCOMPARE(received["to"].toString(), QStringLiteral("tuki@vorkam.fi"));
    // What the snapshot holds is ServiceMail's test.
    QCOMPARE(received["filename"].toString(), QStringLiteral("kööri.mdb"));
    QVERIFY(!books.env.readIni().contains(QStringLiteral("salainen")));
    QVERIFY(!TestEnv::readFile(books.file).contains("salainen"));
}

void tst_frmService::closingDuringASendStopsIt()
{
    LocalSmtp smtp({ QStringLiteral("--stall") });
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    Books books(QStringLiteral("anna@kuoro.fi"), smtp.server());
    auto* w = new frmService(DBC::instance().AvaaDB());
    w->setAttribute(Qt::WA_DeleteOnClose);
    QPointer<frmService> alive(w);
    w->setSnapshotFolder(books.tmp);
    w->show();
    click(*w, "cSend");
    QVERIFY(w->sending());
    QCOMPARE(books.leftInTmp().size(), 1);
    // The server takes the whole message and never answers; the window still takes commands.
    QTRY_COMPARE_WITH_TIMEOUT(child<QProgressBar>(*w, "pbarSendProgress")->value(), 100, 10000);
    QElapsedTimer clock;
    clock.start();
    click(*w, "cCancel");
    // At once, although the mail library is waiting for the server's answer.
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    QTRY_VERIFY(!alive);
    QCOMPARE(books.leftInTmp(), QStringList());
    QVERIFY(!QGuiApplication::overrideCursor());
    QTest::qWait(100);
    QCOMPARE(books.dialogs.transcript(), QStringList());
    QCOMPARE(smtp.count(), 0);
}

QTEST_MAIN(tst_frmService)
#include "tst_frmService.moc"
