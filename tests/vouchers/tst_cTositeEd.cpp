#include "VoucherFixture.h"
#include "cTositeEd.h"

#include <QTest>

class tst_cTositeEd : public QObject {
    Q_OBJECT

private slots:
    void voucherKeys_data();
    void voucherKeys();
    void entryKeys();
    void numberingIsUnfiltered_data();
    void numberingIsUnfiltered();
    void oneBrowsingSequence();
    void zeroNumberNotReachedByFirst();
    void roundTripAndDirtyTracking();
    void deleteRemovesEntries();
    void zeroEntryIsDeleted();
};

namespace {

int addToE(int key, int numero, bool avaus = false, bool paatos = false)
{
    VoucherFixture::exec(
        QStringLiteral("INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAvaustosite, "
                       "toEPaatostosite, toEAutomaatti) VALUES (?, ?, '2010-06-01', 'x', ?, ?, 0)"),
        { key, numero, avaus ? 1 : 0, paatos ? 1 : 0 });
    return key;
}

} // namespace

void tst_cTositeEd::voucherKeys_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("expected");
    QTest::newRow("empty toE") << QList<int> {} << 1;
    QTest::newRow("keys 1, 2 and 7") << QList<int> { 1, 2, 7 } << 8;
}

void tst_cTositeEd::voucherKeys()
{
    QFETCH(QList<int>, keys);
    QFETCH(int, expected);
    VoucherFixture f;
    QVERIFY(f.ok);
    for (int k : keys)
        addToE(k, k);
    // The current year's counter must not leak into the previous year's keys.
    f.addTosite(1);
    f.addTosite(2);
    cTositeEd t;
    const int numero = t.SetTositeNumeroJaPaiva(QDate(2010, 1, 1));
    t.Save();
    QCOMPARE(t.ToId(), expected);
    QCOMPARE(numero, keys.isEmpty() ? 1 : 8);
    QCOMPARE(
        f.value(QStringLiteral("SELECT toENumero FROM toE WHERE toEID = ?"), { expected }).toInt(), numero);
}

void tst_cTositeEd::entryKeys()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addToE(3, 1);
    f.exec(QStringLiteral(
        "INSERT INTO viE (viEID, viEtoID, viEtlID, viETyyppi, viEArvo) VALUES (4, 3, 1, 'D', 1)"));
    f.exec(QStringLiteral(
        "INSERT INTO viE (viEID, viEtoID, viEtlID, viETyyppi, viEArvo) VALUES (9, 3, 1, 'K', 1)"));
    cTositeEd t;
    QVERIFY(t.Load(3));
    auto v = t.AddNewVienti(QStringLiteral("D"));
    v->settlID(2);
    v->setArvo(Money::fromCents(500));
    v->Save();
    QCOMPARE(v->ViId(), 10);
    QCOMPARE(f.value(QStringLiteral("SELECT viEtoID FROM viE WHERE viEID = 10")).toInt(), 3);
    QCOMPARE(int(t.GetViennit(QStringLiteral("D")).size()), 2);
    QCOMPARE(int(t.GetViennit(QStringLiteral("K")).size()), 1);
    // An empty viE starts from key 1.
    f.exec(QStringLiteral("DELETE FROM viE"));
    auto first = t.AddNewVienti(QStringLiteral("K"));
    first->settlID(2);
    first->Save();
    QCOMPARE(first->ViId(), 1);
}

void tst_cTositeEd::numberingIsUnfiltered_data()
{
    QTest::addColumn<QList<int>>("numbers");
    QTest::addColumn<int>("expected");
    QTest::newRow("empty") << QList<int> {} << 1;
    QTest::newRow("zero counts") << QList<int> { 0 } << 1;
    QTest::newRow("negative counts") << QList<int> { -5 } << -4;
    QTest::newRow("every kind") << QList<int> { 3, 12, 4 } << 13;
}

