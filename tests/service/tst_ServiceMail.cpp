#include "LocalSmtp.h"
#include "TestEnv.h"
#include "service/ServiceMail.h"
#include "service/ServiceMailer.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

namespace {

// A file of `size` bytes that are hard to get right by accident: every byte value, dots and
// line ends included.
QByteArray sample(qint64 size)
{
    QByteArray bytes(size, '\n');
    QRandomGenerator(quint32(size)).fillRange(reinterpret_cast<quint32*>(bytes.data()), size / 4);
    for (qint64 i = 0; i < size; i += 7)
        bytes[i] = '.';
    return bytes;
}

// A subject long enough to be folded, and a text with dots at the start of lines.
const QString Subject = QStringLiteral(
    "Vorkam-äijälä:1.2.2024 Laulukuoro Kööri ry, jonka nimi jakaa otsikon usealle riville: åäö ÅÄÖ €");
const QString Text = QStringLiteral("Hyvää päivää,\n.\n. piste rivin alussa\r\nÅke & Öhman <tuki>\n");

// A file of sample bytes as kööri.mdb, being sent from anna@kuoro.fi to tuki@vorkam.fi through
// the local server with `login` ("user:password", empty for none).
struct Sending {
    Sending(const LocalSmtp& smtp, qint64 size, const QString& login, int timeout = 30)
        : bytes(sample(size))
    {
        const QString file = dir.filePath(QStringLiteral("kööri.mdb"));
        QVERIFY(TestEnv::writeFile(file, bytes));
        mailer.setTimeout(timeout);
        mailer.setTrustedCertificates(smtp.certificate);
        mailer.send({ smtp.server, QStringLiteral("anna@kuoro.fi"), QStringLiteral("tuki@vorkam.fi"), Subject,
            Text, file, login.section(u':', 0, 0), login.section(u':', 1) });
    }
    QTemporaryDir dir;
    QByteArray bytes;
    ServiceMailer mailer;
    QSignalSpy progress { &mailer, &ServiceMailer::SendProgress };
    QSignalSpy completed { &mailer, &ServiceMailer::SendCompletedSuccessfully };
};

} // namespace

class tst_ServiceMail : public QObject {
    Q_OBJECT

private slots:
    void subjects_data();
    void subjects();
    void refusals_data();
    void refusals();
    void servers_data();
    void servers();
    void sends_data();
    void sends();
    void snapshotIsTheBooksAndGoesAway();
};

// The user's real name from the user record, else the login name ("anna"); the association's
// name after a blank.
void tst_ServiceMail::subjects_data()
{
    QTest::addColumn<QString>("gecos");
    QTest::addColumn<QString>("association");
    QTest::addColumn<QString>("subject");
    textRow("real name, no association", "Anna Virtanen,Huone 5,,", " ", "Vorkam-Anna Virtanen:5.1.2024");
    textRow("no real name", " ,Huone 5,,", " Kuoro Kööri ry ", "Vorkam-anna:5.1.2024 Kuoro Kööri ry");
}

void tst_ServiceMail::subjects()
{
    QFETCH(QString, gecos);
    QFETCH(QString, association);
    QFETCH(QString, subject);
    const QString user = ServiceMail::userName(gecos, QStringLiteral("anna"));
    QCOMPARE(ServiceMail::subject(user, association, QDate(2024, 1, 5)), subject);
}

void tst_ServiceMail::refusals_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QString>("receiver");
    QTest::addColumn<QString>("smtp");
    QTest::addColumn<QString>("message"); // empty: the mail may go
    textRow("empty sender before the server", "", "tuki@vorkam.fi", "",
        "Täytä vielä lähettäjän sähköpostiosoite.");
    textRow("server of blanks", "anna@kuoro.fi", "tuki@vorkam.fi", "   ",
        "Asetuksista puuttuu SMTP palvelimen nimi.");
    textRow("sender without domain", "a@", "tuki@vorkam.fi", "smtp.kuoro.fi",
        "Lähettäjän sähköpostiosoite \"a@\" ei kelpaa. Tarkista osoite.");
    textRow("empty receiver", "anna@kuoro.fi", " ", "smtp.kuoro.fi",
        "Täytä vielä vastaanottajan sähköpostiosoite.");
    textRow("two at signs", "anna@kuoro.fi", "tuki@@vorkam.fi", "smtp.kuoro.fi",
        "Vastaanottajan sähköpostiosoite \"tuki@@vorkam.fi\" ei kelpaa. Tarkista osoite.");
    textRow("bad port", "anna@kuoro.fi", "tuki@vorkam.fi", "smtp.kuoro.fi:posti",
        "Asetusten SMTP palvelimen nimi \"smtp.kuoro.fi:posti\" ei kelpaa. Kirjoita se muodossa palvelin tai "
        "palvelin:portti.");
    textRow("Finnish letters, blanks around", " äiti@kööri.fi ", "tuki@localhost", " localhost:2525 ", "");
}

void tst_ServiceMail::refusals()
{
    QFETCH(QString, sender);
    QFETCH(QString, receiver);
    QFETCH(QString, smtp);
    QFETCH(QString, message);
    QCOMPARE(ServiceMail::refusal(sender, receiver, smtp), message);
}

void tst_ServiceMail::servers_data()
{
    QTest::addColumn<QString>("smtp");
    QTest::addColumn<QString>("url"); // empty: not a server
    textRow("name only", " smtp.kuoro.fi ", "smtp://smtp.kuoro.fi:25");
    textRow("IPv6", "[::1]:2525", "smtp://[::1]:2525");
    textRow("port too large", "smtp.kuoro.fi:65536", "");
    textRow("blank inside", "smtp kuoro.fi", "");
}

