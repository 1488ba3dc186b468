#include "AccountsFixture.h"
#include "ScriptedDialogs.h"
#include "frmLisaaTili.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>

namespace {

const QString FourDigits = QStringLiteral("Tilinumeron tulee olla neljä numeroa pitkä.");
const QString NoName = QStringLiteral("Tilillä tulee olla nimi.");

} // namespace

class tst_frmLisaaTili : public QObject {
    Q_OBJECT

private slots:
    void checksInOrder_data();
    void checksInOrder();
    void databaseSettingChecked_data();
    void databaseSettingChecked();
    void cancelAddsNothing();
};

void tst_frmLisaaTili::checksInOrder_data()
{
    QTest::addColumn<QString>("numero");
    QTest::addColumn<QString>("nimi");
    QTest::addColumn<QString>("kuvaus");
    QTest::addColumn<QString>("message"); // "" when the account is added
    QTest::addColumn<QString>("focus");
    QTest::newRow("too short") << "123"
                               << ""
                               << "" << FourDigits << "tTilinumero";
    QTest::newRow("leading zero") << "0999"
                                  << "Nimi"
                                  << "" << FourDigits << "tTilinumero";
    QTest::newRow("letters") << "abcd"
                             << "Nimi"
                             << "" << FourDigits << "tTilinumero";
    QTest::newRow("apostrophe number") << "1910'"
                                       << "Nimi"
                                       << "" << FourDigits << "tTilinumero";
    QTest::newRow("too large") << "11000"
                               << "Nimi"
                               << "" << QStringLiteral("Tilinumeron tulee olla pienempi kuin 11000.")
                               << "tTilinumero";
    QTest::newRow("existing before name")
        << "1910"
        << ""
        << "" << QStringLiteral("Tilinumerolla 1910 löytyy jo tili.") << "tTilinumero";
    QTest::newRow("empty name") << "3000"
                                << ""
                                << "Kuvaus" << NoName << "tNimi";
    QTest::newRow("odd text") << "3000"
                              << "O'Brien \"&\" <tili>; --"
                              << "Kuvaus 'lainaus'"
                              << ""
                              << "";
    QTest::newRow("blank description") << "9999"
                                       << "Viimeinen"
                                       << ""
                                       << ""
                                       << "";
}

void tst_frmLisaaTili::checksInOrder()
{
    QFETCH(QString, numero);
    QFETCH(QString, nimi);
    QFETCH(QString, kuvaus);
    QFETCH(QString, message);
    QFETCH(QString, focus);
    AccountsFixture f;
    f.tili(1910, QStringLiteral("Pankkitili"));
    ScriptedDialogs dialogs;
    frmLisaaTili d;
    d.show();
    QVERIFY(QTest::qWaitForWindowActive(&d));
    QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("tTilinumero"));
    d.findChild<QLineEdit*>(QStringLiteral("tTilinumero"))->setText(numero);
    d.findChild<QLineEdit*>(QStringLiteral("tNimi"))->setText(nimi);
    d.findChild<QLineEdit*>(QStringLiteral("tKuvaus"))->setText(kuvaus);
    QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cLisaa")), Qt::LeftButton);
    if (!message.isEmpty()) {
        QCOMPARE(dialogs.transcript(), QStringList { QStringLiteral("information: ") + message });
        QVERIFY(d.isVisible());
        QCOMPARE(d.uusiId(), 0);
        QCOMPARE(QApplication::focusWidget()->objectName(), focus);
        QCOMPARE(f.tileja(), 1);
        return;
    }
    QCOMPARE(dialogs.transcript(), QStringList());
    QCOMPARE(d.result(), int(QDialog::Accepted));
    QVERIFY(!d.isVisible());
    QVERIFY(d.uusiId() > 0);
    QSqlQuery q
        = f.exec(QStringLiteral("SELECT tlNumero, tlNimi, tlKuvaus FROM tl WHERE tlID = ?"), { d.uusiId() });
    QVERIFY(q.next());
    QCOMPARE(q.value(0).toString(), numero);
    QCOMPARE(q.value(1).toString(), nimi);
    QCOMPARE(q.value(2).toString(), kuvaus.isEmpty() ? QStringLiteral(" ") : kuvaus);
}

void tst_frmLisaaTili::databaseSettingChecked_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<bool>("warned");
    QTest::newRow("missing") << "" << true;
    QTest::newRow("unknown") << "unknown" << true;
    QTest::newRow("set") << "tilit.mdb" << false;
}

void tst_frmLisaaTili::databaseSettingChecked()
{
    QFETCH(QString, setting);
    QFETCH(bool, warned);
    AccountsFixture f;
    if (setting != QLatin1String("tilit.mdb"))
        ProgramSettings::installation().Database = setting;
    ScriptedDialogs dialogs;
    frmLisaaTili d;
    QCOMPARE(dialogs.transcript(),
        warned ? QStringList { QStringLiteral("information: Tarkista tietokanta asetukset asetusikkunasta!") }
               : QStringList());
}

void tst_frmLisaaTili::cancelAddsNothing()
{
    AccountsFixture f;
    ScriptedDialogs dialogs;
    frmLisaaTili d;
    d.show();
    d.findChild<QLineEdit*>(QStringLiteral("tTilinumero"))->setText(QStringLiteral("4000"));
    d.findChild<QLineEdit*>(QStringLiteral("tNimi"))->setText(QStringLiteral("Ei lisätä"));
    QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cPeruuta")), Qt::LeftButton);
    QCOMPARE(d.result(), int(QDialog::Rejected));
    QCOMPARE(d.uusiId(), 0);
    QCOMPARE(f.tileja(), 0);
}

QTEST_MAIN(tst_frmLisaaTili)
#include "tst_frmLisaaTili.moc"