void tst_cTositeEd::numberingIsUnfiltered()
{
    QFETCH(QList<int>, numbers);
    QFETCH(int, expected);
    VoucherFixture f;
    QVERIFY(f.ok);
    int key = 1;
    for (int n : numbers)
        addToE(key++, n, n == 12, n == 4);
    cTositeEd t;
    QCOMPARE(t.SetTositeNumeroJaPaiva(QDate(2010, 1, 1)), expected);
    QCOMPARE(t.Paiva(), numbers.isEmpty() ? QDate(2010, 1, 1) : QDate(2010, 6, 1));
    t.setIsEmpty(true);
}

void tst_cTositeEd::oneBrowsingSequence()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addToE(1, 1, true);
    addToE(2, 2);
    addToE(3, 3, false, true);
    cTositeEd t;
    auto first = t.GetFirst();
    QCOMPARE(first->Numero(), 1);
    auto second = first->GetNext();
    QCOMPARE(second->Numero(), 2);
    auto third = second->GetNext();
    QCOMPARE(third->Numero(), 3);
    QVERIFY(third->Paatostosite());
    QVERIFY(third->GetNext()->IsEmpty());
    QCOMPARE(t.GetLast()->ToId(), 3);
    QCOMPARE(third->GetPrevious()->Numero(), 2);
    QVERIFY(first->GetPrevious()->IsEmpty());
}

void tst_cTositeEd::zeroNumberNotReachedByFirst()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addToE(1, 0, true);
    cTositeEd t;
    QVERIFY(t.GetFirst()->IsEmpty());
    QVERIFY(t.GetLast()->IsEmpty());
    addToE(2, 1);
    QCOMPARE(t.GetFirst()->ToId(), 2);
    QCOMPARE(t.GetFirst()->GetPrevious()->ToId(), 1);
}

void tst_cTositeEd::roundTripAndDirtyTracking()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addToE(5, 1);
    cTositeEd t;
    QVERIFY(t.Load(5));
    t.setSelite(QStringLiteral("x"));
    const qint64 before = f.totalChanges();
    t.Save();
    QCOMPARE(f.totalChanges(), before);
    t.setSelite(QString(300, u'e') + u'\'');
    t.setPaiva(QDate(2010, 2, 28));
    t.Save();
    cTositeEd back;
    QVERIFY(back.Load(5));
    QCOMPARE(back.Selite(), QString(255, u'e'));
    QCOMPARE(back.Paiva(), QDate(2010, 2, 28));
    QCOMPARE(f.count(QStringLiteral("\"to\"")), 0);
}

void tst_cTositeEd::deleteRemovesEntries()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addToE(1, 1);
    addToE(2, 2);
    f.exec(QStringLiteral("INSERT INTO viE (viEID, viEtoID, viEtlID, viETyyppi, viEArvo) VALUES "
                          "(1, 1, 1, 'D', 1), (2, 1, 1, 'K', 1), (3, 2, 1, 'D', 1)"));
    f.addTosite(1);
    f.addVienti(1, 1, QStringLiteral("D"), 1);
    cTositeEd t;
    QVERIFY(t.Load(1));
    t.Delete();
    QCOMPARE(f.count(QStringLiteral("toE")), 1);
    QCOMPARE(f.count(QStringLiteral("viE")), 1);
    QCOMPARE(f.count(QStringLiteral("vi")), 1); // the current year is untouched
}

void tst_cTositeEd::zeroEntryIsDeleted()
{
    VoucherFixture f;
    QVERIFY(f.ok);
    addToE(1, 1);
    f.exec(QStringLiteral(
        "INSERT INTO viE (viEID, viEtoID, viEtlID, viETyyppi, viEArvo) VALUES (6, 1, 4, 'D', 50)"));
    cVientiEd v;
    QVERIFY(v.Load(6));
    QCOMPARE(v.Arvo(), Money::fromRaw(50));
    v.settlID(0);
    v.setArvo(Money());
    v.Save();
    QCOMPARE(f.count(QStringLiteral("viE")), 0);
}

QTEST_GUILESS_MAIN(tst_cTositeEd)
#include "tst_cTositeEd.moc"
