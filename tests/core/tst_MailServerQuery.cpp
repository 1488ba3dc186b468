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

// What the query found, as "NotFound" or "Found mx.yhdistys.fi".
QString summary(const MailServerQuery::Result& result)
{
    const char* const names[] = { "Found", "NoAddress", "NotFound", "NoAnswer" };
    return QString::fromLatin1(names[int(result.status)])
        + (result.host.isEmpty() ? QString() : u' ' + result.host);
}

} // namespace

class tst_MailServerQuery : public QObject {
    Q_OBJECT

private slots:
    void domainOfAddress();
    void find_data();
    void find();
    void offer();
};

// The domain follows the last "@", without a trailing dot, as the name service spells it.
void tst_MailServerQuery::domainOfAddress()
{
    QCOMPARE(MailServerQuery::domainOf(QStringLiteral("\"a@b\"@äänekoski.fi.")),
        QByteArray("xn--nekoski-4waa.fi"));
    // No "@", nothing after it, no dot, a blank inside.
    for (const char* address : { "anna.kuoro.fi", "anna@", "anna@localhost", "anna@kuo ro.fi" })
        QVERIFY2(MailServerQuery::domainOf(QString::fromUtf8(address)).isEmpty(), address);
}

void tst_MailServerQuery::find_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<Resolver::Status>("reply");
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* tag, const char* address, Resolver::Status reply,
                         const QByteArray& message, const char* found) {
        QTest::newRow(tag) << QString::fromUtf8(address) << reply << message << QString::fromUtf8(found);
    };
    const auto answer = Resolver::Status::Answer;
    const QByteArray d("yhdistys.fi");
    // Two exchangers written with pointers to the question's name, the second preferred.
    row("captured", "anna@yhdistys.fi", answer, Captured, "Found mx.yhdistys.fi");
    row("null MX: no mail", "anna@yhdistys.fi", answer,
        ScriptedResolver::mxAnswer(d, Exchanges { { 0, "." } }), "NotFound");
    row("no such domain", "anna@eiole.fi", Resolver::Status::NoSuchDomain, {}, "NotFound");
    row("no network", "anna@yhdistys.fi", Resolver::Status::NoAnswer, {}, "NoAnswer");
    row("cut short", "anna@yhdistys.fi", answer,
        ScriptedResolver::mxAnswer(d, Exchanges { { 10, "mx.yhdistys.fi" } }).chopped(3), "NoAnswer");
    row("address without @", "anna.yhdistys.fi", answer, Captured, "NoAddress");
}

void tst_MailServerQuery::find()
{
    QFETCH(QString, address);
    QFETCH(Resolver::Status, reply);
    QFETCH(QByteArray, message);
    QFETCH(QString, found);
    ScriptedResolver resolver;
    resolver.reply = { reply, message };
    QCOMPARE(summary(MailServerQuery::find(address)), found);
}

// A server found replaces the one set only when the user says so; anything else is only told.
void tst_MailServerQuery::offer()
{
    ScriptedDialogs dialogs;
    const MailServerQuery::Result found { MailServerQuery::Status::Found, QStringLiteral("mx.yhdistys.fi") };
    dialogs.answerYes().answerNo();
    QCOMPARE(MailServerQuery::offer(found).value_or(QString()), QStringLiteral("mx.yhdistys.fi"));
    QVERIFY(!MailServerQuery::offer(found));
    for (const auto status : { MailServerQuery::Status::NoAddress, MailServerQuery::Status::NotFound,
             MailServerQuery::Status::NoAnswer })
        QVERIFY(!MailServerQuery::offer({ status, {} }));
    QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information).size(), 3);
}

QTEST_GUILESS_MAIN(tst_MailServerQuery)
#include "tst_MailServerQuery.moc"
