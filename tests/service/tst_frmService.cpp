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
#include <QTest>

namespace {

// Books in use, open through the shared connection, with the mail settings given; snapshots
// go to the world's own tmp folder.
struct Books {
    TestEnv env;
    ScriptedDialogs dialogs;
    QString file = env.path(QStringLiteral("kööri.mdb"));
    QString tmp = env.path(QStringLiteral("tmp"));
    Books(const QString& email, const QString& smtp)
    {
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
    // No test leaves the wait cursor behind.
    void cleanup() { QVERIFY(!QGuiApplication::overrideCursor()); }
    void filledFromTheSettingsAndRefusals();
    void sendsWithALoginWhenDemanded();
    void closingDuringASendStopsIt();
};

// The sender comes from the bookkeeping settings, the receiver from the ini file when it names
// an installation's own support address. A refusal is ServiceMail's rule; the window shows it,
// moves to the field and takes no snapshot.
void tst_frmService::filledFromTheSettingsAndRefusals()
{
    Books books(QStringLiteral("anna@kuoro.fi"), QStringLiteral("smtp.kuoro.fi"));
    books.env.writeIni("[VORKAM]\nDatabase=" + books.file.toUtf8() + "\nHuoltoOsoite= apu@liitto.fi \n");
    QVERIFY(ProgramSettings::loadInstallation().isEmpty());
    frmService w(DBC::instance().AvaaDB());
    w.setSnapshotFolder(books.tmp);
    w.show();
    QVERIFY(QTest::qWaitForWindowActive(&w));
    QLineEdit* sender = child<QLineEdit>(w, "tSender");
    QLineEdit* receiver = child<QLineEdit>(w, "tReceiver");
    QCOMPARE(sender->text(), QStringLiteral("anna@kuoro.fi"));
    QCOMPARE(receiver->text(), QStringLiteral("apu@liitto.fi"));
    sender->clear();
    click(w, "cSend");
    QCOMPARE(QApplication::focusWidget(), sender);
    sender->setText(QStringLiteral("anna@kuoro.fi"));
    receiver->setText(QStringLiteral("@vorkam.fi"));
    click(w, "cSend");
    QCOMPARE(QApplication::focusWidget(), receiver);
    QCOMPARE(books.dialogs.texts(ScriptedDialogs::Kind::Information).size(), 2);
    QCOMPARE(books.leftInTmp(), QStringList());
}

// The server demands a login: the failed send tells the server's reason and the advice, one a
// line, and shows the fields for it; the second, by the menu command, sends a snapshot of the
// books with the login, which is stored nowhere. No snapshot is left behind.
void tst_frmService::sendsWithALoginWhenDemanded()
{
    LocalSmtp smtp({ "--tls", "starttls", "--login", "anna:salainen" });
    if (!smtp.port)
        QSKIP(qPrintable(smtp.skipReason));
    Books books(QStringLiteral("anna@kuoro.fi"), smtp.server);
    frmService w(DBC::instance().AvaaDB());
    w.setSnapshotFolder(books.tmp);
    w.mailer().setTrustedCertificates(smtp.certificate);
    click(w, "cSend");
    QTRY_VERIFY_WITH_TIMEOUT(!books.dialogs.shown().isEmpty(), 20000);
    const QStringList lines = books.dialogs.texts(ScriptedDialogs::Kind::Error).value(0).split(u'\n');
    QVERIFY2(lines.size() == 4 && lines.at(1).contains(QStringLiteral("530")), qPrintable(lines.join(u'|')));
    QCOMPARE(lines.at(0), QStringLiteral("Huoltotiedoston lähetys epäonnistui."));
    QCOMPARE(lines.at(2), QStringLiteral("Palvelin vaatii käyttäjätunnuksen ja salasanan."));
    QCOMPARE(
        lines.at(3), QStringLiteral("Kirjoita palvelimen käyttäjätunnus ja salasana ja lähetä uudelleen."));
    QVERIFY(!child(w, "tUserName")->isHidden());
    child<QLineEdit>(w, "tUserName")->setText(QStringLiteral("anna"));
    child<QLineEdit>(w, "tPassword")->setText(QStringLiteral("salainen"));
    child<QPlainTextEdit>(w, "tMessage")->setPlainText(QStringLiteral("Tase ei täsmää."));
    ProgramSettings::bookkeeping().Seurannimi = QStringLiteral("Kuoro Kööri ry");
    child<QAction>(w, "mSend")->trigger();
    QTRY_COMPARE_WITH_TIMEOUT(books.dialogs.shown().size(), 2, 20000);
    QCOMPARE(books.dialogs.transcript().last(),
        QStringLiteral("information: Huoltotiedosto lähetettiin onnistuneesti."));

    const QJsonObject received = smtp.message(1);
    QCOMPARE(received["subject"].toString(),
        ServiceMail::subject(
            ServiceMail::userName(), QStringLiteral("Kuoro Kööri ry"), QDate::currentDate()));
    QCOMPARE(received["text"].toString(), QStringLiteral("Tase ei täsmää."));
    QVERIFY(!books.env.readIni().contains(QStringLiteral("salainen")));
    QVERIFY(!TestEnv::readFile(books.file).contains("salainen"));
}

// Closing stops the send at once, although the mail library is waiting for the server's last
// answer; nothing is told, nothing arrives, and the snapshot goes away.
void tst_frmService::closingDuringASendStopsIt()
{
    LocalSmtp smtp({ QStringLiteral("--stall") });
    if (!smtp.port)
        QSKIP(qPrintable(smtp.skipReason));
    Books books(QStringLiteral("anna@kuoro.fi"), smtp.server);
    frmService w(DBC::instance().AvaaDB());
    w.setSnapshotFolder(books.tmp);
    w.show();
    click(w, "cSend");
    QCOMPARE(books.leftInTmp().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(child<QProgressBar>(w, "pbarSendProgress")->value(), 100, 10000);
    QElapsedTimer clock;
    clock.start();
    click(w, "cCancel");
    QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(!w.sending());
    QCOMPARE(books.leftInTmp(), QStringList());
    QVERIFY(smtp.message(1, 100).isEmpty());
    QCOMPARE(books.dialogs.transcript(), QStringList());
}

QTEST_MAIN(tst_frmService)
#include "tst_frmService.moc"
