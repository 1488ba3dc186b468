#include "VoucherFixture.h"
#include "cTosite.h"

#include <QSignalSpy>
#include <QTest>

namespace {

struct Row {
    int numero;
    QString kind;
    QString pvm;
};

} // namespace

Q_DECLARE_METATYPE(QList<Row>)

class tst_cTosite : public QObject {
    Q_OBJECT

private slots:
    void numbering_data();
    void numbering();
    void numberingWritesNothing();
    void cursor_data();
    void cursor();
    void cursorAtTheEndsKeepsTheVoucherAsked();
    void previousHasNoLowerBound();
    void unchangedVoucherIsNotWritten();
    void settersMarkDirtyOnlyOnChange();
    void saveAndLoadRoundTrip();
    void longDescriptionIsCut();
    void loadOfMissingKeyResets();
    void releaseSavesChangedVoucher();
    void undoPutsBackStoredValues();
    void emptyObjectDoesNoDatabaseWork();
    void nameChangedOnlyForStoredVoucher();
    void deleteRemovesAllItsEntries();
    void newEntryTakesVoucherValues();
    void zeroEntryIsDeletedNotStored();
    void entryWithAmountButNoAccountIsStored();
    void entryTypeKeepsFirstCharacter();
    void entriesByTypeInStoredOrder();
    void releaseSavesChangedEntry();
    void maxEntriesPerVoucher();
};

void tst_cTosite::numbering_data()
{
    QTest::addColumn<QList<Row>>("rows");
    QTest::addColumn<bool>("opening");
    QTest::addColumn<int>("number");
    QTest::addColumn<QDate>("date");
    const QDate start(2011, 1, 1);
    QTest::newRow("empty table") << QList<Row> {} << false << 1 << start;
    QTest::newRow("ordinary 5, opening 6") << QList<Row> { { 5, "", "2011-02-01" }, { 6, "A", "2011-01-01" } }
                                           << false << 7 << QDate(2011, 2, 1);
    QTest::newRow("same sequence for opening")
        << QList<Row> { { 5, "", "2011-02-01" }, { 6, "A", "2011-01-01" } } << true << 7 << QDate(2011, 2, 1);
    QTest::newRow("closing counts too") << QList<Row> { { 3, "", "2011-02-01" }, { 9, "P", "2011-12-31" } }
                                        << false << 10 << QDate(2011, 12, 31);
    QTest::newRow("negative ignored") << QList<Row> { { -3, "", "2011-12-31" } } << false << 1 << start;
    QTest::newRow("negative beside ordinary")
        << QList<Row> { { 2, "", "2011-04-01" }, { -1, "", "2011-12-31" } } << false << 3
        << QDate(2011, 4, 1);
    QTest::newRow("zero counts") << QList<Row> { { 0, "A", "2011-01-01" } } << false << 1 << start;
    QTest::newRow("voucher without date") << QList<Row> { { 4, "", "" } } << false << 5 << start;
}

void tst_cTosite::numbering()
{
    QFETCH(QList<Row>, rows);
    QFETCH(bool, opening);
    QFETCH(int, number);
    QFETCH(QDate, date);
    VoucherFixture f;
    QVERIFY(f.ok);
    for (const Row& r : rows)
        f.addTosite(r.numero, r.kind, r.pvm);
    if (rows.size() == 1 && rows[0].pvm.isEmpty())
        QVERIFY(f.exec(QStringLiteral("UPDATE \"to\" SET toPvm = NULL")));
    cTosite t;
    QCOMPARE(t.SetTositeNumeroJaPaiva(QDate(2011, 1, 1), opening), number);
    QCOMPARE(t.Numero(), number);
    QCOMPARE(t.Paiva(), date);
    QVERIFY(t.Dirty());
    t.Save();
    QVERIFY(t.ToId() > 0);
    cTosite next;
    QCOMPARE(next.SetTositeNumeroJaPaiva(QDate(2011, 1, 1), !opening), number + 1);
    next.setIsEmpty(true); // not saved on release
}

void tst_cTosite::numberingWritesNothing()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(1);
    {
        cTosite t;
        t.SetTositeNumeroJaPaiva(QDate(2011, 1, 1), false);
        t.setIsEmpty(true);
    }
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 1);
}

