#include "AccountsFixture.h"
#include "accounts/cTili.h"
#include "core/DatabaseError.h"

#include <QSignalSpy>

namespace {

constexpr int End = -99; // the end marker in the table of navigation cases

} // namespace

class tst_cTili : public QObject {
    Q_OBJECT

private slots:
    // A setter marks the account changed for a different value only (the balance setters are
    // used nowhere).
    void changedFlagOnlyForRealChanges()
    {
        AccountsFixture f;
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
        cTili t(f.db());
        QVERIFY(t.Read(id));
        t.setNimi(QStringLiteral("Pankki"));
        t.setNumero(1910);
        t.setKuvaus(QStringLiteral(" "));
        QVERIFY(!t.isChanged());
        t.setNimi(QStringLiteral("Pankkitili"));
        QVERIFY(t.isChanged());
        t.Undo();
        t.setNumero(1911);
        QVERIFY(t.isChanged());
        t.Undo();
        t.setKuvaus(QStringLiteral("Käyttötili"));
        QVERIFY(t.isChanged());
    }

    void nameChangedOnEveryAssignmentToSavedAccount()
    {
        AccountsFixture f;
        cTili t(f.db());
        QSignalSpy spy(&t, &cTili::NameChanged);
        // An unsaved account has no node to rename: it announces nothing.
        t.setNimi(QStringLiteral("Pankki"));
        t.setNumero(1910);
        QCOMPARE(spy.count(), 0);
        t.Save();
        QVERIFY(!t.isChanged());
        // The same value again: an event, but no change.
        t.setNimi(QStringLiteral("Pankki"));
        QCOMPARE(spy.count(), 1);
        QVERIFY(!t.isChanged());
        t.setNumero(2910);
        QCOMPARE(spy.last(), (QVariantList { QStringLiteral("Pankki"), 2910, t.id() }));
        // The description is not part of the displayed name.
        t.setKuvaus(QStringLiteral("uusi"));
        QCOMPARE(spy.count(), 2);
    }

    void emptyObjectIgnoresReadSaveDelete()
    {
        AccountsFixture f;
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
        cTili t(f.db());
        t.setIsEmpty(true);
        QVERIFY(!t.Read(id));
        t.setNimi(QStringLiteral("Ei tallennu"));
        QCOMPARE(t.Nimi(), QString());
        t.Save(true);
        t.Delete();
        QCOMPARE(f.tileja(), 1);
        QCOMPARE(f.nimi(id), QStringLiteral("Pankki"));
    }

    void saveNewThenUpdate()
    {
        AccountsFixture f;
        f.tili(1000, QStringLiteral("Ensimmäinen"));
        cTili t(f.db());
        t.setNumero(1500);
        t.Save();
        QVERIFY(t.id() > 1);
        // Empty texts are stored as a blank.
        QCOMPARE(f.nimi(t.id()) + f.kentta(t.id(), "tlKuvaus").toString(), QStringLiteral("  "));
        // The saved object now updates its own row instead of adding another.
        t.setNimi(QStringLiteral("Koneet"));
        t.Save();
        QCOMPARE(f.tileja(), 2);
        QCOMPARE(f.nimi(t.id()), QStringLiteral("Koneet"));
        // A row deleted meanwhile is not silently recreated.
        f.exec(QStringLiteral("DELETE FROM tl"));
        t.setNimi(QStringLiteral("Uusi"));
        QVERIFY_THROWS_EXCEPTION(DatabaseError, t.Save());
        QVERIFY(t.isChanged());
        QCOMPARE(f.tileja(), 0);
        t.Undo();
    }

