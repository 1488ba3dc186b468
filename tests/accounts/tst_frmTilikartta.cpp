#include "AccountsFixture.h"
#include "ScriptedDialogs.h"
#include "accounts/PrintChoices.h"
#include "accounts/frmTilikartta.h"

#include <QComboBox>
#include <QPushButton>

namespace {

QStringList items(const frmTilikartta& d, const char* name)
{
    const auto* list = d.findChild<QComboBox*>(QString::fromLatin1(name));
    QStringList all;
    for (int i = 0; i < list->count(); ++i)
        all.append(list->itemText(i) + u'=' + list->itemData(i).toString());
    return all;
}

void click(frmTilikartta& d, const char* button)
{
    QTest::mouseClick(d.findChild<QPushButton*>(QString::fromLatin1(button)), Qt::LeftButton);
}

} // namespace

class tst_frmTilikartta : public QObject {
    Q_OBJECT

private slots:
    void choiceStoredOrCancelled()
    {
        AccountsFixture f;
        f.exec(QStringLiteral(
            "INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (1, 'Tuloslaskelma B', 1), (2, 'Tase', 2), "
            "(3, 'Tuloslaskelma A', 1), (4, 'O''Brienin tase', 2)"));
        ScriptedDialogs dialogs;
        PrintChoices::dialogCancelled() = true;
        {
            frmTilikartta d(f.db());
            QCOMPARE(
                items(d, "cmbTuloslaskelma"), (QStringList { "Tuloslaskelma A=3", "Tuloslaskelma B=1" }));
            QCOMPARE(items(d, "cmbTase"), (QStringList { "O'Brienin tase=4", "Tase=2" }));
            d.findChild<QComboBox*>(QStringLiteral("cmbTuloslaskelma"))->setCurrentIndex(1);
            click(d, "cSeuraava");
            QCOMPARE(d.result(), int(QDialog::Accepted));
        }
        QVERIFY(!PrintChoices::dialogCancelled());
        QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 1);
        QCOMPARE(PrintChoices::tilikarttaMallit().taseID, 4);
        frmTilikartta d(f.db());
        click(d, "cPeru");
        QCOMPARE(d.result(), int(QDialog::Rejected));
        QVERIFY(PrintChoices::dialogCancelled());
        QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 1);
        QCOMPARE(dialogs.transcript(), QStringList());
    }

    void withoutTemplatesOrDatabase()
    {
        TestEnv env;
        ProgramSettings::installation().Database = QStringLiteral("unknown");
        PrintChoices::tilikarttaMallit() = { 5, 6 };
        ScriptedDialogs dialogs;
        frmTilikartta d(QSqlDatabase {});
        QCOMPARE(dialogs.transcript(),
            (QStringList { QStringLiteral("information: Tarkista tietokanta asetukset asetusikkunasta!"),
                QStringLiteral("information: Tee ensin tuloslaskelman ja taseen mallit!") }));
        click(d, "cSeuraava");
        QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 0);
        QCOMPARE(PrintChoices::tilikarttaMallit().taseID, 0);
    }
};

QTEST_MAIN(tst_frmTilikartta)
#include "tst_frmTilikartta.moc"