void tst_cTosite::cursor_data()
{
    // Vouchers: 1 ordinary, 2 opening, 3 ordinary, 4 closing, 5 ordinary, -3 ordinary, 0 opening.
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("expected"); // -99 = IsEmpty
    QTest::newRow("first ordinary") << "first" << 0 << "" << 1;
    QTest::newRow("last ordinary") << "last" << 0 << "" << 5;
    QTest::newRow("first opening skips 0") << "first" << 0 << "A" << 2;
    QTest::newRow("last opening") << "last" << 0 << "A" << 2;
    QTest::newRow("first closing") << "first" << 0 << "P" << 4;
    QTest::newRow("next ordinary skips other kinds") << "next" << 1 << "" << 3;
    QTest::newRow("previous ordinary skips other kinds") << "previous" << 5 << "" << 3;
    QTest::newRow("next on last ordinary") << "next" << 5 << "" << -99;
    QTest::newRow("next on the only closing") << "next" << 4 << "P" << -99;
    QTest::newRow("previous on opening reaches 0") << "previous" << 2 << "A" << 0;
    QTest::newRow("previous below 0 opening") << "previous" << 0 << "A" << -99;
}

void tst_cTosite::cursor()
{
    QFETCH(QString, call);
    QFETCH(int, from);
    QFETCH(QString, kind);
    QFETCH(int, expected);
    VoucherFixture f;
    QVERIFY(f.ok);
    QHash<int, int> keys;
    for (const Row& r : QList<Row> { { 1, "", {} }, { 2, "A", {} }, { 3, "", {} }, { 4, "P", {} },
             { 5, "", {} }, { -3, "", {} }, { 0, "A", {} } })
        keys[r.numero] = f.addTosite(r.numero, r.kind);
    const bool a = kind == u"A";
    const bool p = kind == u"P";
    cTosite asked;
    QVERIFY(asked.Load(keys.value(from)) || call == u"first" || call == u"last");
    std::unique_ptr<cTosite> got;
    if (call == u"first")
        got = asked.GetFirst(a, p);
    else if (call == u"last")
        got = asked.GetLast(a, p);
    else if (call == u"next")
        got = asked.GetNext(a, p);
    else
        got = asked.GetPrevious(a, p);
    if (expected == -99) {
        QVERIFY(got->IsEmpty());
    } else {
        QVERIFY(!got->IsEmpty());
        QCOMPARE(got->Numero(), expected);
        QCOMPARE(got->ToId(), keys.value(expected));
        QCOMPARE(got->Avaustosite(), a);
        QCOMPARE(got->Paatostosite(), p);
    }
}

void tst_cTosite::cursorAtTheEndsKeepsTheVoucherAsked()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(7, QString(), QStringLiteral("2011-05-05"), QStringLiteral("Viimeinen"));
    cTosite t;
    QVERIFY(t.Load(id));
    QVERIFY(t.GetNext(false, false)->IsEmpty());
    QVERIFY(t.GetPrevious(false, false)->IsEmpty());
    QCOMPARE(t.Numero(), 7);
    QCOMPARE(t.ToId(), id);
    QCOMPARE(t.Selite(), QStringLiteral("Viimeinen"));
    QVERIFY(!t.Dirty());
    // An empty object steps nowhere.
    auto empty = t.GetNext(false, false);
    QVERIFY(empty->GetPrevious(false, false)->IsEmpty());
    QVERIFY(empty->GetNext(false, false)->IsEmpty());
    // An empty table has neither a first nor a last voucher of any kind.
    QVERIFY(f.exec(QStringLiteral("DELETE FROM \"to\"")));
    QVERIFY(t.GetFirst(false, false)->IsEmpty());
    QVERIFY(t.GetLast(true, false)->IsEmpty());
}

void tst_cTosite::previousHasNoLowerBound()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    f.addTosite(-3);
    const int first = f.addTosite(1);
    cTosite t;
    QVERIFY(t.Load(first));
    QCOMPARE(t.GetPrevious(false, false)->Numero(), -3);
    QCOMPARE(t.GetFirst(false, false)->Numero(), 1);
    QCOMPARE(t.GetLast(false, false)->Numero(), 1);
}

