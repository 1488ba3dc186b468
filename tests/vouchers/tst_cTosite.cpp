#include "VoucherFixture.h"
#include "core/DatabaseError.h"
#include "core/Transaction.h"
#include "vouchers/cTosite.h"

#include <QTest>

namespace {

struct Row {
    int numero;
    QString kind;
    QString pvm;
};

} // namespace

Q_DECLARE_METATYPE(QList<Row>)

class tst_cTosite : public QObject, VoucherCase {
    Q_OBJECT

private slots:
    void init() { start(false); }
    void cleanup() { finish(); }

    void numbering_data()
    {
        QTest::addColumn<QList<Row>>("rows");
        QTest::addColumn<bool>("opening");
        QTest::addColumn<int>("number");
        QTest::addColumn<QDate>("date");
        const QDate start(2011, 1, 1);
        QTest::newRow("empty table") << QList<Row> {} << false << 1 << start;
        // The latest date, not that of the highest number; the kind asked does not matter.
        QTest::newRow("shared sequence") << QList<Row> { { 6, "", "2011-02-01" }, { 5, "A", "2011-01-01" } }
                                         << true << 7 << QDate(2011, 2, 1);
        QTest::newRow("negative ignored") << QList<Row> { { -3, "", "2011-12-31" } } << false << 1 << start;
        QTest::newRow("zero counts") << QList<Row> { { 0, "A", "2011-01-01" } } << false << 1 << start;
    }

    void numbering()
    {
        QFETCH(QList<Row>, rows);
        QFETCH(bool, opening);
        QFETCH(int, number);
        QFETCH(QDate, date);
        for (const Row& r : rows)
            f->addTosite(r.numero, r.kind, r.pvm);
        const qint64 before = f->totalChanges();
        cTosite t(f->db());
        QCOMPARE(t.SetTositeNumeroJaPaiva(QDate(2011, 1, 1), opening), number);
        QCOMPARE(t.Paiva(), date);
        QCOMPARE(f->totalChanges(), before); // numbering alone writes nothing
        t.setIsEmpty(true);
    }

    void cursor_data()
    {
        // Vouchers: 1 ordinary, 2 opening, 3 ordinary, 4 closing, 5 ordinary, -3 ordinary, 0 opening.
        QTest::addColumn<QString>("call");
        QTest::addColumn<int>("from");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("expected"); // -99: none found
        QTest::newRow("last ordinary") << "last" << 0 << "" << 5;
        QTest::newRow("first opening skips 0") << "first" << 0 << "A" << 2;
        QTest::newRow("next ordinary skips other kinds") << "next" << 1 << "" << 3;
        QTest::newRow("previous ordinary skips other kinds") << "previous" << 5 << "" << 3;
        QTest::newRow("next on last ordinary") << "next" << 5 << "" << -99;
        QTest::newRow("previous has no lower bound") << "previous" << 1 << "" << -3;
        QTest::newRow("previous below 0 opening") << "previous" << 0 << "A" << -99;
    }

    void cursor()
    {
        QFETCH(QString, call);
        QFETCH(int, from);
        QFETCH(QString, kind);
        QFETCH(int, expected);
        QHash<int, int> keys;
        for (const Row& r : QList<Row> { { 1, "", {} }, { 2, "A", {} }, { 3, "", {} }, { 4, "P", {} },
                 { 5, "", {} }, { -3, "", {} }, { 0, "A", {} } })
            keys[r.numero] = f->addTosite(r.numero, r.kind);
        const bool a = kind == u"A";
        const bool p = kind == u"P";
        cTosite asked(f->db());
        QVERIFY(asked.Load(keys.value(from)));
        const auto got = call == u"first" ? asked.GetFirst(a, p)
            : call == u"last"             ? asked.GetLast(a, p)
            : call == u"next"             ? asked.GetNext(a, p)
                                          : asked.GetPrevious(a, p);
        // The object asked is left as it was, also at the ends.
        QCOMPARE(asked.ToId(), keys.value(from));
        QCOMPARE(asked.Numero(), from);
        QVERIFY(!asked.Dirty());
        QCOMPARE(got->IsEmpty(), expected == -99);
        if (expected != -99) {
            QCOMPARE(got->ToId(), keys.value(expected));
            QCOMPARE(got->Avaustosite(), a);
            QCOMPARE(got->Paatostosite(), p);
        }
    }

