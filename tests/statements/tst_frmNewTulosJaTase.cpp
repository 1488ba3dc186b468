#include "StatementFixture.h"
#include "statements/frmNewTulosJaTase.h"
#include "statements/frmTarkistusVirheet.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>
#include <memory>

namespace {

QStringList ticked(const QListWidget* list)
{
    QStringList out;
    for (int i = 0; i < list->count(); ++i)
        if (list->item(i)->checkState() == Qt::Checked)
            out << list->item(i)->text();
    return out;
}

// The tree as text: each node's caption indented by its depth.
QString treeText(const QTreeWidget* tree)
{
    QStringList lines;
    std::function<void(const QTreeWidgetItem*, int)> add = [&](const QTreeWidgetItem* item, int depth) {
        lines << QString(depth * 2, u' ') + item->text(0)
                + (item->childCount() > 0 && !item->isExpanded() ? QStringLiteral(" +") : QString());
        for (int i = 0; i < item->childCount(); ++i)
            add(item->child(i), depth + 1);
    };
    for (int i = 0; i < tree->topLevelItemCount(); ++i)
        add(tree->topLevelItem(i), 0);
    return lines.join(u'\n');
}

} // namespace

class tst_frmNewTulosJaTase : public QObject {
    Q_OBJECT

    std::unique_ptr<StatementFixture> f;
    std::unique_ptr<frmNewTulosJaTase> w;

