#include "VoucherFixture.h"
#include "accounts/AccountLookup.h"
#include "vouchers/AmountInput.h"

#include <QTest>

using Result = AmountInput::Result;
Q_DECLARE_METATYPE(AmountInput::Result)

// What the user types in the entry rows: amounts the Finnish way, accounts by number or name.
class tst_VoucherInput : public QObject {
    Q_OBJECT

private slots:
    void amounts_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<Result>("result");
        QTest::addColumn<qint64>("cents"); // the value taken when Ok
        const auto row = [](const char* typed, Result result, qint64 cents) {
            QTest::newRow(typed) << QString::fromUtf8(typed) << result << cents;
        };
        row("", Result::Ok, 0);
        row("999999999,99", Result::Ok, 99999999999);
        row("1000000000", Result::TooLarge, 0);
        row("99999999999999999999", Result::TooLarge, 0);
        row("-0,01", Result::Negative, 0);
        row("0,005", Result::TooManyDecimals, 0);
        row("12,-", Result::NotANumber, 0);
    }
    void amounts()
    {
        QFETCH(QString, typed);
        QFETCH(Result, result);
        QFETCH(qint64, cents);
        const AmountInput in = AmountInput::parse(typed);
        QCOMPARE(in.result, result);
        QCOMPARE(in.value, Money::fromCents(cents));
        QCOMPARE(in.message().isEmpty(), result == Result::Ok);
    }

    void accounts_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("numero"); // 0: none
        QTest::newRow("number with blanks") << " 3000 " << 3000;
        QTest::newRow("number and a name") << "1910 Kassa" << 1910;
        QTest::newRow("start of a name, any case") << "PANK" << 1910;
        QTest::newRow("the lowest number wins") << "Myynti" << 3000;
        QTest::newRow("a name that is not a start") << "tuotot" << 0;
        QTest::newRow("unknown number") << "1911" << 0;
        QTest::newRow("negative number") << "-5" << -5;
        QTest::newRow("empty") << "" << 0;
    }
    void accounts()
    {
        QFETCH(QString, typed);
        QFETCH(int, numero);
        VoucherFixture f;
        QHash<int, int> ids;
        for (const auto& [n, nimi] :
            std::initializer_list<std::pair<int, const char*>> { { 3100, "Myyntituotot B" },
                { 1910, "Pankkitili" }, { 3000, "Myyntituotot" }, { -5, "Vanha" } })
            ids[n] = f.addTili(n, QString::fromUtf8(nimi));
        AccountLookup tilit;
        tilit.load(f.db());
        QCOMPARE(tilit.resolve(typed), numero ? ids[numero] : 0);
        if (numero)
            QVERIFY(tilit.text(ids[numero]).startsWith(QString::number(numero) + u' '));
    }
};

QTEST_GUILESS_MAIN(tst_VoucherInput)
#include "tst_VoucherInput.moc"
