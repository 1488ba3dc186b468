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
    void sendsTheFileAsAnAttachment_data();
    void sendsTheFileAsAnAttachment();
    void failures_data();
    void failures();
    void cancelMidTransferStopsAtOnceAndReportsNothing();
    void snapshotIsTheBooksAndGoesAway();
};

// The user's real name from the user record, else the login name ("anna"); the association's
// name after a blank.
void tst_ServiceMail::subjects_data()
{
    QTest::addColumn<QString>("gecos");
    QTest::addColumn<QString>("association");
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QString>("subject");
    const auto row
        = [](const char* tag, const char* gecos, const char* association, QDate today, const char* subject) {
              QTest::newRow(tag) << QString::fromUtf8(gecos) << QString::fromUtf8(association) << today
                                 << QString::fromUtf8(subject);
          };
    row("real name, no association", "Anna Virtanen,Huone 5,,", " ", QDate(2024, 1, 5),
        "Vorkam-Anna Virtanen:5.1.2024");
    row("empty real name", " ,Huone 5,,", " Kuoro Kööri ry ", QDate(2025, 12, 31),
        "Vorkam-anna:31.12.2025 Kuoro Kööri ry");
    row("no GECOS", "", "Kuoro", QDate(2024, 10, 12), "Vorkam-anna:12.10.2024 Kuoro");
}

void tst_ServiceMail::subjects()
{
    QFETCH(QString, gecos);
    QFETCH(QString, association);
    QFETCH(QDate, today);
    QFETCH(QString, subject);
    QCOMPARE(ServiceMail::subject(ServiceMail::userName(gecos, QStringLiteral("anna")), association, today),
        subject);
}

void tst_ServiceMail::refusals_data()
{
    QTest::addColumn<QString>("sender");
    QTest::addColumn<QString>("receiver");
    QTest::addColumn<QString>("smtp");
    QTest::addColumn<QString>("message"); // empty: the mail may go
    const auto row = [](const char* tag, const char* sender, const char* receiver, const char* smtp,
                         const QString& message) {
        QTest::newRow(tag) << QString::fromUtf8(sender) << QString::fromUtf8(receiver)
                           << QString::fromUtf8(smtp) << message;
    };
    const QString noSender = QStringLiteral("Täytä vielä lähettäjän sähköpostiosoite.");
    const QString noServer = QStringLiteral("Asetuksista puuttuu SMTP palvelimen nimi.");
    row("empty sender before the server", "", "tuki@vorkam.fi", "", noSender);
    row("server of blanks", "anna@kuoro.fi", "tuki@vorkam.fi", "   ", noServer);
    row("server before a bad sender", "anna@", "tuki@vorkam.fi", "", noServer);
    row("sender without domain", "a@", "tuki@vorkam.fi", "smtp.kuoro.fi",
        QStringLiteral("Lähettäjän sähköpostiosoite \"a@\" ei kelpaa. Tarkista osoite."));
    row("space inside sender", "anna virtanen@kuoro.fi", "tuki@vorkam.fi", "smtp.kuoro.fi",
        QStringLiteral("Lähettäjän sähköpostiosoite \"anna virtanen@kuoro.fi\" ei kelpaa. Tarkista osoite."));
    row("empty receiver", "anna@kuoro.fi", " ", "smtp.kuoro.fi",
        QStringLiteral("Täytä vielä vastaanottajan sähköpostiosoite."));
    row("two at signs", "anna@kuoro.fi", "tuki@@vorkam.fi", "smtp.kuoro.fi",
        QStringLiteral("Vastaanottajan sähköpostiosoite \"tuki@@vorkam.fi\" ei kelpaa. Tarkista osoite."));
    row("bad port", "anna@kuoro.fi", "tuki@vorkam.fi", "smtp.kuoro.fi:posti",
        QStringLiteral(
            "Asetusten SMTP palvelimen nimi \"smtp.kuoro.fi:posti\" ei kelpaa. Kirjoita se muodossa "
            "palvelin tai palvelin:portti."));
    row("all good, blanks around", " anna@kuoro.fi ", "tuki@vorkam.fi", " smtp.kuoro.fi ", QString());
    row("Finnish letters", "äiti@kööri.fi", "tuki@localhost", "localhost:2525", QString());
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
    textRow("name only", "smtp.kuoro.fi", "smtp://smtp.kuoro.fi:25");
    textRow("submission", " smtp.kuoro.fi:587 ", "smtp://smtp.kuoro.fi:587");
    textRow("implicit TLS", "smtp.kuoro.fi:465", "smtps://smtp.kuoro.fi:465");
    textRow("IPv6", "[::1]:2525", "smtp://[::1]:2525");
    textRow("port too large", "smtp.kuoro.fi:65536", "");
    textRow("blank inside", "smtp kuoro.fi", "");
    textRow("a URL", "smtp://smtp.kuoro.fi", "");
}

void tst_ServiceMail::servers()
{
    QFETCH(QString, smtp);
    QFETCH(QString, url);
    const auto server = ServiceMail::parseServer(smtp);
    QCOMPARE(server ? QString::fromUtf8(server->url()) : QString(), url);
}