void tst_cTosite::unchangedVoucherIsNotWritten()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(3);
    cTosite t;
    QVERIFY(t.Load(id));
    t.setNumero(3);
    t.setSelite(QStringLiteral("Tosite"));
    const qint64 before = f.totalChanges();
    t.Save(false);
    QCOMPARE(f.totalChanges(), before);
    t.Save(true);
    QCOMPARE(f.totalChanges(), before + 1);
}

void tst_cTosite::settersMarkDirtyOnlyOnChange()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    cTosite t;
    t.setNumero(0);
    t.setPaiva(QDate());
    t.setSelite(QString());
    t.setAvaustosite(false);
    QVERIFY(!t.Dirty());
    t.setPaatostosite(true);
    QVERIFY(t.Dirty());
    cVienti v;
    v.setArvo(Money());
    v.settlID(0);
    QVERIFY(!v.Dirty());
    v.setArvo(Money::fromRaw(1));
    QVERIFY(v.Dirty());
    t.setIsEmpty(true);
    v.setIsEmpty(true);
}

void tst_cTosite::saveAndLoadRoundTrip()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const QString selite = QStringLiteral("Jäsenmaksu 'Matti' O'Brien; DROP TABLE vi");
    qint32 id = 0;
    {
        cTosite t;
        t.setNumero(12);
        t.setPaiva(QDate(2011, 9, 5));
        t.setSelite(selite);
        t.setPaatostosite(true);
        t.setAutomaatti(true);
        t.Save();
        id = t.ToId();
        QVERIFY(id > 0);
        QVERIFY(!t.Dirty());
    }
    cTosite back;
    QVERIFY(back.Load(id));
    QCOMPARE(back.Numero(), 12);
    QCOMPARE(back.Paiva(), QDate(2011, 9, 5));
    QCOMPARE(back.Selite(), selite);
    QVERIFY(!back.Avaustosite());
    QVERIFY(back.Paatostosite());
    QVERIFY(back.Automaatti());
    QCOMPARE(f.value(QStringLiteral("SELECT toPvm FROM \"to\"")).toString(), QStringLiteral("2011-09-05"));
    // An empty description is stored as one blank; a missing date as NULL.
    back.setSelite(QString());
    back.setPaiva(QDate());
    back.Save();
    QCOMPARE(f.value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), QStringLiteral(" "));
    QVERIFY(f.value(QStringLiteral("SELECT toPvm FROM \"to\"")).isNull());
}

void tst_cTosite::longDescriptionIsCut()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const QString text = QString(250, u'a') + QStringLiteral("bcdefXXXXX") + QString(40, u'z');
    cTosite t;
    t.setSelite(text);
    QCOMPARE(t.Selite().size(), 255);
    t.Save();
    QCOMPARE(f.value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), text.left(255));
    auto v = t.AddNewVienti(QStringLiteral("D"));
    v->setSelite(text);
    QCOMPARE(v->Selite(), text.left(255));
    v->setIsEmpty(true);
}

void tst_cTosite::loadOfMissingKeyResets()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(4);
    cTosite t;
    QVERIFY(t.Load(id));
    t.setSelite(QStringLiteral("muutettu"));
    QVERIFY(!t.Load(id + 100));
    QCOMPARE(t.ToId(), 0);
    QCOMPARE(t.Numero(), 0);
    QCOMPARE(t.Selite(), QString());
    QVERIFY(!t.Dirty());
    cVienti v;
    QVERIFY(!v.Load(999));
    QCOMPARE(v.ViId(), 0);
}

void tst_cTosite::releaseSavesChangedVoucher()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(4);
    {
        cTosite t;
        QVERIFY(t.Load(id));
        t.setSelite(QStringLiteral("Vuokra"));
    }
    QCOMPARE(f.value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), QStringLiteral("Vuokra"));
    {
        cTosite t;
        QVERIFY(t.Load(id));
        t.setSelite(QStringLiteral("Ei tallennu"));
        t.setIsEmpty(true);
    }
    QCOMPARE(f.value(QStringLiteral("SELECT toSelite FROM \"to\"")).toString(), QStringLiteral("Vuokra"));
}

