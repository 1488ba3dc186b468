#include "VoucherFixture.h"
#include "vouchers/cTositeTarkistus.h"

#include <QTest>

// The voucher check: which faults give a finding, in what order, and what the repair removes.
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
    // A balanced voucher of 100 € on two existing accounts.
    int balanced(int numero, const QString& pvm = QStringLiteral("2011-03-01"), const QString& kind = {})
    {
        return f->addBalanced(numero, pankki, myynti, 1000000, pvm, QStringLiteral("Tosite"), kind);
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
        QCOMPARE(dialogs->shown().size(), 0);
        finish();
    }

    void dates_data()
    {
        QTest::addColumn<QVariant>("pvm");
        QTest::addColumn<bool>("finding");
        QTest::newRow("first day") << QVariant(QStringLiteral("2011-01-01")) << false;
        QTest::newRow("last day") << QVariant(QStringLiteral("2011-12-31")) << false;
        QTest::newRow("a day before") << QVariant(QStringLiteral("2010-12-31")) << true;
        QTest::newRow("a day after") << QVariant(QStringLiteral("2012-01-01")) << true;
        QTest::newRow("no date") << QVariant() << true;
        QTest::newRow("empty text") << QVariant(QStringLiteral("")) << true;
    }
    void dates()
    {
        QFETCH(QVariant, pvm);
        QFETCH(bool, finding);
        const int id = balanced(5);
        QVERIFY(f->exec(QStringLiteral("UPDATE \"to\" SET toPvm = ? WHERE toID = ?"), { pvm, id }));
        QCOMPARE(lines(),
            finding ? QStringList { QStringLiteral("Tositteen no: 5 päivä ei kuulu tilikauteen.") }
                    : QStringList());
    }

    void balanceUsesExactSums_data()
    {
        QTest::addColumn<QList<qint64>>("debet");
        QTest::addColumn<QList<qint64>>("kredit");
        QTest::addColumn<bool>("finding");
        // 0,1 + 0,2 against 0,3 balances exactly, as floating point would not.
        QTest::newRow("tenths") << QList<qint64> { 1000, 2000 } << QList<qint64> { 3000 } << false;
        QTest::newRow("one ten-thousandth off") << QList<qint64> { 10001 } << QList<qint64> { 10000 } << true;
        QTest::newRow("no entries") << QList<qint64> {} << QList<qint64> {} << false;
    }
    void balanceUsesExactSums()
    {
        QFETCH(QList<qint64>, debet);
        QFETCH(QList<qint64>, kredit);
        QFETCH(bool, finding);
        const int id = f->addTosite(1);
        for (qint64 raw : debet)
            f->addVienti(id, pankki, QStringLiteral("D"), raw);
        for (qint64 raw : kredit)
            f->addVienti(id, myynti, QStringLiteral("K"), raw);
        QCOMPARE(lines(),
            finding ? QStringList { QStringLiteral("Tositteen no: 1 debet ja kredit saldo ei täsmää.") }
                    : QStringList());
    }

    void orphanEntriesGoWithoutAFinding()
    {
        balanced(1);
        const int gone = balanced(2);
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

    // Dates first, then balances, then missing accounts; each voucher's kind before its text.
    void findingsInTheOrderFound()
    {
        const int avaus = f->addTosite(0, QStringLiteral("A"), QStringLiteral("2011-01-01"));
        f->addVienti(avaus, pankki, QStringLiteral("D"), 100);
        balanced(2, QStringLiteral("2012-02-01"), QStringLiteral("P"));
        const int kolme = balanced(3);
        f->addVienti(kolme, 0, QStringLiteral("D"), 0);
        balanced(4, QStringLiteral("2010-05-05"));
        const std::vector<cTositeTarkistusVirhe> virheet = cTositeTarkistus(f->db()).Tarkista();
        QStringList got;
        for (const auto& v : virheet)
            got << v.rivi();
        QCOMPARE(got,
            (QStringList {
                QStringLiteral("Tarkista päätöstosite: Tositteen no: 2 päivä ei kuulu tilikauteen."),
                QStringLiteral("Tositteen no: 4 päivä ei kuulu tilikauteen."),
                QStringLiteral("Tarkista avaustosite: Tositteen no: 0 debet ja kredit saldo ei täsmää."),
                QStringLiteral("Jokin tilivalinta puuttuu tositteelta no: 3.") }));
        QCOMPARE(virheet.back().ToId, kolme);
        QCOMPARE(virheet.front().Paiva, QDate(2012, 2, 1));
    }
};

QTEST_GUILESS_MAIN(tst_cTositeTarkistus)
#include "tst_cTositeTarkistus.moc"