void tst_ServiceMail::sendsTheFileAsAnAttachment_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("options"); // of the server: TLS and a login, or plain
    const auto row
        = [](const char* tag, qint64 size, const char* fileName, const char* text, const char* tls) {
              const bool login = *tls; // a login only over TLS
              QTest::newRow(tag) << size << QString::fromUtf8(fileName) << QString::fromUtf8(text)
                                 << (login ? QStringList { "--tls", tls, "--login", "anna:salainen" }
                                           : QStringList());
          };
    row("empty file, plain", 0, "tyhjä.mdb", "", "");
    row("a megabyte, STARTTLS and a login", 1000003, "kööri.mdb",
        "Hyvää päivää,\n.\n. piste rivin alussa\r\nÅke & Öhman <tuki>\n", "starttls");
    row("50 MB book, implicit TLS and a login", 50000000, "seura.mdb", "Hei", "implicit");
}

void tst_ServiceMail::sendsTheFileAsAnAttachment()
{
    QFETCH(qint64, size);
    QFETCH(QString, fileName);
    QFETCH(QString, text);
    QFETCH(QStringList, options);
    LocalSmtp smtp(options);
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    QTemporaryDir dir;
    const QString file = dir.filePath(fileName);
    const QByteArray bytes = sample(size);
    QVERIFY(TestEnv::writeFile(file, bytes));

    ServiceMailer mailer;
    mailer.setTrustedCertificates(smtp.certificate);
    QSignalSpy progress(&mailer, &ServiceMailer::SendProgress);
    QSignalSpy completed(&mailer, &ServiceMailer::SendCompletedSuccessfully);
    const QString subject = ServiceMail::subject(QStringLiteral("äijälä"),
        QStringLiteral("Laulukuoro Kööri ry, jonka nimi jakaa otsikon usealle riville: åäö ÅÄÖ €"),
        QDate(2024, 2, 1));
    mailer.send({ smtp.server(), QStringLiteral("anna@kuoro.fi"), QStringLiteral("tuki@vorkam.fi"), subject,
        text, file, options.isEmpty() ? "" : "anna", options.isEmpty() ? "" : "salainen" });
    QTRY_VERIFY_WITH_TIMEOUT(!mailer.busy(), 60000);
    QVERIFY2(completed.size() == 1, qPrintable(mailer.failure().reason));
    const QJsonObject received = smtp.message(1);
    QCOMPARE(received["from"].toString(), QStringLiteral("anna@kuoro.fi"));
    QCOMPARE(received["to"].toString(), QStringLiteral("tuki@vorkam.fi"));
    QCOMPARE(received["subject"].toString(), subject);
    const auto lines = [](QString t) { return t.replace(QStringLiteral("\r\n"), QStringLiteral("\n")); };
    QCOMPARE(lines(received["text"].toString()), lines(text));
    QCOMPARE(received["attachments"].toInt(), 1);
    QCOMPARE(received["filename"].toString(), fileName);
    QVERIFY(TestEnv::readFile(received["file"].toString()) == bytes);

    // The progress rises to the file's size and never falls back.
    QVERIFY(!progress.isEmpty());
    QCOMPARE(progress.last(), (QVariantList { size, size }));
    for (qsizetype i = 1; i < progress.size(); ++i)
        QVERIFY(progress.at(i).at(0).toLongLong() >= progress.at(i - 1).at(0).toLongLong());
    if (size > 100000)
        QVERIFY(progress.size() > 10);
}

void tst_ServiceMail::failures_data()
{
    QTest::addColumn<QStringList>("options"); // of the server
    QTest::addColumn<QString>("login"); // user:password sent; empty for none
    QTest::addColumn<QString>("reason"); // a part of curl's words
    QTest::addColumn<QString>("advice");
    QTest::addColumn<bool>("loginNeeded");
    const auto row = [](const char* tag, const QStringList& options, const char* login, const char* reason,
                         const char* advice, bool loginNeeded) {
        QTest::newRow(tag) << options << QString::fromUtf8(login) << QString::fromUtf8(reason)
                           << QString::fromUtf8(advice) << loginNeeded;
    };
    const QStringList tls { "--tls", "starttls", "--login", "anna:salainen" };
    row("refused recipient", { "--refuse", "tuki@vorkam.fi" }, "", "550", "Palvelin ei hyväksynyt osoitetta.",
        false);
    row("closed port", { "--closed" }, "", "onnect", "Palvelimeen 127.0.0.1 (portti %1) ei saatu yhteyttä.",
        false);
    row("no answer", { "--stall" }, "", "", "Palvelin ei vastannut 1 sekunnissa.", false);
    row("login demanded", { "--login", "anna:salainen" }, "", "530",
        "Palvelin vaatii käyttäjätunnuksen ja salasanan.", true);
    row("login refused", tls, "anna:väärä", "",
        "Palvelin ilmoitti, että käyttäjätunnus tai salasana on väärä. Tarkista ne ja lähetä uudelleen.",
        true);
    row("certificate not trusted", tls + QStringList { "--untrusted" }, "anna:salainen", "certificate",
        "Palvelimen 127.0.0.1 varmennetta ei voitu todentaa, joten yhteys ei ole luotettava. Tarkista SMTP "
        "palvelimen nimi asetuksista.",
        false);
}

