#include "AccountsFixture.h"
#include "cTili.h"

#include <QSignalSpy>

class tst_cTili : public QObject {
    Q_OBJECT

private slots:
    void newObjectIsBlank();
    void textsAreCut();
    void changedFlagOnlyForRealChanges_data();
    void changedFlagOnlyForRealChanges();
    void nameChangedOnEveryAssignmentToSavedAccount();
    void unsavedAccountRaisesNothing();
    void readLoadsAndMissingRowBlanks();
    void emptyObjectIgnoresReadSaveDelete();
    void saveNewStoresBlanksAndReadsBackId();
    void saveUnchangedWritesOnlyWhenForced();
    void saveOfVanishedRowFails();
    void undoReturnsToLastRead();
    void deleteRemovesRowKeepsFields();
    void changedAccountSavesItselfWhenReleased();
    void navigation_data();
    void navigation();
    void navigationPastEitherEnd();
    void navigationFromEmptyObject();
    void navigationOnEmptyChart();
    void alkusaldotCountsOnlyOpeningEntries();
    void alkusaldotOfNewOrEmptyIsZero();
};

void tst_cTili::newObjectIsBlank()
{
    AccountsFixture f;
    cTili t;
    QVERIFY(!t.IsEmpty());
    QVERIFY(!t.isChanged());
    QCOMPARE(t.id(), 0);
    QCOMPARE(t.Nimi(), QString());
    QCOMPARE(t.Numero(), 0);
    QCOMPARE(t.Alkusaldo(), Money());
}

void tst_cTili::textsAreCut()
{
    AccountsFixture f;
    cTili t;
    t.setNimi(QString(60, u'n'));
    t.setKuvaus(QString(300, u'k'));
    QCOMPARE(t.Nimi(), QString(50, u'n'));
    QCOMPARE(t.Kuvaus(), QString(255, u'k'));
    t.setNumero(1000);
    QVERIFY(t.Save());
    cTili back;
    QVERIFY(back.Read(t.id()));
    QCOMPARE(back.Nimi().size(), 50);
    QCOMPARE(back.Kuvaus().size(), 255);
}

void tst_cTili::changedFlagOnlyForRealChanges_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<bool>("differs");
    for (const char* p : { "Nimi", "Kuvaus", "Numero", "Alkusaldo", "Loppusaldo" }) {
        QTest::addRow("%s same", p) << QString::fromLatin1(p) << false;
        QTest::addRow("%s different", p) << QString::fromLatin1(p) << true;
    }
}

void tst_cTili::changedFlagOnlyForRealChanges()
{
    QFETCH(QString, property);
    QFETCH(bool, differs);
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"), QStringLiteral("Käyttötili"));
    f.exec(QStringLiteral("UPDATE tl SET tlAlkusaldo = 120000, tlLoppusaldo = 5000 WHERE tlID = ?"), { id });
    cTili t;
    QVERIFY(t.Read(id));
    QVERIFY(!t.isChanged());
    if (property == QLatin1String("Nimi"))
        t.setNimi(differs ? QStringLiteral("Pankkitili") : QStringLiteral("Pankki"));
    else if (property == QLatin1String("Kuvaus"))
        t.setKuvaus(differs ? QStringLiteral("Säästötili") : QStringLiteral("Käyttötili"));
    else if (property == QLatin1String("Numero"))
        t.setNumero(differs ? 1911 : 1910);
    else if (property == QLatin1String("Alkusaldo"))
        t.setAlkusaldo(differs ? euros("12,01") : euros("12"));
    else
        t.setLoppusaldo(differs ? euros("0,51") : euros("0,50"));
    QCOMPARE(t.isChanged(), differs);
    // A successful save clears the flag.
    QVERIFY(t.Save());
    QVERIFY(!t.isChanged());
}

void tst_cTili::nameChangedOnEveryAssignmentToSavedAccount()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    cTili t;
    QVERIFY(t.Read(id));
    QSignalSpy spy(&t, &cTili::NameChanged);
    t.setNimi(QStringLiteral("Pankki"));
    QCOMPARE(spy.count(), 1);
    QVERIFY(!t.isChanged());
    t.setNumero(2910);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.last(), (QVariantList { QStringLiteral("Pankki"), 2910, id }));
    QVERIFY(t.isChanged());
    t.setNimi(QStringLiteral("O'Brien & Co \"x\""));
    QCOMPARE(spy.last().at(0).toString(), QStringLiteral("O'Brien & Co \"x\""));
    // The description is not part of the displayed name.
    t.setKuvaus(QStringLiteral("uusi"));
    QCOMPARE(spy.count(), 3);
}

