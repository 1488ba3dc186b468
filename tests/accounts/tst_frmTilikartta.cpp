#include "AccountsFixture.h"
#include "PrintChoices.h"
#include "ScriptedDialogs.h"
#include "frmTilikartta.h"

#include <QComboBox>
#include <QPushButton>

namespace {

QStringList items(QComboBox* list)
{
    QStringList all;
    for (int i = 0; i < list->count(); ++i)
        all.append(list->itemText(i) + u'=' + list->itemData(i).toString());
    return all;
}

const QString NoTemplates = QStringLiteral("information: Tee ensin tuloslaskelman ja taseen mallit!");

} // namespace

class tst_frmTilikartta : public QObject {
    Q_OBJECT

private slots:
    void listsByTypeAndName();
    void nextStoresChoiceAndClearsCancelled();
    void cancelSetsFlag();
    void withoutTemplates();
    void databaseSettingChecked();
};

void tst_frmTilikartta::listsByTypeAndName()
{
    AccountsFixture f;
    f.exec(QStringLiteral(
        "INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (1, 'Tuloslaskelma B', 1), (2, 'Tase', 2), "
        "(3, 'Tuloslaskelma A', 1), (4, 'O''Brienin tase', 2)"));
    ScriptedDialogs dialogs;
    frmTilikartta d;
    QCOMPARE(items(d.findChild<QComboBox*>(QStringLiteral("cmbTuloslaskelma"))),
        (QStringList { "Tuloslaskelma A=3", "Tuloslaskelma B=1" }));
    QCOMPARE(items(d.findChild<QComboBox*>(QStringLiteral("cmbTase"))),
        (QStringList { "O'Brienin tase=4", "Tase=2" }));
    QCOMPARE(dialogs.transcript(), QStringList());
}

void tst_frmTilikartta::nextStoresChoiceAndClearsCancelled()
{
    AccountsFixture f;
    f.exec(QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (1, 'TL B', 1), (2, 'Tase', 2), "
                          "(3, 'TL A', 1)"));
    PrintChoices::dialogCancelled() = true;
    ScriptedDialogs dialogs;
    frmTilikartta d;
    d.show();
    d.findChild<QComboBox*>(QStringLiteral("cmbTuloslaskelma"))->setCurrentIndex(1);
    QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cSeuraava")), Qt::LeftButton);
    QCOMPARE(d.result(), int(QDialog::Accepted));
    QVERIFY(!d.isVisible());
    QVERIFY(!PrintChoices::dialogCancelled());
    QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 1);
    QCOMPARE(PrintChoices::tilikarttaMallit().taseID, 2);
}

void tst_frmTilikartta::cancelSetsFlag()
{
    AccountsFixture f;
    f.exec(QStringLiteral("INSERT INTO ma (maID, maNimi, maTyyppi) VALUES (7, 'TL', 1), (8, 'Tase', 2)"));
    PrintChoices::dialogCancelled() = false;
    PrintChoices::tilikarttaMallit() = { 5, 6 };
    ScriptedDialogs dialogs;
    frmTilikartta d;
    d.show();
    QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cPeru")), Qt::LeftButton);
    QCOMPARE(d.result(), int(QDialog::Rejected));
    QVERIFY(PrintChoices::dialogCancelled());
    QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 5);
}

void tst_frmTilikartta::withoutTemplates()
{
    AccountsFixture f;
    ScriptedDialogs dialogs;
    frmTilikartta d;
    QCOMPARE(dialogs.transcript(), QStringList { NoTemplates });
    QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cSeuraava")), Qt::LeftButton);
    QCOMPARE(PrintChoices::tilikarttaMallit().tuloslaskelmaID, 0);
    QCOMPARE(PrintChoices::tilikarttaMallit().taseID, 0);
}

void tst_frmTilikartta::databaseSettingChecked()
{
    TestEnv env;
    ProgramSettings::installation().Database = QStringLiteral("unknown");
    ScriptedDialogs dialogs;
    frmTilikartta d;
    QCOMPARE(dialogs.transcript(),
        (QStringList {
            QStringLiteral("information: Tarkista tietokanta asetukset asetusikkunasta!"), NoTemplates }));
}

QTEST_MAIN(tst_frmTilikartta)
#include "tst_frmTilikartta.moc"