    template <typename T> T* child(const char* name) const { return w->findChild<T*>(QLatin1String(name)); }
    QTreeWidget* tree() const { return child<QTreeWidget>("tvMalli"); }
    void click(const char* name) { child<QPushButton>(name)->click(); }

private slots:
    void init()
    {
        QVERIFY(StatementFixture::start(f, StatementFixture::cleanPair));
        w = std::make_unique<frmNewTulosJaTase>(f->db());
        w->QWidget::show();
        w->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w.get()));
    }
    void cleanup()
    {
        if (w)
            w->close();
        w.reset();
        StatementFixture::finish(f, true);
    }

    void treeWithTwoRoots()
    {
        for (const char* key : { "ma2", "mr24" })
            QVERIFY(w->selectNode(key));
        QCOMPARE(treeText(tree()),
            QStringLiteral(
                "Tuloslaskelma\n  Tulos +\n    Tuotot\n    Kulut\n    Tulos\nTase\n  Tase\n    Vastaavaa +\n"
                "      Rahat\n    Vastattavaa\n      Pääoma\n      Velat"));
        QCOMPARE(w->selectedKey(), QStringLiteral("mr24"));
    }

    // A row shows its accounts ticked, its flags and its formula term by term.
    void rowShowsItsValues()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr11")));
        QCOMPARE(ticked(child<QListWidget>("lstTilit")), QStringList { "4000 Tili 4000" });
        QVERIFY(child<QRadioButton>("optKredit")->isChecked());
        QVERIFY(child<QRadioButton>("optKredit")->isEnabled());
        QVERIFY(w->selectNode(QStringLiteral("mr12")));
        QCOMPARE(child<QLabel>("lblKaava")->text(), QStringLiteral("Kaava: [Tuotot] - [Kulut]"));
        QVERIFY(child<QCheckBox>("chkVoitto")->isChecked());
        QVERIFY(child<QCheckBox>("chkKaava")->isChecked());
        QVERIFY(ticked(child<QListWidget>("lstTilit")).isEmpty());
        // In a balance sheet the main group gives the side.
        QVERIFY(w->selectNode(QStringLiteral("mr23")));
        QVERIFY(child<QRadioButton>("optKredit")->isChecked());
        QVERIFY(!child<QRadioButton>("optKredit")->isEnabled());
        QVERIFY(w->selectNode(QStringLiteral("ma2")));
        QCOMPARE(child<QComboBox>("cmbTuloslaskelma")->currentText(), QStringLiteral("Tulos"));
        QVERIFY(!child<QListWidget>("lstTilit")->isEnabled());
    }

    // Insert adds a row under the selection, named at once; the name shows in the tree and is
    // saved with cTallenna.
    void insertNameAndSave()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr22")));
        tree()->setFocus();
        QTest::keyClick(tree(), Qt::Key_Insert);
        const QString key = w->selectedKey();
        QVERIFY(key.startsWith(QLatin1String("mr")) && key != u"mr22");
        QLineEdit* name = child<QLineEdit>("tNimi");
        QCOMPARE(QApplication::focusWidget(), name);
        QCOMPARE(name->selectedText(), QStringLiteral("Uusi rivi"));
        QTest::keyClicks(name, QStringLiteral("Lainat"));
        QCOMPARE(tree()->currentItem()->text(0), QStringLiteral("Lainat"));
        QVERIFY(child<QRadioButton>("optKredit")->isChecked());
        click("cTallenna");
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT mrTeksti || mrSaldoPuoli || mrGroupOrder FROM mr "
                                                   "WHERE mrID = ?"),
                { key.mid(2).toInt() })
                .toString(),
            QStringLiteral("LainatK25"));
        QVERIFY(tree()->currentItem()->parent()->isExpanded());
    }

    // Leaving a changed row asks; No gives the old caption back, in the tree too.
    void leavingAsks()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr10")));
        QTest::keyClicks(child<QLineEdit>("tNimi"), QStringLiteral(" ja avustukset"));
        QCOMPARE(tree()->currentItem()->text(0), QStringLiteral("Tuotot ja avustukset"));
        f->dialogs.answerNo();
        QVERIFY(w->selectNode(QStringLiteral("mr11")));
        QCOMPARE(
            f->dialogs.texts(ScriptedDialogs::Kind::Question), QStringList { "Tallennetaanko muutokset?" });
        QVERIFY(w->selectNode(QStringLiteral("mr10")));
        QCOMPARE(tree()->currentItem()->text(0), QStringLiteral("Tuotot"));
        // Yes saves the change.
        QTest::keyClicks(child<QLineEdit>("tNimi"), QStringLiteral(" ja avustukset"));
        f->dialogs.answerYes();
        QVERIFY(w->selectNode(QStringLiteral("mr11")));
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT mrTeksti FROM mr WHERE mrID = 10")).toString(),
            QStringLiteral("Tuotot ja avustukset"));
    }

    // Alt+Down and Alt+Up move a row; Delete removes it after the question.
    void keyboardMovesAndDelete()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr23")));
        tree()->setFocus();
        QTest::keyClick(tree(), Qt::Key_Down, Qt::AltModifier);
        QCOMPARE(w->selectedKey(), QStringLiteral("mr23"));
        QCOMPARE(tree()->currentItem()->parent()->child(1)->text(0), QStringLiteral("Pääoma"));
        QTest::keyClick(tree(), Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(tree()->currentItem()->parent()->indexOfChild(tree()->currentItem()), 0);
        // The node above takes the selection.
        QVERIFY(w->selectNode(QStringLiteral("mr24")));
        f->dialogs.answerYes();
        QTest::keyClick(tree(), Qt::Key_Delete);
        QCOMPARE(StatementFixture::count(QStringLiteral("mr"), QStringLiteral("mrID = 24")), 0);
        QCOMPARE(w->selectedKey(), QStringLiteral("mr23"));
    }

    // Dragging: a refused drop moves nothing; a row goes under the group it is dropped on and
    // stays selected.
    void dragAndDrop()
    {
        const QString before = treeText(tree());
        w->dropped(QStringLiteral("mr22"), QStringLiteral("mr20"));
        QCOMPARE(treeText(tree()), before);
        QVERIFY(w->selectNode(QStringLiteral("mr24")));
        w->dropped(QStringLiteral("mr24"), QStringLiteral("mr20"));
        QCOMPARE(w->selectedKey(), QStringLiteral("mr24"));
        QCOMPARE(tree()->currentItem()->parent()->text(0), QStringLiteral("Vastaavaa"));
    }

    void accountsAreChosenByTicking()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr24")));
        QListWidget* list = child<QListWidget>("lstTilit");
        list->item(3)->setCheckState(Qt::Checked);
        QCOMPARE(ticked(list), QStringList { "4000 Tili 4000" });
        click("cTallenna");
        QCOMPARE(StatementFixture::value(QStringLiteral("SELECT mrTilit FROM mr WHERE mrID = 24")).toString(),
            QStringLiteral("4,"));
        // Not for a group.
        QVERIFY(w->selectNode(QStringLiteral("mr22")));
        list->item(2)->setCheckState(Qt::Checked);
        QVERIFY(ticked(list).isEmpty());
        QCOMPARE(StatementFixture::value(QStringLiteral("SELECT mrTilit FROM mr WHERE mrID = 22")).toString(),
            QString());
    }

    void formulaBuilding()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr12")));
        click("cTyhjennaKaava");
        QCOMPARE(child<QLabel>("lblKaava")->text(), QStringLiteral("Kaava: (tyhjä)"));
        QListWidget* rows = child<QListWidget>("lstKaavaRivit");
        const auto choose = [rows](const QString& text) {
            rows->setCurrentItem(rows->findItems(text, Qt::MatchExactly).value(0));
        };
        choose(QStringLiteral("Kulut"));
        click("cMiinusta");
        choose(QStringLiteral("Tuotot"));
        click("cPlussaa");
        QCOMPARE(child<QLabel>("lblKaava")->text(), QStringLiteral("Kaava: - [Kulut] + [Tuotot]"));
        click("cTallenna");
        QCOMPARE(StatementFixture::value(QStringLiteral("SELECT mrKaava FROM mr WHERE mrID = 12")).toString(),
            QStringLiteral("-11,+10,"));
    }

    void checks()
    {
        StatementFixture::exec(QStringLiteral("UPDATE mr SET mrSaldoPuoli = 'D' WHERE mrID = 23"));
        QVERIFY(w->selectNode(QStringLiteral("ma2")));
        child<QAction>("mTarkistaTilikartta")->trigger();
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information),
            QStringList {
                "Tarkistus suoritettu.\n\nVastattavaa-puolella on valittuna saldopuoleksi debet.\nKohdassa:\n"
                "Tase / Vastattavaa / Pääoma" });
        // The check window lists the finding and corrects the sides.
        frmTarkistusVirheet d(f->db(), 1, 2);
        QListWidget* list = d.findChild<QListWidget*>(QStringLiteral("lstVirheet"));
        d.findChild<QPushButton*>(QStringLiteral("cTarkista"))->click();
        QCOMPARE(list->count(), 1);
        QCOMPARE(list->item(0)->text(),
            QStringLiteral("Vastattavaa-puolella on valittuna saldopuoleksi debet. -- "
                           "Tarkista: Tase / Vastattavaa / Pääoma"));
        f->dialogs.answerYes();
        d.findChild<QAction*>(QStringLiteral("mKorjausSaldopuoli"))->trigger();
        QCOMPARE(list->count(), 1);
        QCOMPARE(list->item(0)->text(), QStringLiteral("Tarkistus suoritettu virheettömästi."));
        // Both templates are needed.
        d.findChild<QComboBox*>(QStringLiteral("cmbTase"))->setCurrentIndex(0);
        d.findChild<QPushButton*>(QStringLiteral("cTarkista"))->click();
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information).last(),
            QStringLiteral("Valitse tarkistettava tulos- ja tasemalli."));
    }

    void balanceSheetWithoutIncomeStatementIsNotPrinted()
    {
        QVERIFY(w->selectNode(QStringLiteral("ma2")));
        QComboBox* combo = child<QComboBox>("cmbTuloslaskelma");
        combo->setCurrentIndex(0);
        emit combo->activated(0);
        click("cTulosta");
        QCOMPARE(f->dialogs.texts(ScriptedDialogs::Kind::Information),
            QStringList {
                "Tasemallille ei ole määritelty tuloslaskelmaa, jonka perusteella tilikauden voitto "
                "kirjataan." });
        // The choice was saved first, as every print saves.
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT maTulosMaID FROM ma WHERE maID = 2")).toInt(), 0);
    }
};

QTEST_MAIN(tst_frmNewTulosJaTase)
#include "tst_frmNewTulosJaTase.moc"