void tst_ServiceMail::failures()
{
    QFETCH(QStringList, options);
    QFETCH(QString, login);
    QFETCH(QString, reason);
    QFETCH(QString, advice);
    QFETCH(bool, loginNeeded);
    LocalSmtp smtp(options);
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::writeFile(file, sample(5000)));

    ServiceMailer mailer;
    mailer.setTimeout(1);
    mailer.setTrustedCertificates(smtp.certificate);
    QSignalSpy completed(&mailer, &ServiceMailer::SendCompletedSuccessfully);
    QSignalSpy failed(&mailer, &ServiceMailer::SendFailed);
    mailer.send({ smtp.server(), QStringLiteral("anna@kuoro.fi"), QStringLiteral("tuki@vorkam.fi"),
        QStringLiteral("Vorkam-anna:1.2.2024"), QStringLiteral("Hei"), file, login.section(u':', 0, 0),
        login.section(u':', 1) });
    QTRY_VERIFY_WITH_TIMEOUT(!mailer.busy(), 20000);
    QCOMPARE(completed.size(), 0);
    QCOMPARE(failed.size(), 1);
    const ServiceMailer::Failure& failure = mailer.failure();
    QCOMPARE(failed.first().first().toString(), failure.reason);
    QVERIFY2(failure.reason.contains(reason), qPrintable(failure.reason));
    QCOMPARE(failure.advice, advice.contains(u'%') ? advice.arg(smtp.port) : advice);
    QCOMPARE(failure.loginNeeded, loginNeeded);
    QCOMPARE(smtp.count(), 0);
}

// A 50 MB book over STARTTLS, cancelled while it goes: what waits for the server's last answer
// is the window's test.
void tst_ServiceMail::cancelMidTransferStopsAtOnceAndReportsNothing()
{
    LocalSmtp smtp({ QStringLiteral("--tls"), QStringLiteral("starttls") });
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("seura.mdb"));
    const qint64 size = 50000000;
    QVERIFY(TestEnv::writeFile(file, sample(size)));
    ServiceMailer mailer;
    mailer.setTrustedCertificates(smtp.certificate);
    QSignalSpy progress(&mailer, &ServiceMailer::SendProgress);
    QSignalSpy completed(&mailer, &ServiceMailer::SendCompletedSuccessfully);
    QSignalSpy failed(&mailer, &ServiceMailer::SendFailed);
    mailer.send({ smtp.server(), QStringLiteral("anna@kuoro.fi"), QStringLiteral("tuki@vorkam.fi"),
        QStringLiteral("Vorkam-anna:1.2.2024"), QString(), file, QString(), QString() });
    QTRY_VERIFY_WITH_TIMEOUT(!progress.isEmpty(), 10000);
    QVERIFY(progress.last().at(0).toLongLong() < size);
    QElapsedTimer clock;
    clock.start();
    mailer.cancel();
    QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(!mailer.busy());
    const qsizetype progressSeen = progress.size();
    QVERIFY(smtp.message(1, 1000).isEmpty());
    QCOMPARE(progress.size(), progressSeen);
    QCOMPARE(completed.size(), 0);
    QCOMPARE(failed.size(), 0);
}

void tst_ServiceMail::snapshotIsTheBooksAndGoesAway()
{
    TestEnv env;
    const QString books = env.path(QStringLiteral("kirjat/kööri.mdb"));
    QDir().mkpath(env.path(QStringLiteral("kirjat")));
    QDir().mkpath(env.path(QStringLiteral("tmp")));
    QVERIFY(TestEnv::createDatabase(books));
    QString copy;
    withDatabase(books, [&](QSqlDatabase& db) {
        ServiceMail::Snapshot snapshot(db, books, env.path(QStringLiteral("tmp")));
        QVERIFY2(snapshot.ok(), qPrintable(snapshot.message()));
        copy = snapshot.path();
        QCOMPARE(QFileInfo(copy).fileName(), QStringLiteral("kööri.mdb"));
        // Every page of the books, whatever the engine keeps in its header.
        QCOMPARE(TestEnv::readFile(copy).mid(100), TestEnv::readFile(books).mid(100));
    });
    QVERIFY(!QFileInfo::exists(copy));
    QCOMPARE(QDir(env.path(QStringLiteral("tmp"))).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
        QStringList());

    // A folder that cannot be written: a message, and nothing left behind.
    withDatabase(books, [&](QSqlDatabase& db) {
        ServiceMail::Snapshot snapshot(db, books, env.path(QStringLiteral("puuttuu/kansio")));
        QVERIFY(!snapshot.ok());
        QVERIFY(!snapshot.message().isEmpty());
    });
}

QTEST_GUILESS_MAIN(tst_ServiceMail)
#include "tst_ServiceMail.moc"
