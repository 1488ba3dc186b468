#include "VoucherFixture.h"
#include "vouchers/cTositeEd.h"

#include <QTest>

using Pairs = QList<QPair<int, int>>;

namespace {

// Numbers 12 and 4 are an opening and a closing voucher.
void addToE(int key, int numero)
{
    VoucherFixture::exec(
        QStringLiteral("INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAvaustosite, "
                       "toEPaatostosite, toEAutomaatti) VALUES (?, ?, '2010-06-01', 'x', ?, ?, 0)"),
        { key, numero, numero == 12 ? 1 : 0, numero == 4 ? 1 : 0 });
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
    void init() { start(); }
    void cleanup() { finish(); }

    // The previous year's keys are made by the program (largest + 1); its numbering counts every
    // row, whatever the kind or sign, and the current year's counter does not leak into either.
    void keysAndNumbers()
    {
        f->addTosite(20);
        const struct {
            Pairs rows; // (toEID, toENumero)
            int key;
            int number;
        } cases[] = {
            { {}, 1, 1 },
            { { { 1, 3 }, { 2, 12 }, { 7, 4 } }, 8, 13 },
            { { { 1, -5 } }, 2, -4 },
        };
        for (const auto& c : cases) {
            QVERIFY(f->exec(QStringLiteral("DELETE FROM toE")));
            for (const auto& [k, n] : c.rows)
                addToE(k, n);
            cTositeEd t(f->db());
            QCOMPARE(t.SetTositeNumeroJaPaiva(QDate(2010, 1, 1)), c.number);
            QCOMPARE(t.Paiva(), c.rows.isEmpty() ? QDate(2010, 1, 1) : QDate(2010, 6, 1));
            t.Save();
            QCOMPARE(t.ToId(), c.key);
            QCOMPARE(f->value(QStringLiteral("SELECT toENumero FROM toE WHERE toEID = ?"), { c.key }).toInt(),
                c.number);
        }
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
        v->Save();
        QCOMPARE(v->ViId(), 10);
        QCOMPARE(int(t.GetViennit(QStringLiteral("D")).size()), 2); // read back from viE
        // Emptied, the entry leaves viE; in an empty viE keys start from 1.
        f->exec(QStringLiteral("DELETE FROM viE WHERE viEID <> 10"));
        v->settlID(0);
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
};

QTEST_GUILESS_MAIN(tst_cTositeEd)
#include "tst_cTositeEd.moc"
