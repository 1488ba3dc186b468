#include "AccountsFixture.h"
#include "accounts/cTili.h"
#include "core/DatabaseError.h"

#include <QSignalSpy>

class tst_cTili : public QObject {
    Q_OBJECT

private slots:
    // A setter marks the account changed for a different value only; a saved account announces
    // its displayed name on every assignment of name or number. Undo goes back to the values
    // read, even after a save; a changed account saves itself when released.
    void editing()
    {
        AccountsFixture f;
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
        {
            cTili t(f.db());
            QSignalSpy spy(&t, &cTili::NameChanged);
            // An unsaved account has no node to rename: it announces nothing.
            t.setNimi(QStringLiteral("Uusi"));
            QCOMPARE(spy.count(), 0);
            QVERIFY(t.Read(id));
            t.setNimi(QStringLiteral("Pankki"));
            t.setNumero(1910);
            QVERIFY(!t.isChanged());
            QCOMPARE(spy.count(), 2);
            t.setNumero(2910);
            QCOMPARE(spy.last(), (QVariantList { QStringLiteral("Pankki"), 2910, id }));
            t.setNimi(QStringLiteral("Tallennettu"));
            t.Save();
            t.Undo();
            QCOMPARE(t.Nimi() + QString::number(t.Numero()), QStringLiteral("Pankki1910"));
            QVERIFY(t.isChanged());
            QCOMPARE(f.nimi(id), QStringLiteral("Tallennettu"));
        }
        QCOMPARE(f.nimi(id), QStringLiteral("Pankki"));
    }

    void emptyObjectIgnoresReadSaveDelete()
    {
        AccountsFixture f;
        const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
        cTili t(f.db());
        t.setIsEmpty(true);
        QVERIFY(!t.Read(id));
        t.setNimi(QStringLiteral("Ei tallennu"));
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

    // First and last skip the accounts numbered 0 and below; previous goes on below 1000. A step
    // from an empty object (Empty) leads nowhere, a jump to an end does not.
    void navigation()
    {
        constexpr int Empty = -99;
        AccountsFixture f;
        QHash<int, qint32> ids { { Empty, 0 } };
        for (int n : { 5000, 1000, 9999, -500, 1910, 0 })
            ids[n] = f.tili(n, QStringLiteral("Tili %1").arg(n));
        using Step = std::unique_ptr<cTili> (cTili::*)() const;
        const std::tuple<int, Step, int> cases[] = { { 5000, &cTili::GetFirst, 1000 },
            { 1000, &cTili::GetLast, 9999 }, { 1000, &cTili::GetNext, 1910 },
            { 1000, &cTili::GetPrevious, 0 }, { 9999, &cTili::GetNext, Empty },
            { Empty, &cTili::GetLast, 9999 }, { Empty, &cTili::GetPrevious, Empty } };
        for (const auto& [from, step, expected] : cases) {
            cTili t(f.db());
            t.setIsEmpty(from == Empty);
            t.Read(ids[from]);
            const std::unique_ptr<cTili> r = (t.*step)();
            QVERIFY2(r->IsEmpty() == (expected == Empty) && r->id() == ids[expected],
                qPrintable(QStringLiteral("from %1 to %2, not %3").arg(from).arg(expected).arg(r->Numero())));
        }
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
            f.vienti(1, tlID, tyyppi, arvo, false, avaus, edellinen);
        cTili t(f.db());
        QVERIFY(t.Read(id));
        const cAlkusaldot s = t.Alkusaldot();
        QCOMPARE(s.AlkusaldoDebet(), euros("130"));
        QCOMPARE(s.AlkusaldoKredit(), euros("50"));
        QCOMPARE(s.EdAlkusaldoDebet(), euros("12,34"));
        QCOMPARE(s.EdAlkusaldoKredit(), Money::fromRaw(1));
        // An unsaved account has none, whatever entries point at id 0.
        QCOMPARE(cTili(f.db()).Alkusaldot().AlkusaldoDebet(), Money());
    }
};

QTEST_GUILESS_MAIN(tst_cTili)
#include "tst_cTili.moc"