void tst_cTili::unsavedAccountRaisesNothing()
{
    AccountsFixture f;
    cTili t;
    QSignalSpy spy(&t, &cTili::NameChanged);
    t.setNimi(QStringLiteral("Uusi"));
    t.setNumero(3000);
    QCOMPARE(spy.count(), 0);
    // Once saved, the account announces its assignments.
    QVERIFY(t.Save());
    t.setNumero(3000);
    QCOMPARE(spy.count(), 1);
}

void tst_cTili::readLoadsAndMissingRowBlanks()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"), QStringLiteral("Kuvaus"));
    f.exec(
        QStringLiteral("UPDATE tl SET tlAlkusaldo = 123456, tlLoppusaldo = -50000 WHERE tlID = ?"), { id });
    cTili t;
    QVERIFY(t.Read(id));
    QCOMPARE(t.id(), id);
    QCOMPARE(t.Nimi(), QStringLiteral("Pankki"));
    QCOMPARE(t.Kuvaus(), QStringLiteral("Kuvaus"));
    QCOMPARE(t.Numero(), 1910);
    QCOMPARE(t.Alkusaldo(), Money::fromRaw(123456));
    QCOMPARE(t.Loppusaldo(), euros("-5"));
    QVERIFY(!t.Read(id + 100));
    QVERIFY(!t.IsEmpty());
    QCOMPARE(t.id(), 0);
    QCOMPARE(t.Nimi(), QString());
    QCOMPARE(t.Numero(), 0);
    QVERIFY(!t.isChanged());
}

void tst_cTili::emptyObjectIgnoresReadSaveDelete()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    cTili t;
    t.setIsEmpty(true);
    QVERIFY(!t.Read(id));
    QVERIFY(t.IsEmpty());
    QCOMPARE(t.Nimi(), QString());
    t.setNimi(QStringLiteral("Ei tallennu"));
    QCOMPARE(t.Nimi(), QString());
    QVERIFY(!t.Save(true));
    QVERIFY(!t.Delete());
    QCOMPARE(f.tileja(), 1);
}

void tst_cTili::saveNewStoresBlanksAndReadsBackId()
{
    AccountsFixture f;
    f.tili(1000, QStringLiteral("Ensimmäinen"));
    cTili t;
    t.setNumero(1500);
    QVERIFY(t.isChanged());
    QVERIFY(t.Save());
    QVERIFY(t.id() > 1);
    QCOMPARE(f.value(QStringLiteral("SELECT tlNimi FROM tl WHERE tlID = ?"), { t.id() }).toString(),
        QStringLiteral(" "));
    QCOMPARE(f.value(QStringLiteral("SELECT tlKuvaus FROM tl WHERE tlID = ?"), { t.id() }).toString(),
        QStringLiteral(" "));
    QCOMPARE(f.value(QStringLiteral("SELECT tlPrint FROM tl WHERE tlID = ?"), { t.id() }).toInt(), 0);
    cTili back;
    QVERIFY(back.Read(t.id()));
    QCOMPARE(back.Nimi(), QStringLiteral(" "));
    // The saved object now updates its own row instead of adding another.
    t.setNimi(QStringLiteral("Koneet"));
    QVERIFY(t.Save());
    QCOMPARE(f.tileja(), 2);
}

void tst_cTili::saveUnchangedWritesOnlyWhenForced()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    f.exec(QStringLiteral("UPDATE tl SET tlPrint = 1 WHERE tlID = ?"), { id });
    cTili t;
    QVERIFY(t.Read(id));
    // Someone else changes the row: an unforced save of an unchanged object leaves it.
    f.exec(QStringLiteral("UPDATE tl SET tlNimi = 'Muualla', tlPrint = 0 WHERE tlID = ?"), { id });
    QVERIFY(t.Save(false));
    QCOMPARE(f.value(QStringLiteral("SELECT tlNimi FROM tl")).toString(), QStringLiteral("Muualla"));
    QVERIFY(t.Save(true));
    QCOMPARE(f.value(QStringLiteral("SELECT tlNimi FROM tl")).toString(), QStringLiteral("Pankki"));
    // The print flag is written back as it was read.
    QCOMPARE(f.value(QStringLiteral("SELECT tlPrint FROM tl")).toInt(), 1);
}

