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
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator { quint32(size) };
    for (qint64 i = 0; i < size; ++i)
        bytes[i] = char(i % 7 == 0 ? '.' : generator.bounded(256));
    return bytes;
}

} // namespace

class tst_ServiceMail : public QObject {
    Q_OBJECT

private slots:
    void subjectHasTheDateWithoutLeadingZeros();
    void loginNameFromTheEnvironment();
    void refusals_data();
    void refusals();
    void servers_data();
    void servers();
    void sendsTheFileAsAnAttachment_data();
    void sendsTheFileAsAnAttachment();
    void failures_data();
    void failures();
    void cancelStopsAtOnceAndReportsNothing();
    void snapshotIsTheBooksAndGoesAway();
};

void tst_ServiceMail::subjectHasTheDateWithoutLeadingZeros()
{
    QCOMPARE(ServiceMail::subject(QStringLiteral("matti"), QDate(2024, 1, 5)),
        QStringLiteral("Vorkam-matti:5.1.2024"));
}

void tst_ServiceMail::loginNameFromTheEnvironment()
{
    const QByteArray user = qgetenv("USER");
    const QByteArray logname = qgetenv("LOGNAME");
    qputenv("USER", "kirjuri");
    qputenv("LOGNAME", "muu");
    QCOMPARE(ServiceMail::loginName(), QStringLiteral("kirjuri"));
    qunsetenv("USER");
    QCOMPARE(ServiceMail::loginName(), QStringLiteral("muu"));
    qunsetenv("LOGNAME");
    QCOMPARE(ServiceMail::loginName(), QDir::home().dirName());
    qputenv("USER", user);
    qputenv("LOGNAME", logname);
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
    const auto row = [](const char* tag, const char* smtp, const char* url) {
        QTest::newRow(tag) << QString::fromUtf8(smtp) << QString::fromUtf8(url);
    };
    row("name only", "smtp.kuoro.fi", "smtp://smtp.kuoro.fi:25");
    row("submission", " smtp.kuoro.fi:587 ", "smtp://smtp.kuoro.fi:587");
    row("implicit TLS", "smtp.kuoro.fi:465", "smtps://smtp.kuoro.fi:465");
    row("IPv6", "[::1]:2525", "smtp://[::1]:2525");
    row("port too large", "smtp.kuoro.fi:65536", "");
    row("blank inside", "smtp kuoro.fi", "");
    row("a URL", "smtp://smtp.kuoro.fi", "");
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
    QTest::newRow("empty file") << qint64(0) << "tyhjä.mdb"
                                << "";
    QTest::newRow("a megabyte") << qint64(1000003) << "kööri.mdb"
                                << "Hyvää päivää,\n.\n. piste rivin alussa\r\nÅke & Öhman <tuki>\n";
}

void tst_ServiceMail::sendsTheFileAsAnAttachment()
{
    QFETCH(qint64, size);
    QFETCH(QString, fileName);
    QFETCH(QString, text);
    LocalSmtp smtp;
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    QTemporaryDir dir;
    const QString file = dir.filePath(fileName);
    const QByteArray bytes = sample(size);
    QVERIFY(TestEnv::writeFile(file, bytes));

    ServiceMailer mailer;
    QSignalSpy progress(&mailer, &ServiceMailer::SendProgress);
    QSignalSpy completed(&mailer, &ServiceMailer::SendCompletedSuccessfully);
    const QString subject = ServiceMail::subject(QStringLiteral("äijälä"), QDate(2024, 2, 1))
        + QStringLiteral(" ja pitkä jatko, jotta otsikko jakautuu usealle riville: åäö ÅÄÖ €");
    mailer.send({ smtp.server(), QStringLiteral("anna@kuoro.fi"), QStringLiteral("tuki@vorkam.fi"), subject,
        text, file, QString(), QString() });
    QTRY_VERIFY_WITH_TIMEOUT(!mailer.busy(), 20000);
    QVERIFY2(completed.size() == 1, qPrintable(mailer.failure().reason));
    const auto received = smtp.message(1);
    QVERIFY(received);
    QCOMPARE(received->from, QStringLiteral("anna@kuoro.fi"));
    QCOMPARE(received->to, QStringList { QStringLiteral("tuki@vorkam.fi") });
    QCOMPARE(received->subject, subject);
    const auto lines = [](QString t) { return t.replace(QStringLiteral("\r\n"), QStringLiteral("\n")); };
    QCOMPARE(lines(received->text), lines(text));
    QCOMPARE(received->attachments, 1);
    QCOMPARE(received->fileName, fileName);
    QVERIFY(received->attachment == bytes);

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
    QTest::addColumn<QStringList>("options"); // of the server; "closed" for none
    QTest::addColumn<QString>("reason"); // a part of curl's words
    QTest::addColumn<QString>("advice");
    QTest::addColumn<bool>("loginNeeded");
    QTest::newRow("refused recipient") << QStringList { "--refuse", "tuki@vorkam.fi" } << "550"
                                       << "Palvelin ei hyväksynyt osoitetta." << false;
    QTest::newRow("closed port") << QStringList { "closed" } << "onnect"
                                 << "Palvelimeen 127.0.0.1 (portti %1) ei saatu yhteyttä." << false;
    QTest::newRow("no answer") << QStringList { "--stall" } << ""
                               << "Palvelin ei vastannut 1 sekunnissa." << false;
    QTest::newRow("login demanded") << QStringList { "--login", "anna:salainen" } << "530"
                                    << "Palvelin vaatii käyttäjätunnuksen ja salasanan." << true;
}