void tst_cTosite::undoPutsBackStoredValues()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int toId = f.addTosite(4, QString(), QStringLiteral("2011-03-01"), QStringLiteral("Alku"));
    const int viId = f.addVienti(toId, 1, QStringLiteral("D"), 125000);
    cTosite t;
    QVERIFY(t.Load(toId));
    t.setSelite(QStringLiteral("Muutos"));
    t.setNumero(99);
    t.Undo();
    QCOMPARE(t.Selite(), QStringLiteral("Alku"));
    QCOMPARE(t.Numero(), 4);
    QVERIFY(!t.Dirty());
    cVienti v;
    QVERIFY(v.Load(viId));
    v.setArvo(Money::fromRaw(5));
    v.settlID(7);
    v.Undo();
    QCOMPARE(v.Arvo(), Money::fromRaw(125000));
    QCOMPARE(v.tlID(), 1);
    QVERIFY(!v.Dirty());
    // A new entry goes back to the blank it was made as, still belonging to its voucher.
    auto blank = t.AddNewVienti(QStringLiteral("K"));
    blank->setArvo(Money::fromCents(100));
    blank->Undo();
    QCOMPARE(blank->Arvo(), Money());
    QCOMPARE(blank->ToId(), toId);
    QCOMPARE(blank->Tyyppi(), QStringLiteral("K"));
}

void tst_cTosite::emptyObjectDoesNoDatabaseWork()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(1);
    f.addVienti(id, 1, QStringLiteral("D"), 10000);
    // From an unsaved voucher (number 0) the next is 1, and after 1 there is nothing.
    auto empty = cTosite().GetNext(false, false)->GetNext(false, false);
    QVERIFY(empty->IsEmpty());
    const qint64 before = f.totalChanges();
    empty->setNumero(5);
    empty->Save(true);
    empty->Delete();
    QVERIFY(!empty->Load(id));
    auto v = empty->AddNewVienti(QStringLiteral("D"));
    QVERIFY(v->IsEmpty());
    v->setArvo(Money::fromCents(100));
    QCOMPARE(v->Arvo(), Money());
    v->Save(true);
    QVERIFY(empty->GetViennit(QStringLiteral("D")).empty());
    QCOMPARE(f.totalChanges(), before);
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 1);
}

void tst_cTosite::nameChangedOnlyForStoredVoucher()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    cTosite t;
    QSignalSpy spy(&t, &cTosite::NameChanged);
    t.setSelite(QStringLiteral("Uusi"));
    QCOMPARE(spy.count(), 0);
    t.Save();
    t.setSelite(QStringLiteral("Uusi")); // the same value still tells the window
    t.setNumero(8);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toString(), QStringLiteral("Uusi"));
    QCOMPARE(spy.at(1).at(1).toInt(), t.ToId());
}

void tst_cTosite::deleteRemovesAllItsEntries()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(1);
    const int other = f.addTosite(2);
    f.addVienti(id, 1, QStringLiteral("D"), 10000);
    f.addVienti(id, 2, QStringLiteral("K"), 10000);
    f.addVienti(id, 3, QStringLiteral("K"), 0);
    f.addVienti(other, 1, QStringLiteral("D"), 10000);
    cTosite t;
    QVERIFY(t.Load(id));
    t.setSelite(QStringLiteral("muutos"));
    t.Delete();
    QCOMPARE(t.ToId(), 0);
    QVERIFY(!t.Dirty());
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 1);
    QCOMPARE(f.count(QStringLiteral("vi")), 1);
    QCOMPARE(f.count(QStringLiteral("vi"), QStringLiteral("vitoID = %1").arg(other)), 1);
    // A voucher that was never stored is only reset.
    cTosite fresh;
    fresh.setNumero(3);
    fresh.Delete();
    QCOMPARE(fresh.Numero(), 0);
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 1);
}

void tst_cTosite::newEntryTakesVoucherValues()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    cTosite t;
    t.setSelite(QStringLiteral("Avaus"));
    t.setAvaustosite(true);
    t.setAutomaatti(true);
    t.Save();
    auto v = t.AddNewVienti(QStringLiteral("Kredit"));
    QCOMPARE(v->ToId(), t.ToId());
    QCOMPARE(v->Tyyppi(), QStringLiteral("K"));
    QVERIFY(v->Avausvienti());
    QVERIFY(!v->Paatosvienti());
    QVERIFY(v->Automaatti());
    QCOMPARE(v->Selite(), QStringLiteral("Avaus"));
    QVERIFY(v->Dirty());
    QCOMPARE(v->ViId(), 0);
    QCOMPARE(f.count(QStringLiteral("vi")), 0);
}

