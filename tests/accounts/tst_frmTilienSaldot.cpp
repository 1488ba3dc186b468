#include "AccountsFixture.h"
#include "ScriptedDialogs.h"
#include "accounts/frmTilienSaldot.h"
#include "vouchers/frmNewTositteet.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>

class tst_frmTilienSaldot final : public QObject {
    Q_OBJECT

private slots:
    // Nineteen rows show at a time, the rest by scrolling; totals below; a recompute sees new entries.
    void showsAndRecomputes()
    {
        ScriptedDialogs dialogs;
        AccountsFixture f;
        const qint32 toID = f.tosite(1, QStringLiteral("2011-03-01"));
        qint32 pankki = 0;
        for (int i = 0; i < 25; ++i) {
            const qint32 id = f.tili(1000 + i * 10, QStringLiteral("Tili %1").arg(i + 1));
            if (i == 5)
                pankki = id;
        }
        f.kirjaus(toID, pankki, "D", "200");
        f.kirjaus(toID, pankki, "K", "50");

        frmTilienSaldot w(f.db());
        w.show();
        auto* grid = w.findChild<QTableView*>(QStringLiteral("grdSaldot"));
        QCOMPARE(grid->model()->rowCount(), 25);
        QCOMPARE(grid->rowAt(grid->viewport()->height() - 1), frmTilienSaldot::NakyvatRivit - 1);
        QVERIFY(grid->findChild<QScrollBar*>(QStringLiteral("scrlBar"))->maximum() > 0);
        QCOMPARE(grid->model()->index(5, 0).data().toString(), QStringLiteral("1050 Tili 6"));
        QCOMPARE(grid->model()->index(5, 3).data().toString(), euros("150").toCurrencyString());
        const auto label
            = [&w](const char* name) { return w.findChild<QLabel*>(QLatin1String(name))->text(); };
        QCOMPARE(label("lblDebetSumma"), euros("200").toCurrencyString());
        QCOMPARE(label("lblKreditSumma"), euros("50").toCurrencyString());
        QCOMPARE(label("lblErotusSumma"), euros("150").toCurrencyString());

        f.kirjaus(toID, pankki, "K", "300");
        w.findChild<QPushButton*>(QStringLiteral("cPaivitaSaldot"))->click();
        QCOMPARE(label("lblErotusSumma"), euros("-150").toCurrencyString());
        QCOMPARE(
            f.value(QStringLiteral("SELECT Erotus FROM tlSaldot WHERE Tili = '1050 Tili 6'")).toLongLong(),
            euros("-150").raw());
        QVERIFY(dialogs.shown().isEmpty());
    }

    void emptyChart()
    {
        AccountsFixture f;
        frmTilienSaldot w(f.db());
        QCOMPARE(w.findChild<QTableView*>(QStringLiteral("grdSaldot"))->model()->rowCount(), 0);
        QCOMPARE(w.findChild<QLabel*>(QStringLiteral("lblDebetSumma"))->text(), Money().toCurrencyString());
    }

    void openedFromTheVoucherWindow()
    {
        AccountsFixture f;
        frmNewTositteet tositteet(f.db(), frmNewTositteet::Laji::Tavallinen);
        auto* action = tositteet.findChild<QAction*>(QStringLiteral("mTilienSaldot"));
        QVERIFY(action->isEnabled());
        action->trigger();
        auto* saldot = tositteet.findChild<frmTilienSaldot*>();
        QVERIFY(saldot && saldot->isVisible());
    }
};

QTEST_MAIN(tst_frmTilienSaldot)
#include "tst_frmTilienSaldot.moc"
