#include "AccountsFixture.h"
#include "Controls.h"
#include "ScriptedDialogs.h"
#include "accounts/BalanceChart.h"
#include "accounts/frmPaivaSaldot.h"
#include "accounts/frmTilienSaldot.h"
#include "accounts/frmTilitarkastelu.h"
#include "core/Paths.h"
#include "printing/PrintOptions.h"
#include "printing/frmEsikatselu.h"
#include "vouchers/frmNewTositteet.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>

namespace {

// A bank account with 25 entries in 2011 (the opening voucher 0 first) and two other accounts.
struct Tilit {
    ScriptedDialogs dialogs;
    AccountsFixture f;
    qint32 pankki = f.tili(1910, QStringLiteral("Pankkitili"));
    qint32 jasen = f.tili(3000, QStringLiteral("Jäsenmaksut"));
    qint32 tyhja = f.tili(4000, QStringLiteral("Vuokrat"));
    std::vector<qint32> tositteet;
    qint32 avaus = 0;

    Tilit()
    {
        BookkeepingSettings& s = ProgramSettings::bookkeeping();
        s.TilikausiAlku = QDate(2011, 1, 1);
        s.TilikausiLoppu = QDate(2011, 12, 31);
        s.LaskettavaTili = 0;
        s.Seurannimi = QStringLiteral("Testiyhdistys ry");
        avaus = f.tosite(0, QStringLiteral("2011-01-01"), QStringLiteral("Tosite 0"), true);
        f.kirjaus(avaus, pankki, "D", "500");
        for (int i = 1; i <= 24; ++i) {
            const qint32 t = f.tosite(i, QDate(2011, 1, 1).addDays(i * 10).toString(Qt::ISODate),
                QStringLiteral("Tosite %1").arg(i));
            f.kirjaus(t, pankki, "D", "10");
            f.kirjaus(t, jasen, "K", "10");
            tositteet.push_back(t);
        }
        Paths::setProgramDir(f.env.programDir());
        QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/tilitark.rpt"),
            f.env.programDir() + QStringLiteral("/tilitark.rpt"));
        QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/paikirja.rpt"),
            f.env.programDir() + QStringLiteral("/paikirja.rpt"));
    }
};

QString label(QWidget& w, const char* name) { return child<QLabel>(w, name)->text(); }

} // namespace

class tst_frmTilitarkastelu final : public QObject {
    Q_OBJECT

private slots:
    // Nineteen rows show at a time, the totals below; the rows are tst_cTiliTarkastelut's.
    void inspection()
    {
        Tilit t;
        frmTilitarkastelu w(t.f.db(), t.pankki);
        w.show();
        QCOMPARE(child<QComboBox>(w, "cmbTili")->currentText(), QStringLiteral("1910 Pankkitili"));
        auto* grid = child<QTableView>(w, "grdTarkastelut");
        QCOMPARE(grid->model()->rowCount(), 25);
        QCOMPARE(grid->rowAt(grid->viewport()->height() - 1), frmTilitarkastelu::NakyvatRivit - 1);
        QVERIFY(child<QScrollBar>(w, "scrlBar")->maximum() > 0);
        QCOMPARE(grid->model()->index(24, 5).data().toString(), euros("740").toCurrencyString());
        QCOMPARE(label(w, "lblDebetSumma"), euros("740").toCurrencyString());
        QCOMPARE(label(w, "lblKreditSumma"), Money().toCurrencyString());
        QCOMPARE(label(w, "lblErotusSumma"), euros("740").toCurrencyString());

        // Another account chosen from the list is computed at once.
        auto* lista = child<QComboBox>(w, "cmbTili");
        lista->setCurrentIndex(lista->findData(t.jasen));
        emit lista->activated(lista->currentIndex());
        QCOMPARE(grid->model()->rowCount(), 24);
        QCOMPARE(label(w, "lblErotusSumma"), euros("-240").toCurrencyString());
        QVERIFY(t.dialogs.shown().isEmpty());
    }

    // The same for all accounts, and a recompute; the sums are tst_cTilienSaldot's.
    void accountBalances()
    {
        Tilit t;
        for (int i = 0; i < 22; ++i)
            t.f.tili(5000 + i, QStringLiteral("Tili %1").arg(i));
        frmTilienSaldot w(t.f.db());
        w.show();
        auto* grid = child<QTableView>(w, "grdSaldot");
        QCOMPARE(grid->model()->rowCount(), 25);
        QCOMPARE(grid->rowAt(grid->viewport()->height() - 1), frmTilienSaldot::NakyvatRivit - 1);
        QVERIFY(child<QScrollBar>(*grid, "scrlBar")->maximum() > 0);
        QCOMPARE(grid->model()->index(0, 0).data().toString(), QStringLiteral("1910 Pankkitili"));
        QCOMPARE(grid->model()->index(0, 3).data().toString(), euros("740").toCurrencyString());
        QCOMPARE(label(w, "lblDebetSumma"), euros("740").toCurrencyString());
        QCOMPARE(label(w, "lblKreditSumma"), euros("240").toCurrencyString());
        QCOMPARE(label(w, "lblErotusSumma"), euros("500").toCurrencyString());

        t.f.kirjaus(t.avaus, t.pankki, "K", "1000");
        child<QPushButton>(w, "cPaivitaSaldot")->click();
        QCOMPARE(label(w, "lblErotusSumma"), euros("-500").toCurrencyString());
        QCOMPARE(t.f.value(QStringLiteral("SELECT Erotus FROM tlSaldot WHERE Tili = '1910 Pankkitili'"))
                     .toLongLong(),
            euros("-260").raw());
        QVERIFY(t.dialogs.shown().isEmpty());
    }

