#include "StatementFixture.h"
#include "core/TemplateText.h"
#include "statements/cMalli.h"

#include <QTest>
#include <memory>

using Ids = QList<qint32>;

class tst_cMalli : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;

private slots:
    void init() { QVERIFY(StatementFixture::start(f)); }
    void cleanup() { StatementFixture::finish(f); }

    // A template and a row of it read back as they were saved.
    void roundTrip()
    {
        cMalli malli(f->db());
        malli.setTyyppi(cMalli::Tase);
        malli.setNimi(QStringLiteral("Tase"));
        malli.setSuojattu(true);
        malli.setTulosMaID(7);
        malli.Save(false);
        cMalli loaded(f->db());
        QVERIFY(loaded.Load(malli.id()));
        QCOMPARE(
            (QVariantList { loaded.Nimi(), int(loaded.Tyyppi()), loaded.Suojattu(), loaded.TulosMaID() }),
            (QVariantList { "Tase", int(cMalli::Tase), true, 7 }));
        {
            auto rivi = loaded.AddModelRow();
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
            // Released while changed, the row saves itself.
        }
        cMalliRivi read(f->db());
        QVERIFY(read.Load(f->value(QStringLiteral("SELECT mrID FROM mr")).toInt()));
        QCOMPARE(
            (QStringList { read.Teksti(), read.SaldoPuoli(), read.Tilit(), read.Kaava(), read.viTyyppi() }),
            (QStringList { "Tuotot", "K", "12,15,31,", "+41,-57,", "D" }));
        QCOMPARE((QList<int> { read.MalliId(), read.BelongsToGroup(), read.GroupOrder(), read.mrtlID() }),
            (QList<int> { malli.id(), 9, 4, 12 }));
        QVERIFY(read.IsLiikevaihto() && read.IsEquation() && read.IsVoitto());
    }

    // A protected or unsaved template is not deleted; deleting one with its rows is the editor's test.
    void deleteRefused()
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
    void deleteRowSubtree()
    {
        f->malli(1, QStringLiteral("T"), 1);
        f->malli(2, QStringLiteral("U"), 1);
        f->row({ .id = 1, .teksti = QStringLiteral("Pääryhmä") });
        f->row({ .id = 2, .teksti = QStringLiteral("Ryhmä"), .parent = 1 });
        f->row({ .id = 3, .teksti = QStringLiteral("Alaryhmä"), .parent = 2 });
        f->row({ .id = 4, .teksti = QStringLiteral("Rivi"), .parent = 3 });
        f->row({ .id = 5, .teksti = QStringLiteral("Sisar"), .parent = 1 });
        f->row({ .id = 7, .ma = 2, .teksti = QStringLiteral("Vieras"), .parent = 2 });
        f->row({ .id = 8, .teksti = QStringLiteral("Silmukka"), .parent = 9 });
        f->row({ .id = 9, .teksti = QStringLiteral("Silmukka 2"), .parent = 8 });
        cMalliRivi ryhma(f->db());
        QVERIFY(ryhma.Load(2));
        ryhma.Delete();
        QCOMPARE(
            f->value(QStringLiteral("SELECT group_concat(mrID) FROM (SELECT mrID FROM mr ORDER BY mrID)"))
                .toString(),
            QStringLiteral("1,5,7,8,9"));
        cMalliRivi loop(f->db());
        QVERIFY(loop.Load(8));
        loop.Delete();
        QCOMPARE(f->count(QStringLiteral("mr"), QStringLiteral("mrID IN (8, 9)")), 0);
    }

    void accountLists_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<Ids>("ids");
        QTest::newRow("empty-list marker") << "-1," << Ids {};
        QTest::newRow("twice counts once") << "12,15,12," << Ids { 12, 15 };
        // The last one needs no comma after it.
        QTest::newRow("not numbers name nothing") << "12,abc,1.5,,x7, 15 " << Ids { 12, 15 };
    }

    void accountLists()
    {
        QFETCH(QString, text);
        QFETCH(Ids, ids);
        const std::vector<qint32> parsed = TemplateText::accounts(text);
        QCOMPARE(Ids(parsed.begin(), parsed.end()), ids);
        QCOMPARE(TemplateText::accounts(TemplateText::accountList(parsed)), parsed);
    }

    void formulas_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("read"); // + or - and the row, or "?" for no row
        QTest::newRow("any other sign subtracts") << "*41,-57,"
                                                  << "-41 -57";
        QTest::newRow("no number") << "+abc,"
                                   << "+?";
    }

    void formulas()
    {
        QFETCH(QString, text);
        QFETCH(QString, read);
        QStringList terms;
        for (const TemplateText::Term& t : TemplateText::terms(text))
            terms << (t.adds() ? QStringLiteral("+") : QStringLiteral("-"))
                    + (t.rowId ? QString::number(*t.rowId) : QStringLiteral("?"));
        QCOMPARE(terms.join(u' '), read);
    }
};

QTEST_GUILESS_MAIN(tst_cMalli)
#include "tst_cMalli.moc"
