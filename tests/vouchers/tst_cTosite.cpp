#include "VoucherFixture.h"
#include "core/DatabaseError.h"
#include "core/Transaction.h"
#include "vouchers/cTosite.h"

#include <QTest>

class tst_cTosite : public QObject, VoucherCase {
    Q_OBJECT

private slots:
    void init() { start(); }
    void cleanup() { finish(); }

    // One sequence for every kind; the date is the latest, not that of the highest number.
    void numbering()
    {
        const struct {
            QList<std::tuple<int, const char*, const char*>> rows; // number, kind, date
            bool opening;
            int number;
            QDate date;
        } cases[] = {
            { { { 6, "", "2011-02-01" }, { 5, "A", "2011-01-01" } }, true, 7, QDate(2011, 2, 1) },
            // A negative number is ignored, its date too.
            { { { -3, "", "2011-12-31" } }, false, 1, QDate(2011, 1, 1) },
            { { { 0, "A", "2011-01-01" } }, false, 1, QDate(2011, 1, 1) }, // zero counts
        };
        for (const auto& c : cases) {
            QVERIFY(f->exec(QStringLiteral("DELETE FROM \"to\"")));
            for (const auto& [numero, kind, pvm] : c.rows)
                f->addTosite(numero, QString::fromLatin1(kind), QString::fromLatin1(pvm));
            const qint64 before = f->totalChanges();
            cTosite t(f->db());
            QCOMPARE(t.SetTositeNumeroJaPaiva(QDate(2011, 1, 1), c.opening), c.number);
            QCOMPARE(t.Paiva(), c.date);
            QCOMPARE(f->totalChanges(), before); // numbering alone writes nothing
            t.setIsEmpty(true);
        }
    }

    // Browsing stays in the kind asked, finds none past the ends and leaves the object asked as it was.
    void cursor()
    {
        QHash<int, int> keys { { -99, 0 } }; // by number; -99: none found
        for (const auto& [numero, laji] : std::initializer_list<std::pair<int, const char*>> {
                 { 1, "" }, { 2, "A" }, { 3, "" }, { 4, "P" }, { 5, "" }, { -3, "" }, { 0, "A" } })
            keys[numero] = f->addTosite(numero, QString::fromLatin1(laji));
        const struct {
            char call; // First, Last, Next, Previous
            int from;
            bool opening;
            int expected;
        } rows[] = {
            { 'L', 0, false, 5 }, { 'F', 0, true, 2 }, // skips the opening voucher 0
            { 'N', 1, false, 3 }, // skips other kinds
            { 'P', 5, false, 3 }, { 'N', 5, false, -99 }, { 'P', 1, false, -3 }, // no lower bound
        };
        for (const auto& r : rows) {
            cTosite asked(f->db());
            QVERIFY(asked.Load(keys.value(r.from)));
            const auto got = r.call == 'F' ? asked.GetFirst(r.opening, false)
                : r.call == 'L'            ? asked.GetLast(r.opening, false)
                : r.call == 'N'            ? asked.GetNext(r.opening, false)
                                           : asked.GetPrevious(r.opening, false);
            QCOMPARE(asked.ToId(), keys.value(r.from));
            QVERIFY(!asked.Dirty());
            QCOMPARE(got->IsEmpty(), r.expected == -99);
            QCOMPARE(got->ToId(), keys.value(r.expected));
        }
    }

