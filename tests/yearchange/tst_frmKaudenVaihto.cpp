#include "Controls.h"
#include "ScriptedDialogs.h"
#include "StatementFixture.h"
#include "core/Dates.h"
#include "statements/Statements.h"
#include "yearchange/FiscalYearChange.h"
#include "yearchange/frmKaudenVaihto.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

using F = StatementFixture;

// The account lines of the balance sheet as the change computes it: each one's text and `column`.
QStringList accounts(qint32 malli, const char* column)
{
    const FiscalYearChange::Kaudet k = FiscalYearChange::nykyiset();
    StatementOptions o = StatementOptions::forPeriod(malli, k.alku, k.loppu);
    o.perAccount = true;
    if (!Statements::compute(F::db(), o))
        return {};
    QStringList lines;
    QSqlQuery q(QStringLiteral("SELECT taseteksti || '|' || %1 FROM tase WHERE tasetlID > 0 AND "
                               "taseIsGroupRow = 0 ORDER BY taseID")
                    .arg(QLatin1String(column)),
        F::db());
    while (q.next())
        lines << q.value(0).toString();
    return lines;
}

} // namespace

class tst_frmKaudenVaihto : public QObject {
    Q_OBJECT

private slots:
    // The demo's year changed from the window: the new year and the templates shown (their rules are
    // tst_FiscalYearChange's), no change without a template, then each account's closing balance
    // becomes its opening balance and previous-year balance to the cent. Peru closes the window.
    void demoYearChange()
    {
        TestEnv env;
        QVERIFY(F::openShipped(env, QStringLiteral("demo1.mdb")));
        const qint32 malli
            = F::value(QStringLiteral("SELECT MIN(maID) FROM ma WHERE maTyyppi = 2 AND maTulosMaID <> 0"))
                  .toInt();
        const FiscalYearChange::Kaudet uudet = FiscalYearChange::seuraavat(FiscalYearChange::nykyiset());
        ScriptedDialogs dialogs;
        const QStringList closing = accounts(malli, "taseLoppusaldo");
        QVERIFY(closing.size() > 5);

        frmKaudenVaihto w(F::db());
        w.show();
        QCOMPARE(child<QLabel>(w, "lblTilikausiUusiLoppu")->text(), Dates::format(uudet.loppu));
        QComboBox* cmb = child<QComboBox>(w, "cmbTasemalli");
        QCOMPARE(cmb->count(), int(FiscalYearChange::tasemallit(F::db()).size()) + 1);
        QVERIFY(child<QCheckBox>(w, "chkTeeAvausviennit")->isChecked());
        QTest::mouseClick(child<QPushButton>(w, "cTilikaudenvaihto"), Qt::LeftButton);
        QCOMPARE(dialogs.transcript(),
            QStringList { QStringLiteral("information: ") + FiscalYearChange::valitseMalliViesti() });
        QVERIFY(w.isVisible() && !w.vaihdettu());

        dialogs.clear();
        cmb->setCurrentIndex(cmb->findData(malli));
        QSignalSpy progress(child<QProgressBar>(w, "pBar"), &QProgressBar::valueChanged);
        dialogs.answerYes();
        QTest::mouseClick(child<QPushButton>(w, "cTilikaudenvaihto"), Qt::LeftButton);
        QCOMPARE(dialogs.transcript(),
            (QStringList {
                QStringLiteral("question: Vaihdetaanko tilikausi? Uusi tilikausi on %1 - %2.\n\n"
                               "Kirjanpidosta otetaan ensin varmuuskopio, ja vaihdon jälkeen sen nimi "
                               "näkyy tässä ikkunassa.")
                    .arg(Dates::format(uudet.alku), Dates::format(uudet.loppu)),
                QStringLiteral("information: Tilikauden vaihto tehty.") }));
        // The status says what was done, not the last stage; the bar rose stage by stage to the end.
        QVERIFY(child<QLabel>(w, "lblStatus")->text().startsWith(QStringLiteral("Tilikauden vaihto tehty.")));
        QVERIFY(w.vaihdettu() && !w.isVisible());
        QVERIFY(progress.count() >= FiscalYearChange::Vaiheet
            && progress.last().value(0).toInt() == FiscalYearChange::Vaiheet);
        QCOMPARE(accounts(malli, "taseAlkusaldo"), closing);
        QCOMPARE(accounts(malli, "taseLoppusaldoEdellinen"), closing);

        frmKaudenVaihto peru(F::db());
        peru.show();
        QTest::mouseClick(child<QPushButton>(peru, "cPeru"), Qt::LeftButton);
        QCOMPARE(peru.result(), int(QDialog::Rejected));
    }
};

QTEST_MAIN(tst_frmKaudenVaihto)
#include "tst_frmKaudenVaihto.moc"