void tst_cTili::saveOfVanishedRowFails()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    cTili t;
    QVERIFY(t.Read(id));
    f.exec(QStringLiteral("DELETE FROM tl"));
    t.setNimi(QStringLiteral("Uusi"));
    QVERIFY(!t.Save());
    QVERIFY(!t.lastError().isEmpty());
    QCOMPARE(f.tileja(), 0);
    t.Undo();
}

void tst_cTili::undoReturnsToLastRead()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"), QStringLiteral("K"));
    cTili t;
    QVERIFY(t.Read(id));
    t.setNimi(QStringLiteral("Väärä"));
    t.setNumero(7);
    t.setKuvaus(QStringLiteral("X"));
    t.Undo();
    QCOMPARE(t.Nimi(), QStringLiteral("Pankki"));
    QCOMPARE(t.Numero(), 1910);
    QCOMPARE(t.Kuvaus(), QStringLiteral("K"));
    QVERIFY(!t.isChanged());
    // After a save, undo goes back to the values read, which then differ from the row.
    t.setNimi(QStringLiteral("Tallennettu"));
    QVERIFY(t.Save());
    t.Undo();
    QCOMPARE(t.Nimi(), QStringLiteral("Pankki"));
    QVERIFY(t.isChanged());
    QVERIFY(t.Save());
    QCOMPARE(f.value(QStringLiteral("SELECT tlNimi FROM tl")).toString(), QStringLiteral("Pankki"));
}

void tst_cTili::deleteRemovesRowKeepsFields()
{
    AccountsFixture f;
    const qint32 keep = f.tili(1000, QStringLiteral("Jää"));
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    cTili t;
    QVERIFY(t.Read(id));
    QVERIFY(t.Delete());
    QCOMPARE(f.tileja(), 1);
    QCOMPARE(f.value(QStringLiteral("SELECT tlID FROM tl")).toInt(), keep);
    QCOMPARE(t.Nimi(), QStringLiteral("Pankki"));
    QCOMPARE(t.id(), id);
    cTili unsaved;
    QVERIFY(!unsaved.Delete());
}

void tst_cTili::changedAccountSavesItselfWhenReleased()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    {
        cTili t;
        QVERIFY(t.Read(id));
        t.setNimi(QStringLiteral("Pankkitili"));
    }
    QCOMPARE(f.value(QStringLiteral("SELECT tlNimi FROM tl")).toString(), QStringLiteral("Pankkitili"));
}

// Chart used by the navigation cases: negative, zero and ordinary numbers.
void tst_cTili::navigation_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<int>("expected"); // 0 = IsEmpty
    QTest::newRow("first") << 5000 << "first" << 1000;
    QTest::newRow("last") << 1000 << "last" << 9999;
    QTest::newRow("next") << 1000 << "next" << 1910;
    QTest::newRow("next skips gap") << 1910 << "next" << 5000;
    QTest::newRow("previous") << 5000 << "previous" << 1910;
    QTest::newRow("previous reaches 0") << 1000 << "previous" << -1;
    QTest::newRow("previous reaches negative") << -1 << "previous" << -500;
    QTest::newRow("previous at bottom") << -500 << "previous" << 0;
    QTest::newRow("next at top") << 9999 << "next" << 0;
}

void tst_cTili::navigation()
{
    QFETCH(int, from);
    QFETCH(QString, operation);
    QFETCH(int, expected);
    AccountsFixture f;
    QHash<int, qint32> ids;
    for (int n : { 5000, 1000, 9999, -500, 1910 })
        ids[n] = f.tili(n, QStringLiteral("Tili %1").arg(n));
    // Number 0 is represented by -1 in the table of cases: a row numbered 0.
    ids[-1] = f.tili(0, QStringLiteral("Nolla"));
    cTili t;
    QVERIFY(t.Read(ids[from]));
    std::unique_ptr<cTili> r = operation == QLatin1String("first") ? t.GetFirst()
        : operation == QLatin1String("last")                       ? t.GetLast()
        : operation == QLatin1String("next")                       ? t.GetNext()
                                                                   : t.GetPrevious();
    QVERIFY(r);
    if (expected == 0) {
        QVERIFY(r->IsEmpty());
        QCOMPARE(r->id(), 0);
    } else {
        QVERIFY(!r->IsEmpty());
        QCOMPARE(r->id(), ids[expected]);
        QCOMPARE(r->Numero(), expected == -1 ? 0 : expected);
        QVERIFY(!r->isChanged());
    }
}