    // Odd and long descriptions: tst_OddText.
    void roundTripUndoAndMissingKey()
    {
        cTosite t(f->db());
        t.setNumero(12);
        t.setPaiva(QDate(2011, 9, 5));
        t.setSelite(QStringLiteral("Vuokra"));
        t.setPaatostosite(true);
        t.setAutomaatti(true);
        t.Save();
        cTosite back(f->db());
        QVERIFY(back.Load(t.ToId()));
        QCOMPARE(back.Numero(), 12);
        QCOMPARE(back.Paiva(), QDate(2011, 9, 5));
        QCOMPARE(back.Selite(), QStringLiteral("Vuokra"));
        QVERIFY(!back.Avaustosite() && back.Paatostosite() && back.Automaatti() && !back.Dirty());
        QCOMPARE(
            f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString(), QStringLiteral("2011-09-05"));
        back.setSelite(QStringLiteral("Muutos"));
        back.Undo();
        QCOMPARE(back.Selite(), QStringLiteral("Vuokra"));
        // An empty description is stored as one blank; a missing date as NULL.
        back.setSelite(QString());
        back.setPaiva(QDate());
        back.Save();
        QCOMPARE(f->value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), QStringLiteral(" "));
        QVERIFY(f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).isNull());
        // A key that no longer exists resets the object instead of keeping the old voucher.
        back.setSelite(QStringLiteral("muutettu"));
        QVERIFY(!back.Load(t.ToId() + 100));
        QCOMPARE(back.ToId(), 0);
        QVERIFY(back.Selite().isEmpty() && !back.Dirty());
    }

    void savesOnlyChangesAndWhenReleased()
    {
        const int id = f->addTosite(3);
        const int viId = f->addVienti(id, 1, QStringLiteral("D"), 300);
        {
            cTosite t(f->db());
            cVienti v(f->db());
            QVERIFY(t.Load(id) && v.Load(viId));
            // Setting the stored values again changes nothing.
            t.setSelite(QStringLiteral("Tosite"));
            v.setArvo(Money::fromRaw(300));
            QVERIFY(!t.Dirty() && !v.Dirty());
            const qint64 before = f->totalChanges();
            t.Save(false);
            QCOMPARE(f->totalChanges(), before);
            t.Save(true);
            QCOMPARE(f->totalChanges(), before + 1);
            // Released while changed: each saves itself.
            t.setSelite(QStringLiteral("Vuokra"));
            v.setArvo(Money::fromCents(45));
        }
        QCOMPARE(
            f->value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), QStringLiteral("Vuokra"));
        QCOMPARE(f->value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), 4500);
    }

    void deleteRemovesAllEntriesInOneTransaction()
    {
        const int id = f->addBalanced(f->addTosite(1), 1, 2, 10000);
        const int other = f->addTosite(2);
        f->addVienti(other, 1, QStringLiteral("D"), 10000);
        cTosite t(f->db());
        QVERIFY(t.Load(id));
        t.Delete();
        QCOMPARE(t.ToId(), 0);
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 1);
        QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(other)), 1);
        // When the entries cannot be removed, the voucher stays too.
        QVERIFY(f->failOn(QStringLiteral("DELETE"), QStringLiteral("vi")));
        QVERIFY(t.Load(other));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, t.Delete());
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 1);
    }

    // An entry with neither account nor amount is not stored, and emptying one deletes it. A new
    // entry carries its voucher's key, kind and description.
    void zeroEntryRule()
    {
        cTosite t(f->db());
        QVERIFY(t.Load(f->addTosite(1, QStringLiteral("A"))));
        for (const auto& [account, cents] : { std::pair(0, 0), std::pair(0, 10000), std::pair(3, 0) }) {
            const int stored = account != 0 || cents != 0 ? 1 : 0;
            auto v = t.AddNewVienti(QStringLiteral("Debet"));
            v->settlID(account);
            v->setArvo(Money::fromCents(cents));
            v->Save();
            QCOMPARE(f->count(QStringLiteral("vi")), stored);
            QCOMPARE(f->count(QStringLiteral("vi"),
                         QStringLiteral("vitoID = %1 AND viTyyppi = 'D' AND viAvausvienti = 1 AND "
                                        "viPaatosvienti = 0 AND viSelite = 'Tosite' AND viArvo = %2")
                             .arg(t.ToId())
                             .arg(cents * 100)),
                stored);
            v->settlID(0);
            v->setArvo(Money());
            v->Save();
            QCOMPARE(f->count(QStringLiteral("vi")), 0);
            QCOMPARE(v->ViId(), 0);
        }
    }

    // An insert, update or delete inside a savepoint that the outer transaction throws away.
    void rollbackLeavesNoObjectClaimingARow()
    {
        const int toId = f->addTosite(1);
        cTosite t(f->db());
        QVERIFY(t.Load(toId));
        for (const char operation : { 'I', 'U', 'D' }) {
            QVERIFY(f->exec(QStringLiteral("DELETE FROM vi")));
            const int stored = f->addVienti(toId, 1, QStringLiteral("D"), 10000);
            auto v
                = operation == 'I' ? t.AddNewVienti(QStringLiteral("K")) : std::make_unique<cVienti>(f->db());
            QVERIFY(operation == 'I' || v->Load(stored));
            v->setArvo(Money::fromCents(250));
            v->settlID(2);
            {
                Transaction outer(f->db());
                Transaction inner(f->db());
                operation == 'D' ? v->Delete() : v->Save();
                QVERIFY(inner.commit());
            }
            // As before: the same key (none for a new entry), still to be saved, the typed values kept.
            QCOMPARE(v->ViId(), operation == 'I' ? 0 : stored);
            QVERIFY(v->Dirty());
            QCOMPARE(v->Arvo(), Money::fromCents(250));
            QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("viArvo = 10000")), 1);
            // Saving again writes exactly what the object holds.
            v->Save();
            QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("viArvo = 25000 AND vitlID = 2")), 1);
            QCOMPARE(f->count(QStringLiteral("vi")), operation == 'I' ? 2 : 1);
        }
    }
};

QTEST_GUILESS_MAIN(tst_cTosite)
#include "tst_cTosite.moc"
