#include "VoucherFixture.h"
#include "accounts/AccountLookup.h"
#include "vouchers/AmountInput.h"

#include <QTest>

using Result = AmountInput::Result;

// What the user types in the entry rows: amounts the Finnish way, accounts by number or name.
class tst_VoucherInput : public QObject {
    Q_OBJECT

private slots:
    // Each refusal, and the boundary of the largest amount; the value is taken only when Ok.
    void amounts()
    {
        const struct {
            const char* typed;
            Result result;
            qint64 cents;
        } rows[] = {
            { "", Result::Ok, 0 },
            { "999999999,99", Result::Ok, 99999999999 },
            { "1000000000", Result::TooLarge, 0 },
            { "99999999999999999999", Result::TooLarge, 0 },
            { "-0,01", Result::Negative, 0 },
            { "0,005", Result::TooManyDecimals, 0 },
            { "12,-", Result::NotANumber, 0 },
        };
        for (const auto& r : rows) {
            const AmountInput in = AmountInput::parse(QString::fromUtf8(r.typed));
            QVERIFY2(in.result == r.result && in.value == Money::fromCents(r.cents), r.typed);
            QCOMPARE(in.message().isEmpty(), r.result == Result::Ok);
        }
    }

    // By number (blanks and a name after it allowed) or by the start of a name in any case, the
    // lowest number first; anything else finds none.
    void accounts()
    {
        VoucherFixture f;
        QHash<int, int> ids { { 0, 0 } }; // by number
        for (const auto& [n, nimi] :
            std::initializer_list<std::pair<int, const char*>> { { 3100, "Myyntituotot B" },
                { 1910, "Pankkitili" }, { 3000, "Myyntituotot" }, { -5, "Vanha" } })
            ids[n] = f.addTili(n, QString::fromUtf8(nimi));
        AccountLookup tilit;
        tilit.load(f.db());
        for (const auto& [typed, numero] : std::initializer_list<std::pair<const char*, int>> {
                 { " 3000 ", 3000 }, { "1910 Kassa", 1910 }, { "PANK", 1910 }, { "Myynti", 3000 },
                 { "tuotot", 0 }, { "1911", 0 }, { "-5", -5 }, { "", 0 } })
            QVERIFY2(tilit.resolve(QString::fromUtf8(typed)) == ids[numero], typed);
    }
};

QTEST_GUILESS_MAIN(tst_VoucherInput)
#include "tst_VoucherInput.moc"