void tst_cTili::navigationPastEitherEnd()
{
    AccountsFixture f;
    f.tili(1000, QStringLiteral("A"));
    const qint32 top = f.tili(9000, QStringLiteral("B"));
    cTili t;
    QVERIFY(t.Read(top));
    std::unique_ptr<cTili> end = t.GetNext();
    QVERIFY(end->IsEmpty());
    // On the end marker no query runs: with the table gone it still answers at once.
    f.exec(QStringLiteral("ALTER TABLE tl RENAME TO tl_pois"));
    std::unique_ptr<cTili> again = end->GetNext();
    QVERIFY(again->IsEmpty());
    QVERIFY(end->GetPrevious()->IsEmpty());
    QVERIFY(end->lastError().isEmpty());
    f.exec(QStringLiteral("ALTER TABLE tl_pois RENAME TO tl"));
}

void tst_cTili::navigationFromEmptyObject()
{
    AccountsFixture f;
    const qint32 first = f.tili(1000, QStringLiteral("A"));
    const qint32 last = f.tili(9000, QStringLiteral("B"));
    cTili t;
    t.setIsEmpty(true);
    // First and last do not depend on the object they are called on.
    QCOMPARE(t.GetFirst()->id(), first);
    QCOMPARE(t.GetLast()->id(), last);
    QVERIFY(t.GetNext()->IsEmpty());
    QVERIFY(t.GetPrevious()->IsEmpty());
    // A blank new object has number 0: next finds the first positive account.
    cTili blank;
    QCOMPARE(blank.GetNext()->id(), first);
}

void tst_cTili::navigationOnEmptyChart()
{
    AccountsFixture f;
    f.tili(0, QStringLiteral("Nolla"));
    f.tili(-5, QStringLiteral("Miinus"));
    cTili t;
    QVERIFY(t.GetFirst()->IsEmpty());
    QVERIFY(t.GetLast()->IsEmpty());
}

void tst_cTili::alkusaldotCountsOnlyOpeningEntries()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    const qint32 other = f.tili(2000, QStringLiteral("Muu"));
    f.vienti(id, QStringLiteral("D"), euros("100"), true);
    f.vienti(id, QStringLiteral("D"), euros("30"), true);
    f.vienti(id, QStringLiteral("K"), euros("50"), true);
    f.vienti(id, QStringLiteral("D"), euros("999"), false);
    f.vienti(id, QStringLiteral("d"), euros("7"), true);
    f.vienti(id, QStringLiteral("X"), euros("7"), true);
    f.vienti(other, QStringLiteral("D"), euros("5"), true);
    f.vienti(id, QStringLiteral("K"), euros("0,0001"), true, true);
    f.vienti(id, QStringLiteral("D"), euros("12,34"), true, true);
    f.vienti(id, QStringLiteral("K"), euros("88"), false, true);
    cTili t;
    QVERIFY(t.Read(id));
    const cAlkusaldot s = t.Alkusaldot();
    QCOMPARE(s.AlkusaldoDebet(), euros("130"));
    QCOMPARE(s.AlkusaldoKredit(), euros("50"));
    QCOMPARE(s.EdAlkusaldoDebet(), euros("12,34"));
    QCOMPARE(s.EdAlkusaldoKredit(), Money::fromRaw(1));
}

void tst_cTili::alkusaldotOfNewOrEmptyIsZero()
{
    AccountsFixture f;
    const qint32 id = f.tili(1910, QStringLiteral("Pankki"));
    f.vienti(0, QStringLiteral("D"), euros("5"), true);
    f.vienti(id, QStringLiteral("D"), euros("5"), true);
    cTili fresh;
    QCOMPARE(fresh.Alkusaldot().AlkusaldoDebet(), Money());
    cTili empty;
    QVERIFY(empty.Read(id));
    empty.setIsEmpty(true);
    QCOMPARE(empty.Alkusaldot().AlkusaldoDebet(), Money());
    cAlkusaldot plain;
    QCOMPARE(plain.EdAlkusaldoKredit(), Money());
}

QTEST_GUILESS_MAIN(tst_cTili)
#include "tst_cTili.moc"
