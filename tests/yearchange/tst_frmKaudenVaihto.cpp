#include "Controls.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "core/Dates.h"
#include "core/Paths.h"
#include "statements/Statements.h"
#include "yearchange/FiscalYearChange.h"
#include "yearchange/frmKaudenVaihto.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>

namespace {

using F = StatementFixture;

QString label(const QWidget& w, const char* name) { return child<QLabel>(w, name)->text(); }

// The balance sheet by account as the change computes it: `columns` of each (account's) line.
QStringList balanceSheet(qint32 malli, const QString& columns, bool accountsOnly = false)
{
    const FiscalYearChange::Kaudet k = FiscalYearChange::nykyiset();
    StatementOptions o = StatementOptions::forPeriod(malli, k.alku, k.loppu);
    o.perAccount = true;
    if (!Statements::compute(F::db(), o))
        return {};
    QStringList lines;
    QSqlQuery q(F::db());
    q.exec(QStringLiteral("SELECT %1 FROM tase WHERE %2 ORDER BY taseID")
               .arg(columns,
                   accountsOnly ? QStringLiteral("tasetlID > 0 AND taseIsGroupRow = 0")
                                : QStringLiteral("1 = 1")));
    while (q.next())
        lines << q.value(0).toString() + u'|' + q.value(1).toString();
    return lines;
}

} // namespace

class tst_frmKaudenVaihto : public QObject {
    Q_OBJECT

private slots:
    void opens();
    void demoYearChange();
};

// The dates and templates shown; without a choice the window stays, and Peru closes it.
void tst_frmKaudenVaihto::opens()
{
    F f;
    QVERIFY(f.ok);
    BookkeepingSettings& s = ProgramSettings::bookkeeping();
    s.TilikausiAlku = QDate(2011, 3, 1);
    s.TilikausiLoppu = QDate(2012, 2, 29);
    F::malli(1, QStringLiteral("Tuloslaskelma"), 1);
    F::malli(2, QStringLiteral("Yhdistyksen tase"), 2, 1);
    F::malli(3, QStringLiteral("Aatteellinen tase"), 2, 1);
    frmKaudenVaihto w(F::db());
    QCOMPARE(label(w, "lblTilikausiAlku"), QStringLiteral("1.3.2011"));
    QCOMPARE(label(w, "lblTilikausiLoppu"), QStringLiteral("29.2.2012"));
    QCOMPARE(label(w, "lblTilikausiUusiAlku"), QStringLiteral("1.3.2012"));
    QCOMPARE(label(w, "lblTilikausiUusiLoppu"), QStringLiteral("28.2.2013"));
    const QComboBox* cmb = child<QComboBox>(w, "cmbTasemalli");
    QStringList items;
    for (int i = 0; i < cmb->count(); ++i)
        items << cmb->itemText(i) + u' ' + cmb->itemData(i).toString();
    QCOMPARE(items, (QStringList { "  0", "Aatteellinen tase 3", "Yhdistyksen tase 2" }));
    QCOMPARE(cmb->currentIndex(), -1);
    QVERIFY(child<QCheckBox>(w, "chkTeeAvausviennit")->isChecked());
    QCOMPARE(f.dialogs.transcript(), QStringList());

    w.show();
    QTest::mouseClick(child<QPushButton>(w, "cTilikaudenvaihto"), Qt::LeftButton);
    QCOMPARE(f.dialogs.transcript(),
        QStringList {
            QStringLiteral("information: Valitse tasemalli, jonka mukaan kirjataan avausviennit!") });
    QVERIFY(w.isVisible());
    QVERIFY(!w.vaihdettu());
    QTest::mouseClick(child<QPushButton>(w, "cPeru"), Qt::LeftButton);
    QVERIFY(!w.isVisible());
    QCOMPARE(w.result(), int(QDialog::Rejected));
}

// The demo's year changed from the window: closing balances become opening balances to the cent.
void tst_frmKaudenVaihto::demoYearChange()
{
    TestEnv env;
    struct Close {
        ~Close() { DBC::instance().SuljeDB(); }
    } close;
    QVERIFY(F::openShipped(env, QStringLiteral("demo1.mdb")));
    const qint32 malli
        = F::value(QStringLiteral("SELECT maID FROM ma WHERE maTyyppi = 2 AND maTulosMaID <> 0 "
                                  "ORDER BY maID LIMIT 1"))
              .toInt();
    QVERIFY(malli != 0);
    const QString nimi
        = F::value(QStringLiteral("SELECT maNimi FROM ma WHERE maID = ?"), { malli }).toString();
    const FiscalYearChange::Kaudet vanhat = FiscalYearChange::nykyiset();
    ScriptedDialogs dialogs;
    const QString closing = QStringLiteral("taseteksti, taseLoppusaldo");
    const QStringList before = balanceSheet(malli, closing);
    const QStringList accountsBefore = balanceSheet(malli, closing, true);
    QVERIFY(accountsBefore.size() > 5);
    dialogs.clear();

    frmKaudenVaihto w(F::db());
    w.show();
    QComboBox* cmb = child<QComboBox>(w, "cmbTasemalli");
    cmb->setCurrentIndex(cmb->findText(nimi));
    QCOMPARE(cmb->currentData().toInt(), malli);
    QList<int> bar;
    connect(child<QProgressBar>(w, "pBar"), &QProgressBar::valueChanged, this, [&bar](int v) {
        if (bar.isEmpty() || bar.last() != v)
            bar << v;
    });
    dialogs.answerYes();
    QTest::mouseClick(child<QPushButton>(w, "cTilikaudenvaihto"), Qt::LeftButton);
    QCOMPARE(dialogs.transcript(),
        (QStringList {
            QStringLiteral("question: Vaihdetaanko tilikausi? Uusi tilikausi on %1 - %2.\n\n"
                           "Kirjanpidosta otetaan ensin varmuuskopio, ja vaihdon jälkeen sen nimi "
                           "näkyy tässä ikkunassa.")
                .arg(Dates::format(vanhat.alku.addYears(1)), Dates::format(vanhat.loppu.addYears(1))),
            QStringLiteral("information: Tilikauden vaihto tehty.") }));
    // The status says what was done, not the last stage.
    QVERIFY(child<QLabel>(w, "lblStatus")->text().startsWith(QStringLiteral("Tilikauden vaihto tehty.")));
    QVERIFY(w.vaihdettu());
    QCOMPARE(w.result(), int(QDialog::Accepted));
    QVERIFY(!w.isVisible());
    QCOMPARE(bar, (QList<int> { 1, 2, 3, 4, 5, 6 }));

    // Every account's opening balance is its closing balance, and the previous-year column
    // is the old current one, line by line.
    QCOMPARE(balanceSheet(malli, QStringLiteral("taseteksti, taseLoppusaldoEdellinen")), before);
    QCOMPARE(balanceSheet(malli, QStringLiteral("taseteksti, taseAlkusaldo"), true), accountsBefore);
}

QTEST_MAIN(tst_frmKaudenVaihto)
#include "tst_frmKaudenVaihto.moc"