void tst_ServiceMail::servers()
{
    QFETCH(QString, smtp);
    QFETCH(QString, url);
    const auto server = ServiceMail::parseServer(smtp);
    QCOMPARE(server ? QString::fromUtf8(server->url()) : QString(), url);
}

void tst_ServiceMail::sends_data()
{
    QTest::addColumn<QString>("options"); // of the server
    QTest::addColumn<QString>("login"); // user:password sent; empty for none
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("advice"); // empty: the mail arrives
    QTest::addColumn<bool>("loginNeeded");
    const auto row = [](const char* tag, const QString& options, const QString& login, qint64 size,
                         const QString& advice = {}, bool loginNeeded = false) {
        QTest::newRow(tag) << options << login << size << advice << loginNeeded;
    };
    const QString tls = QStringLiteral("--tls starttls --login anna:salainen");
    row("empty file, plain", "", "", 0);
    row("a megabyte, STARTTLS", tls, "anna:salainen", 1000003);
    row("50 MB book, implicit TLS", "--tls implicit --login anna:salainen", "anna:salainen", 50000000);
    row("refused recipient", "--refuse tuki@vorkam.fi", "", 5000, "Palvelin ei hyväksynyt osoitetta.");
    row("closed port", "--closed", "", 5000, "Palvelimeen 127.0.0.1 (portti %1) ei saatu yhteyttä.");
    row("no answer", "--stall", "", 5000, "Palvelin ei vastannut 1 sekunnissa.");
    row("login refused", tls, "anna:väärä", 5000,
        "Palvelin ilmoitti, että käyttäjätunnus tai salasana on väärä. Tarkista ne ja lähetä uudelleen.",
        true);
    row("certificate not trusted", tls + " --untrusted", "anna:salainen", 5000,
        "Palvelimen 127.0.0.1 varmennetta ei voitu todentaa, joten yhteys ei ole luotettava. Tarkista SMTP "
        "palvelimen nimi asetuksista.");
}

// Each row is a server and how it takes the mail: the file arrives byte for byte with its name,
// the subject and the text line for line; or the send fails with Vorkam's advice.
void tst_ServiceMail::sends()
{
    QFETCH(QString, options);
    QFETCH(QString, login);
    QFETCH(qint64, size);
    QFETCH(QString, advice);
    QFETCH(bool, loginNeeded);
    LocalSmtp smtp(options.split(u' ', Qt::SkipEmptyParts));
    if (!smtp.port)
        QSKIP(qPrintable(smtp.skipReason));
    Sending sending(smtp, size, login, advice.isEmpty() ? 30 : 1);
    QTRY_VERIFY_WITH_TIMEOUT(!sending.mailer.busy(), 60000);
    const ServiceMailer::Failure& failure = sending.mailer.failure();
    QVERIFY2(sending.completed.size() == (advice.isEmpty() ? 1 : 0), qPrintable(failure.reason));
    QCOMPARE(failure.advice, advice.contains(u'%') ? advice.arg(smtp.port) : advice);
    QCOMPARE(failure.loginNeeded, loginNeeded);
    if (!advice.isEmpty())
        return;
    const QJsonObject received = smtp.message(1);
    QCOMPARE(received["from"].toString(), QStringLiteral("anna@kuoro.fi"));
    QCOMPARE(received["subject"].toString(), Subject);
    QCOMPARE(received["text"].toString().replace(QStringLiteral("\r\n"), QStringLiteral("\n")),
        QString(Text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    QCOMPARE(received["filename"].toString(), QStringLiteral("kööri.mdb"));
    QVERIFY(TestEnv::readFile(received["file"].toString()) == sending.bytes);
    // The progress rises to the file's size and never falls back.
    QVERIFY(!sending.progress.isEmpty());
    QCOMPARE(sending.progress.last(), (QVariantList { size, size }));
    for (qsizetype i = 1; i < sending.progress.size(); ++i)
        QVERIFY(sending.progress.at(i).at(0).toLongLong() >= sending.progress.at(i - 1).at(0).toLongLong());
}

void tst_ServiceMail::snapshotIsTheBooksAndGoesAway()
{
    TestEnv env;
    const QString books = env.path(QStringLiteral("kööri.mdb"));
    QTemporaryDir tmp;
    QVERIFY(TestEnv::createDatabase(books));
    withDatabase(books, [&](QSqlDatabase& db) {
        ServiceMail::Snapshot snapshot(db, books, tmp.path());
        QVERIFY2(snapshot.ok(), qPrintable(snapshot.message()));
        QCOMPARE(QFileInfo(snapshot.path()).fileName(), QStringLiteral("kööri.mdb"));
        // Every page of the books, whatever the engine keeps in its header.
        QCOMPARE(TestEnv::readFile(snapshot.path()).mid(100), TestEnv::readFile(books).mid(100));
    });
    QCOMPARE(QDir(tmp.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries), QStringList());

    // A folder that cannot be written: a message, and nothing left behind.
    withDatabase(books, [&](QSqlDatabase& db) {
        ServiceMail::Snapshot snapshot(db, books, env.path(QStringLiteral("puuttuu/kansio")));
        QVERIFY(!snapshot.ok());
        QVERIFY(!snapshot.message().isEmpty());
    });
}

QTEST_GUILESS_MAIN(tst_ServiceMail)
#include "tst_ServiceMail.moc"
