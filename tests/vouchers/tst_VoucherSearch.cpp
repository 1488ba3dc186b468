#include "VoucherFixture.h"
#include "vouchers/VoucherSearch.h"

#include <QTest>

// Finding vouchers by an entry amount and by a word of the description.
class tst_VoucherSearch : public QObject, VoucherCase {
    Q_OBJECT

private slots:
    void init()
    {
        start();
        const int tili = f->addTili(1910, QStringLiteral("Pankkitili"));
        f->addBalanced(
            f->addTosite(1, {}, QStringLiteral("2011-03-05"), QStringLiteral("Toimiston vuokra maaliskuu")),
            tili, tili, 125000);
        f->addBalanced(
            f->addTosite(2, {}, QStringLiteral("2011-04-01"), QStringLiteral("50% ALENNUS ÄÄNENTOISTOSTA")),
            tili, tili, 1234500000);
        f->addTosite(3, {}, QStringLiteral("2011-04-02"), QStringLiteral("Kahvit o'Learyn kanssa, a_b"));
        // A carrier of ledger balances is never found.
        f->addBalanced(f->addTosite(-1, {}, QStringLiteral("2011-01-01"), QStringLiteral("Toimiston vuokra")),
            tili, tili, 125000);
    }
    void cleanup() { finish(); }

    void search_data()
    {
        QTest::addColumn<QString>("arvo");
        QTest::addColumn<QString>("selite");
        QTest::addColumn<QList<int>>("expected"); // the numbers found; 0 alone: refused
        const auto row
            = [](const char* name, const char* arvo, const char* selite, const QList<int>& expected) {
                  QTest::newRow(name) << QString::fromUtf8(arvo) << QString::fromUtf8(selite) << expected;
              };
        // Two entries of the amount: the voucher is listed once.
        row("amount", "12,50", "", { 1 });
        row("not there", "12,51", "", {});
        row("capitals, mid-text", "", "VUOKRA MAALIS", { 1 });
        row("Finnish letters", "", "äänentoisto", { 2 });
        row("both appended", "123 450", "kahvit o", { 2, 3 });
        row("no terms", "", "", { 0 });
        // A refused amount stops the search, also with words to look for.
        row("refused amount", "1e5", "vuokra", { 0 });
    }
    void search()
    {
        QFETCH(QString, arvo);
        QFETCH(QString, selite);
        QFETCH(QList<int>, expected);
        const VoucherSearch::Tulos t = VoucherSearch::hae(f->db(), arvo, selite);
        QList<int> found;
        for (const auto& o : t.osumat)
            found << o.numero;
        QCOMPARE(t.virhe.isEmpty() ? found : QList<int> { 0 }, expected);
    }
};

QTEST_GUILESS_MAIN(tst_VoucherSearch)
#include "tst_VoucherSearch.moc"