    void dirtyTracking()
    {
        const int id = f->addTosite(3);
        const int viId = f->addVienti(id, 1, QStringLiteral("D"), 300);
        {
            cTosite t(f->db());
            cVienti v(f->db());
            QVERIFY(t.Load(id) && v.Load(viId));
            // Setting the stored values again changes nothing.
            t.setNumero(3);
            t.setSelite(QStringLiteral("Tosite"));
            v.setArvo(Money::fromRaw(300));
            v.settlID(1);
            QVERIFY(!t.Dirty() && !v.Dirty());
            const qint64 before = f->totalChanges();
            t.Save(false);
            v.Save(false);
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

    // Odd and long descriptions: tst_OddText.
    void roundTrip()
    {
        cTosite t(f->db());
        t.setNumero(12);
        t.setPaiva(QDate(2011, 9, 5));
        t.setSelite(QStringLiteral("Vuokra"));
        t.setPaatostosite(true);
        t.setAutomaatti(true);
        t.Save();
        QVERIFY(t.ToId() > 0 && !t.Dirty());
        cTosite back(f->db());
        QVERIFY(back.Load(t.ToId()));
        QCOMPARE(back.Numero(), 12);
        QCOMPARE(back.Paiva(), QDate(2011, 9, 5));
        QCOMPARE(back.Selite(), QStringLiteral("Vuokra"));
        QVERIFY(!back.Avaustosite() && back.Paatostosite() && back.Automaatti());
        QCOMPARE(
            f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString(), QStringLiteral("2011-09-05"));
        // An empty description is stored as one blank; a missing date as NULL.
        back.setSelite(QString());
        back.setPaiva(QDate());
        back.Save();
        QCOMPARE(f->value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), QStringLiteral(" "));
        QVERIFY(f->value(QStringLiteral("SELECT toPvm FROM \"to\"")).isNull());
    }

    void undoAndLoadOfMissingKey()
    {
        const int toId = f->addTosite(4, QString(), QStringLiteral("2011-03-01"), QStringLiteral("Alku"));
        cTosite t(f->db());
        QVERIFY(t.Load(toId));
        t.setSelite(QStringLiteral("Muutos"));
        t.Undo();
        QCOMPARE(t.Selite(), QStringLiteral("Alku"));
        QVERIFY(!t.Dirty());
        // A key that no longer exists resets the object instead of keeping the old voucher.
        t.setSelite(QStringLiteral("muutettu"));
        QVERIFY(!t.Load(toId + 100));
        QCOMPARE(t.ToId(), 0);
        QCOMPARE(t.Selite(), QString());
        QVERIFY(!t.Dirty());
    }

    void deleteRemovesAllEntriesInOneTransaction()
    {
        const int id = f->addBalanced(1, 1, 2, 10000);
        const int other = f->addTosite(2);
        f->addVienti(other, 1, QStringLiteral("D"), 10000);
        cTosite t(f->db());
        QVERIFY(t.Load(id));
        t.Delete();
        QCOMPARE(t.ToId(), 0);
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 1);
        QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(other)), 1);
        QCOMPARE(f->count(QStringLiteral("vi")), 1);
        // When the entries cannot be removed, the voucher stays too.
        QVERIFY(f->failOn(QStringLiteral("DELETE"), QStringLiteral("vi")));
        QVERIFY(t.Load(other));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, t.Delete());
        QCOMPARE(f->count(QStringLiteral("\"to\"")), 1);
    }

    void zeroEntryRule_data()
    {
        QTest::addColumn<int>("account");
        QTest::addColumn<int>("cents");
        QTest::newRow("neither account nor amount") << 0 << 0;
        QTest::newRow("amount without account") << 0 << 10000;
        QTest::newRow("account without amount") << 3 << 0;
    }

    void zeroEntryRule()
    {
        QFETCH(int, account);
        QFETCH(int, cents);
        const bool stored = account != 0 || cents != 0;
        cTosite t(f->db()); // a new entry carries its voucher's key, kind and description
        QVERIFY(t.Load(f->addTosite(1, QStringLiteral("A"))));
        auto v = t.AddNewVienti(QStringLiteral("Debet"));
        v->settlID(account);
        v->setArvo(Money::fromCents(cents));
        v->Save();
        QCOMPARE(f->count(QStringLiteral("vi")), stored ? 1 : 0);
        QCOMPARE(
            f->count(QStringLiteral("vi"),
                QStringLiteral("vitoID = %1 AND viTyyppi = 'D' AND viAvausvienti = 1 AND viPaatosvienti = 0 "
                               "AND viSelite = 'Tosite'")
                    .arg(t.ToId())),
            stored ? 1 : 0);
        QCOMPARE(f->value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), qint64(cents) * 100);
        // Emptying a stored entry deletes it.
        v->settlID(0);
        v->setArvo(Money());
        v->Save();
        QCOMPARE(f->count(QStringLiteral("vi")), 0);
        QCOMPARE(v->ViId(), 0);
    }

    void rollbackLeavesNoObjectClaimingARow_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::newRow("insert") << "insert";
        QTest::newRow("update") << "update";
        QTest::newRow("delete") << "delete";
    }

    void rollbackLeavesNoObjectClaimingARow()
    {
        QFETCH(QString, operation);
        const int toId = f->addTosite(1);
        const int stored = f->addVienti(toId, 1, QStringLiteral("D"), 10000);
        cTosite t(f->db());
        QVERIFY(t.Load(toId));
        std::unique_ptr<cVienti> v = operation == u"insert" ? t.AddNewVienti(QStringLiteral("K")) : nullptr;
        if (!v) {
            v = std::make_unique<cVienti>(f->db());
            QVERIFY(v->Load(stored));
        }
        v->setArvo(Money::fromCents(250));
        v->settlID(2);
        {
            Transaction outer(f->db());
            {
                // Written inside a savepoint that the outer transaction then throws away.
                Transaction inner(f->db());
                if (operation == u"delete")
                    v->Delete();
                else
                    v->Save();
                QVERIFY(inner.commit());
            }
            QCOMPARE(v->ViId(), operation == u"delete" ? 0 : operation == u"insert" ? stored + 1 : stored);
        }
        // As before the transaction: the same key (none for a new entry), still to be saved, and
        // the typed values kept.
        QCOMPARE(v->ViId(), operation == u"insert" ? 0 : stored);
        QVERIFY(v->Dirty());
        QCOMPARE(v->Arvo(), Money::fromCents(250));
        QCOMPARE(f->count(QStringLiteral("vi")), 1);
        QCOMPARE(f->value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), 10000);
        // Saving again writes exactly what the object holds.
        v->Save();
        QCOMPARE(f->count(QStringLiteral("vi"), QStringLiteral("viArvo = 25000 AND vitlID = 2")), 1);
        QCOMPARE(f->count(QStringLiteral("vi")), operation == u"insert" ? 2 : 1);
    }
};

QTEST_GUILESS_MAIN(tst_cTosite)
#include "tst_cTosite.moc"