    void accountBalancesOfAnEmptyChart()
    {
        AccountsFixture f;
        frmTilienSaldot w(f.db());
        QCOMPARE(child<QTableView>(w, "grdSaldot")->model()->rowCount(), 0);
        QCOMPARE(label(w, "lblDebetSumma"), Money().toCurrencyString());
    }

    // Printing before any computation says what to do first.
    void printNeedsAnAccount()
    {
        Tilit t;
        frmTilitarkastelu w(t.f.db());
        child<QPushButton>(w, "cTulosta")->click();
        child<QPushButton>(w, "cPaivita")->click();
        QCOMPARE(t.dialogs.texts(ScriptedDialogs::Kind::Information),
            QStringList({ "Valitse ensin tili ja päivitä tilitarkastelu.",
                "Valitse tili, jonka viennit haluat tarkastella." }));
    }

    // The voucher window opens these on the cursor's account and shows a row's voucher.
    void fromTheVoucherWindow()
    {
        Tilit t;
        frmNewTositteet tositteet(t.f.db(), frmNewTositteet::Laji::Tavallinen);
        tositteet.show();
        for (const char* name :
            { "mTilitarkastelu", "mTilinPaivasaldot", "mPaivakirja", "mPaakirja", "mTilienSaldot" })
            QVERIFY(child<QAction>(tositteet, name)->isEnabled());
        child<QAction>(tositteet, "mTilienSaldot")->trigger();
        QVERIFY(tositteet.findChild<frmTilienSaldot*>()->isVisible());
        QCOMPARE(tositteet.curTosite().Numero(), 24);
        auto* viennit = child<QTableView>(tositteet, "grdViennit");
        viennit->setCurrentIndex(viennit->model()->index(0, 3));
        child<QAction>(tositteet, "mTilitarkastelu")->trigger();
        auto* tarkastelu = tositteet.findChild<frmTilitarkastelu*>();
        QVERIFY(tarkastelu && tarkastelu->isVisible());
        QCOMPARE(tarkastelu->tili(), t.jasen);

        auto* grid = child<QTableView>(*tarkastelu, "grdTarkastelut");
        emit grid->doubleClicked(grid->model()->index(4, 0));
        QCOMPARE(tositteet.curTosite().ToId(), t.tositteet[4]);

        // An amount without an account keeps the voucher on screen.
        viennit->model()->setData(viennit->model()->index(1, 1), QStringLiteral("5"), Qt::EditRole);
        emit grid->doubleClicked(grid->model()->index(7, 0));
        QCOMPARE(tositteet.curTosite().ToId(), t.tositteet[4]);
        QCOMPARE(
            t.dialogs.texts(ScriptedDialogs::Kind::Information), QStringList { "Tarkista tilivalinta." });
        viennit->model()->setData(viennit->model()->index(1, 1), QString(), Qt::EditRole);

        // The opening voucher is shown by the opening entries' window.
        t.dialogs.clear();
        tarkastelu->valitseTili(t.pankki);
        tarkastelu->Paivita();
        emit grid->doubleClicked(grid->model()->index(0, 0));
        QCOMPARE(tositteet.curTosite().ToId(), t.tositteet[4]);
        QCOMPARE(t.dialogs.texts(ScriptedDialogs::Kind::Information),
            QStringList { "Tosite 0 näytetään ikkunassa Tositteet - Avausviennit." });
    }