    // Undo goes back to the values read, even after a save; a changed account saves itself
    // when released.
    void undoReturnsToLastRead()
    {
        AccountsFixture f;
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"), QStringLiteral("K"));
        {
            cTili t(f.db());
            QVERIFY(t.Read(id));
            t.setNumero(7);
            t.setKuvaus(QStringLiteral("X"));
            t.Undo();
            QCOMPARE(t.Kuvaus() + QString::number(t.Numero()), QStringLiteral("K1910"));
            QVERIFY(!t.isChanged());
            t.setNimi(QStringLiteral("Tallennettu"));
            t.Save();
            t.Undo();
            QCOMPARE(t.Nimi(), QStringLiteral("Pankki"));
            QVERIFY(t.isChanged());
            QCOMPARE(f.nimi(id), QStringLiteral("Tallennettu"));
        }
        QCOMPARE(f.nimi(id), QStringLiteral("Pankki"));
    }

    void navigation_data()
    {
        QTest::addColumn<QString>("from"); // an account number, "empty" or "blank"
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("expected"); // an account number or End
        const auto row = [](const char* from, const char* operation, int expected) {
            QTest::addRow("%s %s", from, operation)
                << QString::fromLatin1(from) << QString::fromLatin1(operation) << expected;
        };
        // First and last skip the accounts numbered 0 and below; previous goes on below 1000.
        row("5000", "first", 1000);
        row("1000", "last", 9999);
        row("1000", "next", 1910);
        row("1000", "previous", 0);
        row("-500", "previous", End);
        row("9999", "next", End);
        row("empty", "last", 9999);
        row("empty", "previous", End);
        row("blank", "next", 1000); // a new object has number 0
    }

    void navigation()
    {
        QFETCH(QString, from);
        QFETCH(QString, operation);
        QFETCH(int, expected);
        AccountsFixture f;
        QHash<int, qint32> ids;
        for (int n : { 5000, 1000, 9999, -500, 1910, 0 })
            ids[n] = f.tili(n, QStringLiteral("Tili %1").arg(n));
        cTili t(f.db());
        if (from == QLatin1String("empty"))
            t.setIsEmpty(true);
        else if (from != QLatin1String("blank"))
            QVERIFY(t.Read(ids[from.toInt()]));
        std::unique_ptr<cTili> r = operation == QLatin1String("first") ? t.GetFirst()
            : operation == QLatin1String("last")                       ? t.GetLast()
            : operation == QLatin1String("next")                       ? t.GetNext()
                                                                       : t.GetPrevious();
        QCOMPARE(r->IsEmpty(), expected == End);
        QCOMPARE(r->id(), expected == End ? 0 : ids[expected]);
        QCOMPARE(r->Numero(), expected == End ? 0 : expected);
    }

    void alkusaldotCountsOnlyOpeningEntries()
    {
        AccountsFixture f;
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
        const qint32 other = f.tili(2000, QStringLiteral("Muu"));
        const std::tuple<qint32, const char*, const char*, bool, bool> entries[]
            = { { id, "D", "100", true, false }, { id, "D", "30", true, false },
                  { id, "K", "50", true, false }, { id, "D", "999", false, false },
                  { id, "d", "7", true, false }, { other, "D", "5", true, false },
                  { 0, "D", "5", true, false }, { id, "K", "0,0001", true, true },
                  { id, "D", "12,34", true, true }, { id, "K", "88", false, true } };
        for (const auto& [tlID, tyyppi, arvo, avaus, edellinen] : entries)
            f.vienti(tlID, QString::fromLatin1(tyyppi), euros(arvo), avaus, edellinen);
        cTili t(f.db());
        QVERIFY(t.Read(id));
        const cAlkusaldot s = t.Alkusaldot();
        QCOMPARE(s.AlkusaldoDebet(), euros("130"));
        QCOMPARE(s.AlkusaldoKredit(), euros("50"));
        QCOMPARE(s.EdAlkusaldoDebet(), euros("12,34"));
        QCOMPARE(s.EdAlkusaldoKredit(), Money::fromRaw(1));
        // An unsaved or empty account has none, whatever entries point at id 0.
        QCOMPARE(cTili(f.db()).Alkusaldot().AlkusaldoDebet(), Money());
        t.setIsEmpty(true);
        QCOMPARE(t.Alkusaldot().AlkusaldoDebet(), Money());
    }
};

QTEST_GUILESS_MAIN(tst_cTili)
#include "tst_cTili.moc"
