#include "VoucherFixture.h"
#include "vouchers/cTositeTarkistus.h"

#include <QTest>

// The voucher check: which faults give a finding, and what the repair removes.
class tst_cTositeTarkistus : public QObject, VoucherCase {
    Q_OBJECT

    int pankki = 0, myynti = 0;

    QStringList lines(bool korjaa = true)
    {
        QStringList out;
        for (const cTositeTarkistusVirhe& v : cTositeTarkistus(f->db()).Tarkista(korjaa))
            out << v.rivi();
        return out;
    }

private slots:
    void init()
    {
        start();
        pankki = f->addTili(1910, QStringLiteral("Pankkitili"));
        myynti = f->addTili(3000, QStringLiteral("Myyntituotot"));
    }
    void cleanup()
    {
        QCOMPARE(f->dialogs.shown().size(), 0);
        finish();
    }

    // Each comparison with the fiscal year, and no date at all.
    void dates()
    {
        const int id = f->addBalanced(f->addTosite(5, QStringLiteral("P")), pankki, myynti); // closing
        for (const auto& [pvm, finding] : { std::pair(QVariant("2011-01-01"), false),
                 std::pair(QVariant("2011-12-31"), false), std::pair(QVariant("2010-12-31"), true),
                 std::pair(QVariant("2012-01-01"), true), std::pair(QVariant(), true) }) {
            QVERIFY(f->exec(QStringLiteral("UPDATE \"to\" SET toPvm = ? WHERE toID = ?"), { pvm, id }));
            QVERIFY2(lines().size() == (finding ? 1 : 0), qPrintable(pvm.toString()));
        }
    }

    void balanceUsesExactSums()
    {
        const int id = f->addTosite(0, QStringLiteral("A")); // opening
        const struct {
            QList<qint64> debet, kredit;
            bool finding;
        } cases[] = {
            { { 1000, 2000 }, { 3000 }, false }, // 0,1 + 0,2 against 0,3, as floating point would not
            { { 10001 }, { 10000 }, true }, // one ten-thousandth off
            { {}, {}, false },
        };
        for (const auto& c : cases) {
            QVERIFY(f->exec(QStringLiteral("DELETE FROM vi")));
            for (qint64 raw : c.debet)
                f->addVienti(id, pankki, QStringLiteral("D"), raw);
            for (qint64 raw : c.kredit)
                f->addVienti(id, myynti, QStringLiteral("K"), raw);
            QCOMPARE(lines().size(), c.finding ? 1 : 0);
        }
    }

    void orphanEntriesGoWithoutAFinding()
    {
        f->addBalanced(f->addTosite(1), pankki, myynti);
        const int gone = f->addBalanced(f->addTosite(2), pankki, myynti);
        QVERIFY(f->exec(QStringLiteral("DELETE FROM \"to\" WHERE toID = ?"), { gone }));
        // The previous year's orphans go as well.
        QVERIFY(f->exec(
            QStringLiteral("INSERT INTO viE (viEtoID, viEtlID, viETyyppi, viEArvo) VALUES (77, ?, 'D', 5)"),
            { pankki }));
        QCOMPARE(f->count(QStringLiteral("vi")), 4);
        QCOMPARE(lines(false), QStringList());
        QCOMPARE(f->count(QStringLiteral("vi")), 4);
        QCOMPARE(lines(), QStringList());
        QCOMPARE(f->count(QStringLiteral("vi")), 2);
        QCOMPARE(f->count(QStringLiteral("viE")), 0);
    }

    void automaticAndCarrierVouchersAreNotCheckedForDateOrBalance()
    {
        const int automaatti = f->addTosite(7, {}, QStringLiteral("2009-01-01"));
        QVERIFY(f->exec(QStringLiteral("UPDATE \"to\" SET toAutomaatti = 1 WHERE toID = ?"), { automaatti }));
        f->addVienti(automaatti, pankki, QStringLiteral("D"), 100);
        const int kantaja = f->addTosite(-3, {}, QStringLiteral("2009-01-01"));
        f->addVienti(kantaja, pankki, QStringLiteral("D"), 100);
        QCOMPARE(lines(), QStringList());
        // The account step takes automatic vouchers, never carriers.
        f->addVienti(automaatti, 999, QStringLiteral("K"), 100);
        f->addVienti(kantaja, 999, QStringLiteral("K"), 100);
        QCOMPARE(lines(), QStringList { QStringLiteral("Jokin tilivalinta puuttuu tositteelta no: 7.") });
    }
};

QTEST_GUILESS_MAIN(tst_cTositeTarkistus)
#include "tst_cTositeTarkistus.moc"
