#include "VoucherFixture.h"
#include "vouchers/cTositeEd.h"

#include <QTest>

using Pairs = QList<QPair<int, int>>; // (toEID, toENumero)

namespace {

void addToE(int key, int numero, const QString& pvm = QStringLiteral("2010-06-01"))
{
    VoucherFixture::exec(
        QStringLiteral("INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAvaustosite, "
                       "toEPaatostosite, toEAutomaatti) VALUES (?, ?, ?, 'x', ?, ?, 0)"),
        { key, numero, pvm, numero == 12 ? 1 : 0, numero == 4 ? 1 : 0 });
}

void addViE(int key, int toId, const QString& tyyppi)
{
    VoucherFixture::exec(QStringLiteral("INSERT INTO viE (viEID, viEtoID, viEtlID, viETyyppi, viEArvo) "
                                        "VALUES (?, ?, 1, ?, 50)"),
        { key, toId, tyyppi });
}

} // namespace

class tst_cTositeEd : public QObject, VoucherCase {
    Q_OBJECT

private slots:
    void init() { start(false); }
    void cleanup() { finish(); }

    // The previous year's keys are made by the program (largest + 1); its numbering counts every
    // row, whatever the kind or sign.
    void keysAndNumbers_data()
    {
        QTest::addColumn<Pairs>("rows");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("number");
        QTest::newRow("empty toE") << Pairs {} << 1 << 1;
        QTest::newRow("keys 1, 2 and 7, every kind") << Pairs { { 1, 3 }, { 2, 12 }, { 7, 4 } } << 8 << 13;
        QTest::newRow("negative counts") << Pairs { { 1, -5 } } << 2 << -4;
    }

    void keysAndNumbers()
    {
        QFETCH(Pairs, rows);
        QFETCH(int, key);
        QFETCH(int, number);
        for (const auto& [k, n] : rows)
            addToE(k, n);
        // The current year's counter must not leak into the previous year's keys.
        f->addTosite(1);
        f->addTosite(20);
        cTositeEd t(f->db());
        QCOMPARE(t.SetTositeNumeroJaPaiva(QDate(2010, 1, 1)), number);
        QCOMPARE(t.Paiva(), rows.isEmpty() ? QDate(2010, 1, 1) : QDate(2010, 6, 1));
        t.Save();
        QCOMPARE(t.ToId(), key);
        QCOMPARE(
            f->value(QStringLiteral("SELECT toENumero FROM toE WHERE toEID = ?"), { key }).toInt(), number);
    }

    void entriesAndDelete()
    {
        addToE(3, 1);
        addViE(4, 3, QStringLiteral("D"));
        addViE(9, 3, QStringLiteral("K"));
        cTositeEd t(f->db());
        QVERIFY(t.Load(3));
        auto v = t.AddNewVienti(QStringLiteral("D"));
        v->settlID(2);
        v->setArvo(Money::fromCents(500));
        v->Save();
        QCOMPARE(v->ViId(), 10);
        QCOMPARE(int(t.GetViennit(QStringLiteral("D")).size()), 2); // read back from viE
        // Emptied, the entry leaves viE; in an empty viE keys start from 1.
        f->exec(QStringLiteral("DELETE FROM viE WHERE viEID <> 10"));
        v->settlID(0);
        v->setArvo(Money());
        v->Save();
        QCOMPARE(f->count(QStringLiteral("viE")), 0);
        auto first = t.AddNewVienti(QStringLiteral("K"));
        first->settlID(2);
        first->Save();
        QCOMPARE(first->ViId(), 1);
        // Deleting the voucher removes its entries from viE, and only there.
        addToE(4, 2);
        addViE(5, 4, QStringLiteral("D"));
        f->addVienti(3, 1, QStringLiteral("D"), 1); // the current year's entries share the key space
        t.Delete();
        QCOMPARE(f->count(QStringLiteral("toE")), 1);
        QCOMPARE(f->count(QStringLiteral("viE")), 1);
        QCOMPARE(f->count(QStringLiteral("vi")), 1);
    }

    void oneBrowsingSequence()
    {
        addToE(1, 0); // the opening voucher 0 is not reached by first
        addToE(2, 12); // opening
        addToE(3, 2);
        addToE(4, 4); // closing
        cTositeEd t(f->db());
        auto first = t.GetFirst();
        QCOMPARE(first->ToId(), 3);
        auto second = first->GetNext();
        QCOMPARE(second->ToId(), 4);
        QVERIFY(second->Paatostosite());
        QCOMPARE(second->GetNext()->Numero(), 12);
        QVERIFY(second->GetNext()->GetNext()->IsEmpty());
        QCOMPARE(t.GetLast()->ToId(), 2);
        QCOMPARE(first->GetPrevious()->ToId(), 1);
        QVERIFY(first->GetPrevious()->GetPrevious()->IsEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_cTositeEd)
#include "tst_cTositeEd.moc"
