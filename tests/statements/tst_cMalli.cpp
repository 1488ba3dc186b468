#include "StatementFixture.h"
#include "core/TemplateText.h"
#include "statements/cMalli.h"

#include <QSignalSpy>
#include <QTest>
#include <memory>

using Ids = QList<qint32>;

class tst_cMalli : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f)); }
    void cleanup() { StatementFixture::finish(f); }

    void templateRoundTrip();
    void rowRoundTripAndDirtyFlag();
    void deleteRefused();
    void deleteRowSubtree();
    void groupOrderAndTree();
    void accountLists_data();
    void accountLists();
    void formulas_data();
    void formulas();
};

void tst_cMalli::templateRoundTrip()
{
    cMalli malli(f->db());
    QSignalSpy renamed(&malli, &cMalli::NameChanged);
    malli.setTyyppi(cMalli::Tase);
    malli.setNimi(QStringLiteral("Tase"));
    malli.setSuojattu(true);
    malli.setTulosMaID(7);
    QVERIFY(malli.Dirty());
    malli.Save(false);
    QVERIFY(malli.id() > 0);
    QVERIFY(!malli.Dirty());
    // Every assignment tells the tree, changed or not, with the kind, the name and the key.
    malli.setNimi(QStringLiteral("Tase"));
    QVERIFY(!malli.Dirty());
    QCOMPARE(renamed.count(), 2);
    QCOMPARE(renamed.last(),
        (QVariantList { QVariant::fromValue(qint16(2)), QStringLiteral("Tase"), malli.id() }));

    cMalli read(f->db());
    QVERIFY(read.Load(malli.id()));
    QCOMPARE(read.Nimi(), QStringLiteral("Tase"));
    QCOMPARE(read.Tyyppi(), cMalli::Tase);
    QVERIFY(read.Suojattu());
    QCOMPARE(read.TulosMaID(), 7);
    QVERIFY(!read.Load(malli.id() + 1));
    // A save without force and without changes writes nothing.
    const qint64 before = f->value(QStringLiteral("SELECT total_changes()")).toLongLong();
    read.Save(false);
    QCOMPARE(f->value(QStringLiteral("SELECT total_changes()")).toLongLong(), before);
    // An empty name is stored as a blank.
    malli.setNimi(QString());
    malli.Save(false);
    QCOMPARE(f->value(QStringLiteral("SELECT maNimi FROM ma WHERE maID = ?"), { malli.id() }).toString(),
        QStringLiteral(" "));
}