void tst_cTosite::zeroEntryIsDeletedNotStored()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(1);
    cTosite t;
    QVERIFY(t.Load(id));
    auto v = t.AddNewVienti(QStringLiteral("D"));
    v->Save();
    QCOMPARE(f.count(QStringLiteral("vi")), 0);
    v->settlID(5);
    v->setArvo(Money::fromCents(1250));
    v->Save();
    QCOMPARE(f.count(QStringLiteral("vi")), 1);
    QVERIFY(v->ViId() > 0);
    v->settlID(0);
    v->setArvo(Money());
    v->Save();
    QCOMPARE(f.count(QStringLiteral("vi")), 0);
    QCOMPARE(v->ViId(), 0);
    QVERIFY(!v->Dirty());
}

void tst_cTosite::entryWithAmountButNoAccountIsStored()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(1);
    cTosite t;
    QVERIFY(t.Load(id));
    auto noAccount = t.AddNewVienti(QStringLiteral("D"));
    noAccount->setArvo(Money::fromCents(10000));
    noAccount->Save();
    auto noAmount = t.AddNewVienti(QStringLiteral("K"));
    noAmount->settlID(3);
    noAmount->Save();
    QCOMPARE(f.count(QStringLiteral("vi")), 2);
    QCOMPARE(f.value(QStringLiteral("SELECT viArvo FROM vi WHERE vitlID = 0")).toLongLong(), 1000000);
}

void tst_cTosite::entryTypeKeepsFirstCharacter()
{
    cVienti v;
    v.setTyyppi(QStringLiteral("Debet"));
    QCOMPARE(v.Tyyppi(), QStringLiteral("D"));
    v.setTyyppi(QString());
    QCOMPARE(v.Tyyppi(), QString());
    v.setIsEmpty(true);
}

void tst_cTosite::entriesByTypeInStoredOrder()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(1);
    const int other = f.addTosite(2);
    f.addVienti(id, 3, QStringLiteral("D"), 300);
    f.addVienti(id, 1, QStringLiteral("K"), 100);
    f.addVienti(id, 2, QStringLiteral("D"), 200);
    f.addVienti(other, 9, QStringLiteral("D"), 900);
    cTosite t;
    QVERIFY(t.Load(id));
    const auto debit = t.GetViennit(QStringLiteral("D"));
    QCOMPARE(int(debit.size()), 2);
    QCOMPARE(debit[0]->tlID(), 3);
    QCOMPARE(debit[1]->tlID(), 2);
    QCOMPARE(debit[1]->Arvo(), Money::fromRaw(200));
    QVERIFY(!debit[0]->Dirty());
    QCOMPARE(int(t.GetViennit(QStringLiteral("K")).size()), 1);
    QVERIFY(cTosite().GetViennit(QStringLiteral("D")).empty());
}

void tst_cTosite::releaseSavesChangedEntry()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    const int id = f.addTosite(1);
    const int viId = f.addVienti(id, 3, QStringLiteral("D"), 300);
    {
        cVienti v;
        QVERIFY(v.Load(viId));
        v.setArvo(Money::fromCents(4500));
    }
    QCOMPARE(f.value(QStringLiteral("SELECT viArvo FROM vi")).toLongLong(), 450000);
}

void tst_cTosite::maxEntriesPerVoucher()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    QCOMPARE(cTosite::MaxLkmViennitPerTosite(), qint16(0));
    const int a = f.addTosite(1);
    const int b = f.addTosite(2);
    for (int i = 0; i < 3; ++i)
        f.addVienti(a, 1, QStringLiteral("D"), 100);
    f.addVienti(a, 1, QStringLiteral("K"), 300);
    for (int i = 0; i < 4; ++i)
        f.addVienti(b, 1, QStringLiteral("K"), 100);
    QCOMPARE(cTosite::MaxLkmViennitPerTosite(), qint16(4));
    // Entries left without their voucher are not counted.
    for (int i = 0; i < 6; ++i)
        f.addVienti(999, 1, QStringLiteral("D"), 100);
    QCOMPARE(cTosite::MaxLkmViennitPerTosite(), qint16(4));
}

QTEST_GUILESS_MAIN(tst_cTosite)
#include "tst_cTosite.moc"
