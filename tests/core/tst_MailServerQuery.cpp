#include "ScriptedDialogs.h"
#include "ScriptedResolver.h"
#include "core/MailServerQuery.h"

#include <QTest>

using Exchanges = QList<QPair<int, QByteArray>>;
Q_DECLARE_METATYPE(Resolver::Status)

namespace {

// An answer for yhdistys.fi as it came from a name server: two exchangers, the second preferred.
const QByteArray Captured = QByteArray::fromHex("abcd8180000100020000000008796864697374797302666900000f0001"
                                                "c00c000f000100000e1000080014036261"
                                                "7ac00c"
                                                "c00c000f000100000e100007000a026d78c00c");

QString summary(const std::optional<QList<MailServerQuery::Exchange>>& parsed)
{
    if (!parsed)
        return QStringLiteral("not an answer");
    QStringList parts;
    for (const MailServerQuery::Exchange& e : *parsed)
        parts.append(QString::number(e.preference) + u' ' + e.host);
    return parts.join(QStringLiteral(", "));
}

} // namespace

class tst_MailServerQuery : public QObject {
    Q_OBJECT

private slots:
    void domainOfAddress_data();
    void domainOfAddress();
    void parseAnswer_data();
    void parseAnswer();
    void offer_data();
    void offer();
};

void tst_MailServerQuery::domainOfAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArray>("domain");
    QTest::newRow("blanks around") << "  anna@kuoro.fi  " << QByteArray("kuoro.fi");
    QTest::newRow("trailing dot") << "anna@kuoro.fi." << QByteArray("kuoro.fi");
    QTest::newRow("international name") << "anna@äänekoski.fi" << QByteArray("xn--nekoski-4waa.fi");
    QTest::newRow("last @ counts") << "\"a@b\"@seura.fi" << QByteArray("seura.fi");
    QTest::newRow("no @") << "anna.kuoro.fi" << QByteArray();
    QTest::newRow("nothing after @") << "anna@" << QByteArray();
    QTest::newRow("no dot in domain") << "anna@localhost" << QByteArray();
    QTest::newRow("blank inside") << "anna@kuo ro.fi" << QByteArray();
}

void tst_MailServerQuery::domainOfAddress()
{
    QFETCH(QString, address);
    QFETCH(QByteArray, domain);
    QCOMPARE(MailServerQuery::domainOf(address), domain);
}

void tst_MailServerQuery::parseAnswer_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QString>("parsed");
    const QByteArray d("yhdistys.fi");
    QTest::newRow("preferred first") << ScriptedResolver::mxAnswer(
        d, Exchanges { { 30, "c.yhdistys.fi" }, { 5, "a.palvelu.net" }, { 10, "b.yhdistys.fi" } })
                                     << "5 a.palvelu.net, 10 b.yhdistys.fi, 30 c.yhdistys.fi";
    QTest::newRow("no answer records") << ScriptedResolver::mxAnswer(d, Exchanges {}) << "";
    QTest::newRow("null MX: no mail") << ScriptedResolver::mxAnswer(d, Exchanges { { 0, "." } }) << "";
    // Two exchangers written with pointers to the question's name, as a name server sent them.
    QTest::newRow("captured") << Captured << "10 mx.yhdistys.fi, 20 baz.yhdistys.fi";
    QTest::newRow("cut short")
        << ScriptedResolver::mxAnswer(d, Exchanges { { 10, "mx.yhdistys.fi" } }).chopped(3)
        << "not an answer";
    QTest::newRow("garbage") << QByteArray("Tämä ei ole nimipalvelimen vastaus") << "not an answer";
}

void tst_MailServerQuery::parseAnswer()
{
    QFETCH(QByteArray, message);
    QFETCH(QString, parsed);
    QCOMPARE(summary(MailServerQuery::parseAnswer(message)), parsed);
}

void tst_MailServerQuery::offer_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<Resolver::Status>("status");
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<bool>("answerYes");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("server");
    const auto row
        = [](const char* tag, const char* address, Resolver::Status status, const QByteArray& message,
              bool answerYes, const QString& shown, const char* server) {
              QTest::newRow(tag) << QString::fromUtf8(address) << status << message << answerYes << shown
                                 << QString::fromUtf8(server);
          };
    const QString found = QStringLiteral(
        "question: Kysely löysi palvelimen: mx.yhdistys.fi\nHaluatko korvata nykyisen palvelinasetuksen?");
    const QString notFound = QStringLiteral("information: Kysely ei löytänyt sähköpostipalvelinta.");
    const QString noAnswer = notFound + QStringLiteral("\nNimipalvelin ei vastannut: tarkista verkkoyhteys.");
    const auto answer = Resolver::Status::Answer;
    row("found, Yes", "anna@yhdistys.fi", answer, Captured, true, found, "mx.yhdistys.fi");
    row("found, No", "anna@yhdistys.fi", answer, Captured, false, found, "");
    row("no such domain", "anna@eiole.fi", Resolver::Status::NoSuchDomain, {}, false, notFound, "");
    row("no network", "anna@yhdistys.fi", Resolver::Status::NoAnswer, {}, false, noAnswer, "");
    row("answer that is no DNS message", "anna@yhdistys.fi", answer, "roskaa", false, noAnswer, "");
    row("address without @", "anna.yhdistys.fi", answer, Captured, false,
        QStringLiteral("information: Anna ensin sähköpostiosoite muodossa nimi@yhdistys.fi, niin palvelinta "
                       "haetaan osoitteen verkkotunnuksesta."),
        "");
}

void tst_MailServerQuery::offer()
{
    QFETCH(QString, address);
    QFETCH(Resolver::Status, status);
    QFETCH(QByteArray, message);
    QFETCH(bool, answerYes);
    QFETCH(QString, shown);
    QFETCH(QString, server);
    ScriptedDialogs dialogs;
    ScriptedResolver resolver;
    resolver.reply = { status, message };
    if (shown.startsWith(QLatin1String("question")))
        answerYes ? dialogs.answerYes() : dialogs.answerNo();
    const std::optional<QString> offered = MailServerQuery::offer(MailServerQuery::find(address));
    QCOMPARE(dialogs.transcript(), QStringList { shown });
    QCOMPARE(offered.value_or(QString()), server);
    // Only an address with a domain is asked about, and by its domain alone.
    QCOMPARE(resolver.asked.size(), MailServerQuery::domainOf(address).isEmpty() ? 0 : 1);
}

QTEST_GUILESS_MAIN(tst_MailServerQuery)
#include "tst_MailServerQuery.moc"