    // No journal while the account check fails; then the period and print options to the preview.
    void journalFromTheVoucherWindow()
    {
        Tilit t;
        PrintOptions::current() = PrintValues();
        frmNewTositteet tositteet(t.f.db(), frmNewTositteet::Laji::Tavallinen);
        tositteet.show();
        auto* viennit = child<QTableView>(tositteet, "grdViennit");
        viennit->model()->setData(viennit->model()->index(2, 1), QStringLiteral("5"), Qt::EditRole);
        bool modal = false;
        QTimer::singleShot(200, this, [&] {
            if (QWidget* w = QApplication::activeModalWidget()) {
                modal = true;
                w->close();
            }
        });
        child<QAction>(tositteet, "mPaivakirja")->trigger();
        QVERIFY(!modal);
        QCOMPARE(
            t.dialogs.texts(ScriptedDialogs::Kind::Information), QStringList { "Tarkista tilivalinta." });

        viennit->model()->setData(viennit->model()->index(2, 0), QStringLiteral("3000"), Qt::EditRole);
        QStringList steps;
        QTimer::singleShot(0, this, [&] {
            QWidget* dates = QApplication::activeModalWidget();
            steps << dates->metaObject()->className();
            child<QLineEdit>(*dates, "tAlkupvm")->setText(QStringLiteral("1.2.2011"));
            child<QLineEdit>(*dates, "tLoppupvm")->setText(QStringLiteral("28.2.2011"));
            QTimer::singleShot(0, this, [&] {
                QWidget* options = QApplication::activeModalWidget();
                steps << options->metaObject()->className();
                child<QComboBox>(*options, "cmbTulostusLaite")->setCurrentIndex(0);
                child<QPushButton>(*options, "cTulosta")->click();
            });
            child<QPushButton>(*dates, "cSeuraava")->click();
        });
        child<QAction>(tositteet, "mPaivakirja")->trigger();
        QCOMPARE(steps, QStringList({ "frmDates2", "frmTulostus" }));
        // The row typed before printing was saved first.
        QCOMPARE(t.f.value(QStringLiteral("SELECT COUNT(*) FROM vi WHERE vitoID = ?"), { t.tositteet.back() })
                     .toInt(),
            3);
        auto* preview = tositteet.findChild<frmEsikatselu*>();
        QVERIFY(preview);
        QVERIFY(preview->windowTitle().contains(QStringLiteral("Päiväkirja -- 1.2.2011 - 28.2.2011")));
        // The preview fits the screen it opens on.
        const QSize screen = preview->screen()->availableGeometry().size();
        QVERIFY(preview->width() <= screen.width() && preview->height() <= screen.height());
        preview->close();
    }

    // Daily balances with their chart; an account without entries says so and nothing else.
    void dailyBalances()
    {
        Tilit t;
        frmPaivaSaldot w(t.f.db(), t.pankki);
        w.show();
        auto* grid = child<QTableView>(w, "grdPaivaSaldot");
        QCOMPARE(grid->model()->rowCount(), 25);
        QCOMPARE(grid->rowAt(grid->viewport()->height() - 1), frmPaivaSaldot::NakyvatRivit - 1);
        QCOMPARE(grid->model()->index(24, 4).data().toString(), euros("740").toCurrencyString());
        QCOMPARE(label(w, "lblErotusSumma"), euros("740").toCurrencyString());

        auto* kaavio = child<BalanceChart>(w, "chrtSaldo");
        const QList<QPointF> p = kaavio->pisteet();
        // From 0 at the year's start, a step on each day, level to the year's end.
        QCOMPARE(p.size(), 2 + 2 * 25);
        QCOMPARE(p.mid(0, 5), (QList<QPointF> { { 0, 0 }, { 0, 0 }, { 0, 500 }, { 10, 500 }, { 10, 510 } }));
        QCOMPARE(p.back(), QPointF(365, 740));
        QCOMPARE(kaavio->paivaTekstit(), QStringList({ "1.1.", "1.4.", "1.7.", "1.10." }));
        QVERIFY(kaavio->euroTekstit().contains(QStringLiteral("800\u00a0€")));

        auto* lista = child<QComboBox>(w, "cmbTili");
        lista->setCurrentIndex(lista->findData(t.tyhja));
        child<QPushButton>(w, "cPaivita")->click();
        QCOMPARE(grid->model()->rowCount(), 1);
        QCOMPARE(grid->model()->index(0, 0).data().toString(), QStringLiteral("Ei tapahtumia."));
        QCOMPARE(grid->model()->index(0, 4).data().toString(), QString());
        QCOMPARE(label(w, "lblErotusSumma"), QString());
        QCOMPARE(kaavio->pisteet().back(), QPointF(365, 0));
    }

    void axisLabels_data()
    {
        QTest::addColumn<double>("euroa");
        QTest::addColumn<double>("askel");
        QTest::addColumn<QString>("teksti");
        QTest::newRow("thousands") << 12000.0 << 2000.0 << "12\u00a0000\u00a0€";
        QTest::newRow("negative") << -500.0 << 100.0 << "-500\u00a0€";
        QTest::newRow("cents") << 0.5 << 0.1 << "0,50\u00a0€";
    }
    void axisLabels()
    {
        QFETCH(double, euroa);
        QFETCH(double, askel);
        QFETCH(QString, teksti);
        QCOMPARE(BalanceChart::euroTeksti(euroa, askel), teksti);
        QCOMPARE(BalanceChart::pyoreaAskel(740, 6), 200.0);
        QCOMPARE(BalanceChart::pyoreaAskel(0.9, 6), 0.2);
    }
};

QTEST_MAIN(tst_frmTilitarkastelu)
#include "tst_frmTilitarkastelu.moc"
