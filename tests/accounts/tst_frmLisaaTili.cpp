#include "AccountsFixture.h"
#include "ScriptedDialogs.h"
#include "accounts/frmLisaaTili.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>

// The checks themselves are tried in tst_ChartOfAccounts; here the dialog's part: the message, the
// field it points at, staying open, and what is stored.
class tst_frmLisaaTili : public QObject {
    Q_OBJECT

private slots:
    void addOrRefuse_data()
    {
        QTest::addColumn<QString>("numero");
        QTest::addColumn<QString>("nimi");
        QTest::addColumn<QString>("kuvaus");
        QTest::addColumn<QString>("message"); // "" when the account is added
        const auto row = [](const char* tag, const char* numero, const char* nimi, const char* kuvaus,
                             const QString& message) {
            QTest::newRow(tag) << QString::fromUtf8(numero) << QString::fromUtf8(nimi)
                               << QString::fromUtf8(kuvaus) << message;
        };
        row("leading zero", "0999", "Nimi", "", FourDigits);
        row("empty name", "3000", "", "Kuvaus", NoName);
        row("odd text", "3000", "O'Brien \"&\" <tili>; --", "Kuvaus 'x'", QString());
        row("blank description", "9999", "Viimeinen", "", QString());
    }

    void addOrRefuse()
    {
        QFETCH(QString, numero);
        QFETCH(QString, nimi);
        QFETCH(QString, kuvaus);
        QFETCH(QString, message);
        AccountsFixture f;
        f.tili(1910, QStringLiteral("Pankkitili"));
        ScriptedDialogs dialogs;
        frmLisaaTili d(f.db());
        d.show();
        QVERIFY(QTest::qWaitForWindowActive(&d));
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("tTilinumero"));
        d.findChild<QLineEdit*>(QStringLiteral("tTilinumero"))->setText(numero);
        d.findChild<QLineEdit*>(QStringLiteral("tNimi"))->setText(nimi);
        d.findChild<QLineEdit*>(QStringLiteral("tKuvaus"))->setText(kuvaus);
        d.findChild<QLineEdit*>(QStringLiteral("tKuvaus"))->setFocus();
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cLisaa")), Qt::LeftButton);
        QCOMPARE(dialogs.transcript(),
            message.isEmpty() ? QStringList() : QStringList { QStringLiteral("information: ") + message });
        QCOMPARE(d.isVisible(), !message.isEmpty());
        QCOMPARE(f.tileja(), message.isEmpty() ? 2 : 1);
        if (!message.isEmpty()) {
            QCOMPARE(d.uusiId(), 0);
            QCOMPARE(QApplication::focusWidget()->objectName(), message == NoName ? "tNimi" : "tTilinumero");
            return;
        }
        QCOMPARE(f.kentta(d.uusiId(), "tlNumero").toString(), numero);
        QCOMPARE(f.nimi(d.uusiId()), nimi);
        QCOMPARE(
            f.kentta(d.uusiId(), "tlKuvaus").toString(), kuvaus.isEmpty() ? QStringLiteral(" ") : kuvaus);
    }
};

QTEST_MAIN(tst_frmLisaaTili)
#include "tst_frmLisaaTili.moc"