void tst_cMalli::rowRoundTripAndDirtyFlag()
{
    f->exec(QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (3, 'T', 1)"));
    cMalli malli(f->db());
    QVERIFY(malli.Load(3));
    {
        auto rivi = malli.AddModelRow();
        QCOMPARE(rivi->MalliId(), 3);
        QSignalSpy renamed(rivi.get(), &cMalliRivi::NameChanged);
        rivi->setTeksti(QStringLiteral("Tuotot"));
        rivi->setSaldoPuoli(QStringLiteral("Kredit")); // the first character is kept
        rivi->setTilit(QStringLiteral("12,15,31,"));
        rivi->setKaava(QStringLiteral("+41,-57,"));
        rivi->setBelongsToGroup(9);
        rivi->setGroupOrder(4);
        rivi->setIsLiikevaihto(true);
        rivi->setIsEquation(true);
        rivi->setIsVoitto(true);
        rivi->setmrtlID(12);
        rivi->setviTyyppi(QStringLiteral("Debet"));
        QCOMPARE(renamed.count(), 1);
        // Released while changed, the row saves itself.
    }
    QCOMPARE(f->count(QStringLiteral("mr")), 1);
    cMalliRivi read(f->db());
    QVERIFY(read.Load(f->value(QStringLiteral("SELECT mrID FROM mr")).toInt()));
    QCOMPARE(read.MalliId(), 3);
    QCOMPARE(read.Teksti(), QStringLiteral("Tuotot"));
    QCOMPARE(read.SaldoPuoli(), QStringLiteral("K"));
    QCOMPARE(read.Tilit(), QStringLiteral("12,15,31,"));
    QCOMPARE(read.Kaava(), QStringLiteral("+41,-57,"));
    QCOMPARE(read.BelongsToGroup(), 9);
    QCOMPARE(read.GroupOrder(), 4);
    QVERIFY(read.IsLiikevaihto() && read.IsEquation() && read.IsVoitto());
    QCOMPARE(read.mrtlID(), 12);
    QCOMPARE(read.viTyyppi(), QStringLiteral("D"));
    read.setTilit(QStringLiteral("12,15,31,"));
    QVERIFY(!read.Dirty());
    read.setIsVoitto(false);
    QVERIFY(read.Dirty());

    // An empty caption is stored as a blank.
    cMalliRivi blank(f->db());
    blank.setMalliId(3);
    blank.Save(true);
    QCOMPARE(f->value(QStringLiteral("SELECT mrTeksti FROM mr WHERE mrID = ?"), { blank.id() }).toString(),
        QStringLiteral(" "));
}

// A protected or unsaved template is not deleted; deleting one with its rows is the editor's test.
void tst_cMalli::deleteRefused()
{
    f->malli(1, QStringLiteral("Tuloslaskelma"), 1);
    f->row({ .id = 1, .ma = 1, .teksti = QStringLiteral("A") });
    f->exec(QStringLiteral("UPDATE ma SET maSuojattu = 1 WHERE maID = 1"));
    cMalli malli(f->db());
    QVERIFY(malli.Load(1));
    QVERIFY(!malli.Delete());
    QCOMPARE(f->count(QStringLiteral("ma")) + f->count(QStringLiteral("mr")), 2);
    QVERIFY(!cMalli(f->db()).Delete());
}

// A group goes with everything below it, however deep; rows of other templates and a damaged
// link that loops back stay harmless.
void tst_cMalli::deleteRowSubtree()
{
    f->malli(1, QStringLiteral("T"), 1);
    f->malli(2, QStringLiteral("U"), 1);
    f->row({ .id = 1, .teksti = QStringLiteral("Pääryhmä") });
    f->row({ .id = 2, .teksti = QStringLiteral("Ryhmä"), .parent = 1 });
    f->row({ .id = 3, .teksti = QStringLiteral("Alaryhmä"), .parent = 2 });
    f->row({ .id = 4, .teksti = QStringLiteral("Rivi"), .parent = 3 });
    f->row({ .id = 5, .teksti = QStringLiteral("Sisar"), .parent = 1 });
    f->row({ .id = 6, .teksti = QStringLiteral("Muu pääryhmä") });
    f->row({ .id = 7, .ma = 2, .teksti = QStringLiteral("Vieras"), .parent = 2 });
    f->row({ .id = 8, .teksti = QStringLiteral("Silmukka"), .parent = 9 });
    f->row({ .id = 9, .teksti = QStringLiteral("Silmukka 2"), .parent = 8 });
    cMalliRivi ryhma(f->db());
    QVERIFY(ryhma.Load(2));
    QVERIFY(ryhma.HasSubGroups());
    ryhma.Delete();
    QCOMPARE(ryhma.id(), 0);
    QCOMPARE(f->value(QStringLiteral("SELECT group_concat(mrID) FROM (SELECT mrID FROM mr ORDER BY mrID)"))
                 .toString(),
        QStringLiteral("1,5,6,7,8,9"));
    cMalliRivi loop(f->db());
    QVERIFY(loop.Load(8));
    loop.Delete();
    QCOMPARE(f->count(QStringLiteral("mr"), QStringLiteral("mrID IN (8, 9)")), 0);
}

void tst_cMalli::groupOrderAndTree()
{
    f->malli(1, QStringLiteral("T"), 1);
    f->row({ .id = 1, .teksti = QStringLiteral("B"), .order = 2 });
    f->row({ .id = 2, .teksti = QStringLiteral("A"), .order = 1 });
    f->row({ .id = 3, .teksti = QStringLiteral("A2"), .parent = 2, .order = 5 });
    f->row({ .id = 4, .teksti = QStringLiteral("A1"), .parent = 2, .order = 3 });
    cMalli malli(f->db());
    QVERIFY(malli.Load(1));
    QStringList captions;
    for (const auto& main : malli.MainGroups()) {
        captions << main->Teksti();
        for (const auto& sub : main->SubRows())
            captions << QStringLiteral("  ") + sub->Teksti();
    }
    QCOMPARE(captions, (QStringList { "A", "  A1", "  A2", "B" }));

    // The first row of a new group is 1; after siblings, one past the largest.
    auto uusi = malli.AddModelRow();
    uusi->setBelongsToGroup(1);
    uusi->SetDefaultGroupOrder();
    QCOMPARE(uusi->GroupOrder(), 1);
    uusi->setBelongsToGroup(2);
    uusi->SetDefaultGroupOrder();
    QCOMPARE(uusi->GroupOrder(), 6);
    QVERIFY(!uusi->HasSubGroups()); // not stored: never mistaken for the template's main groups
    uusi->setIsEmpty(true);
}

void tst_cMalli::accountLists_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<Ids>("ids");
    QTest::newRow("no final comma") << "12,15" << Ids { 12, 15 };
    QTest::newRow("lone comma") << "," << Ids {};
    QTest::newRow("empty-list marker") << "-1," << Ids {};
    QTest::newRow("twice counts once") << "12,15,12," << Ids { 12, 15 };
    QTest::newRow("not numbers name nothing") << "12,abc,1.5,,x7, 15 ," << Ids { 12, 15 };
}

void tst_cMalli::accountLists()
{
    QFETCH(QString, text);
    QFETCH(Ids, ids);
    const std::vector<qint32> parsed = TemplateText::accounts(text);
    QCOMPARE(Ids(parsed.begin(), parsed.end()), ids);
    QCOMPARE(TemplateText::accounts(TemplateText::accountList(parsed)), parsed);
}

void tst_cMalli::formulas_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("read"); // sign and row, or sign and "?" for no row
    QTest::newRow("two") << "+41,-57,"
                         << "+41 -57";
    QTest::newRow("lone comma") << ","
                                << "";
    QTest::newRow("any other sign subtracts") << "*41,41,"
                                              << "*41 41";
    QTest::newRow("no number") << "+abc,"
                               << "+?";
    QString many;
    for (int i = 1; i <= 300; ++i)
        many = TemplateText::appendTerm(many, true, i);
    QString first256;
    for (int i = 1; i <= TemplateText::MaxTerms; ++i)
        first256 += QStringLiteral(" +%1").arg(i);
    QTest::newRow("at most 256 terms") << many << first256.trimmed();
}

void tst_cMalli::formulas()
{
    QFETCH(QString, text);
    QFETCH(QString, read);
    QStringList terms;
    for (const TemplateText::Term& t : TemplateText::terms(text))
        terms << QString(t.sign) + (t.rowId ? QString::number(*t.rowId) : QStringLiteral("?"));
    QCOMPARE(terms.join(u' '), read);
    QCOMPARE(TemplateText::appendTerm(QStringLiteral("+41,"), false, 57), QStringLiteral("+41,-57,"));
}

QTEST_GUILESS_MAIN(tst_cMalli)
#include "tst_cMalli.moc"