void tst_ServiceMail::failures()
{
    QFETCH(QStringList, options);
    QFETCH(QString, reason);
    QFETCH(QString, advice);
    QFETCH(bool, loginNeeded);
    const bool closed = options == QStringList { "closed" };
    LocalSmtp smtp(closed ? QStringList() : options);
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    const int port = closed ? LocalSmtp::closedPort() : smtp.port;
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::writeFile(file, sample(5000)));

    ServiceMailer mailer;
    mailer.setTimeout(1);
    QSignalSpy completed(&mailer, &ServiceMailer::SendCompletedSuccessfully);
    QSignalSpy failed(&mailer, &ServiceMailer::SendFailed);
    mailer.send({ QStringLiteral("127.0.0.1:%1").arg(port), QStringLiteral("anna@kuoro.fi"),
        QStringLiteral("tuki@vorkam.fi"), QStringLiteral("Vorkam-anna:1.2.2024"), QStringLiteral("Hei"), file,
        QString(), QString() });
    QTRY_VERIFY_WITH_TIMEOUT(!mailer.busy(), 20000);
    QCOMPARE(completed.size(), 0);
    QCOMPARE(failed.size(), 1);
    const ServiceMailer::Failure& failure = mailer.failure();
    QCOMPARE(failed.first().first().toString(), failure.reason);
    QVERIFY2(failure.reason.contains(reason), qPrintable(failure.reason));
    QCOMPARE(failure.advice, advice.contains(u'%') ? advice.arg(port) : advice);
    QCOMPARE(failure.loginNeeded, loginNeeded);
    QCOMPARE(smtp.count(), 0);
}

void tst_ServiceMail::cancelStopsAtOnceAndReportsNothing()
{
    LocalSmtp smtp({ QStringLiteral("--stall") });
    if (!smtp.running())
        QSKIP(qPrintable(smtp.skipReason));
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::writeFile(file, sample(3000000)));
    ServiceMailer mailer;
    QSignalSpy progress(&mailer, &ServiceMailer::SendProgress);
    QSignalSpy completed(&mailer, &ServiceMailer::SendCompletedSuccessfully);
    QSignalSpy failed(&mailer, &ServiceMailer::SendFailed);
    mailer.send({ smtp.server(), QStringLiteral("anna@kuoro.fi"), QStringLiteral("tuki@vorkam.fi"),
        QStringLiteral("Vorkam-anna:1.2.2024"), QString(), file, QString(), QString() });
    QTRY_VERIFY_WITH_TIMEOUT(!progress.isEmpty(), 10000);
    QVERIFY(mailer.busy());
    QElapsedTimer clock;
    clock.start();
    mailer.cancel();
    QVERIFY2(clock.elapsed() < 500, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(!mailer.busy());
    const qsizetype progressSeen = progress.size();
    QTest::qWait(200);
    QCOMPARE(progress.size(), progressSeen);
    QCOMPARE(completed.size(), 0);
    QCOMPARE(failed.size(), 0);
    QCOMPARE(smtp.count(), 0);
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
