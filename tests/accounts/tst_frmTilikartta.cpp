#include "AccountsFixture.h"
#include "Controls.h"
#include "ScriptedDialogs.h"
#include "accounts/PrintChoices.h"
#include "accounts/frmTilikartta.h"

#include <QComboBox>
#include <QPushButton>

class tst_frmTilikartta : public QObject {
    Q_OBJECT

private slots:
    // Each list holds the templates of its kind by name; Seuraava stores the choice, Peru does not.
    // Without a database setting or templates the window says so, and stores no choice.
    void choice()
    {
        AccountsFixture f;
        f.exec(QStringLiteral(
            "INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (1, 'Tuloslaskelma B', 1), (2, 'Tase', 2), "
            "(3, 'Tuloslaskelma A', 1), (4, 'O''Brienin tase', 2)"));
        ScriptedDialogs dialogs;
        PrintChoices::dialogCancelled() = true;
        frmTilikartta d(f.db());
        child<QComboBox>(d, "cmbTuloslaskelma")->setCurrentIndex(1);
        QTest::mouseClick(child<QPushButton>(d, "cSeuraava"), Qt::LeftButton);
        QVERIFY(!PrintChoices::dialogCancelled());
        QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 1);
        QCOMPARE(PrintChoices::tilikarttaMallit().taseID, 4);
        frmTilikartta peru(f.db());
        QTest::mouseClick(child<QPushButton>(peru, "cPeru"), Qt::LeftButton);
        QVERIFY(PrintChoices::dialogCancelled());
        QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 1);
        QCOMPARE(dialogs.transcript(), QStringList());

        ProgramSettings::installation().Database = QStringLiteral("unknown");
        frmTilikartta tyhja(QSqlDatabase {});
        QCOMPARE(dialogs.transcript(),
            (QStringList { QStringLiteral("information: Tarkista tietokanta asetukset asetusikkunasta!"),
                QStringLiteral("information: Tee ensin tuloslaskelman ja taseen mallit!") }));
        QTest::mouseClick(child<QPushButton>(tyhja, "cSeuraava"), Qt::LeftButton);
        QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 0);
        QCOMPARE(PrintChoices::tilikarttaMallit().taseID, 0);
    }
};

QTEST_MAIN(tst_frmTilikartta)
#include "tst_frmTilikartta.moc"
