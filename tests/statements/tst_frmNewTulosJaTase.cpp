#include "StatementFixture.h"
#include "statements/frmNewTulosJaTase.h"
#include "statements/frmTarkistusVirheet.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>
#include <memory>

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

    // By keyboard: Insert adds a row under the selection, named at once; Alt+Up moves it; Delete
    // removes it after the question.
    void keyboard()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr22")));
        tree()->setFocus();
        QTest::keyClick(tree(), Qt::Key_Insert);
        const QString key = w->selectedKey();
        QLineEdit* name = child<QLineEdit>("tNimi");
        QCOMPARE(QApplication::focusWidget(), name);
        QTest::keyClicks(name, QStringLiteral("Lainat"));
        click("cTallenna");
        tree()->setFocus();
        QTest::keyClick(tree(), Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(tree()->currentItem()->parent()->child(2)->text(0), QStringLiteral("Velat"));
        f->dialogs.answerYes();
        QTest::keyClick(tree(), Qt::Key_Delete);
        QCOMPARE(
            StatementFixture::count(QStringLiteral("mr"), QStringLiteral("mrID = %1").arg(key.mid(2))), 0);
    }

    // Leaving a changed row asks; No drops the change and Yes saves it.
    void leavingAsks()
    {
        QVERIFY(w->selectNode(QStringLiteral("mr10")));
        QTest::keyClicks(child<QLineEdit>("tNimi"), QStringLiteral(" ja avustukset"));
        f->dialogs.answerNo();
        QVERIFY(w->selectNode(QStringLiteral("mr11")));
        QVERIFY(w->selectNode(QStringLiteral("mr10")));
        QTest::keyClicks(child<QLineEdit>("tNimi"), QStringLiteral(" ja avustukset"));
        f->dialogs.answerYes();
        QVERIFY(w->selectNode(QStringLiteral("mr11")));
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT mrTeksti FROM mr WHERE mrID = 10")).toString(),
            QStringLiteral("Tuotot ja avustukset"));
    }

    // A dragged row goes under the group it is dropped on; an account ticked beside those it had
    // and a formula built by the buttons are saved.
    void dropTickAndFormula()
    {
        w->dropped(QStringLiteral("mr23"), QStringLiteral("mr20"));
        child<QListWidget>("lstTilit")->item(3)->setCheckState(Qt::Checked);
        click("cTallenna");
        QCOMPARE(StatementFixture::value(QStringLiteral("SELECT mrBelongsToGroup || '/' || mrTilit FROM mr "
                                                        "WHERE mrID = 23"))
                     .toString(),
            QStringLiteral("20/2,4,"));

        QVERIFY(w->selectNode(QStringLiteral("mr12")));
        click("cTyhjennaKaava");
        QListWidget* rows = child<QListWidget>("lstKaavaRivit");
        rows->setCurrentItem(rows->findItems(QStringLiteral("Kulut"), Qt::MatchExactly).value(0));
        click("cMiinusta");
        rows->setCurrentItem(rows->findItems(QStringLiteral("Tuotot"), Qt::MatchExactly).value(0));
        click("cPlussaa");
        click("cTallenna");
        QCOMPARE(StatementFixture::value(QStringLiteral("SELECT mrKaava FROM mr WHERE mrID = 12")).toString(),
            QStringLiteral("-11,+10,"));
    }

    // On a balance sheet: the menu's check tells its finding, and the check window lists it and
    // corrects the sides. Without its income statement the sheet is not printed; the choice was
    // saved first, as every print saves.
    void balanceSheetChecksAndPrint()
    {
        StatementFixture::exec(QStringLiteral("UPDATE mr SET mrSaldoPuoli = 'D' WHERE mrID = 23"));
        QVERIFY(w->selectNode(QStringLiteral("ma2")));
        child<QAction>("mTarkistaTilikartta")->trigger();
        QVERIFY(
            f->dialogs.texts(ScriptedDialogs::Kind::Information).value(0).endsWith(u"Vastattavaa / Pääoma"));
        frmTarkistusVirheet d(f->db(), 1, 2);
        QListWidget* list = d.findChild<QListWidget*>(QStringLiteral("lstVirheet"));
        d.findChild<QPushButton*>(QStringLiteral("cTarkista"))->click();
        QCOMPARE(list->count(), 1);
        f->dialogs.answerYes();
        d.findChild<QAction*>(QStringLiteral("mKorjausSaldopuoli"))->trigger();
        QCOMPARE(list->item(0)->text(), QStringLiteral("Tarkistus suoritettu virheettömästi."));

        QComboBox* combo = child<QComboBox>("cmbTuloslaskelma");
        combo->setCurrentIndex(0);
        emit combo->activated(0);
        click("cTulosta");
        QVERIFY(f->dialogs.texts(ScriptedDialogs::Kind::Information).last().startsWith(u"Tasemallille"));
        QCOMPARE(
            StatementFixture::value(QStringLiteral("SELECT maTulosMaID FROM ma WHERE maID = 2")).toInt(), 0);
    }
};

QTEST_MAIN(tst_frmNewTulosJaTase)
#include "tst_frmNewTulosJaTase.moc"
