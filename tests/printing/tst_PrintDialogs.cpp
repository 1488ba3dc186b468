#include "Controls.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/Dates.h"
#include "core/ProgramSettings.h"
#include "printing/PrintOptions.h"
#include "printing/ReportRunner.h"
#include "printing/frmDates.h"
#include "printing/frmDates2.h"
#include "printing/frmTulostus.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

class tst_PrintDialogs final : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        PrintOptions::current() = PrintValues();
        ProgramSettings::bookkeeping().TilikausiAlku = QDate(2011, 1, 1);
        ProgramSettings::bookkeeping().TilikausiLoppu = QDate(2011, 12, 31);
        ReportRunner::setPrinterCheck([] { return true; });
    }

    void copies_data()
    {
        QTest::addColumn<int>("destination");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("answer"); // "", "yes", "no": the dialog stays after No
        QTest::addColumn<int>("copies");
        const auto row = [](const char* tag, Destination d, const char* text, const char* answer,
                             int copies) { QTest::newRow(tag) << int(d) << text << answer << copies; };
        row("printer, 3", Destination::Printer, " 3 ", "", 3);
        row("window, abc: one copy without a question", Destination::Window, "abc", "", 1);
        row("printer, abc, Yes: one copy", Destination::Printer, "abc", "yes", 1);
        row("printer, abc, No: the dialog stays", Destination::Printer, "abc", "no", 7);
        row("printer, 0 is no number of copies", Destination::Printer, "0", "yes", 1);
    }
    void copies()
    {
        QFETCH(int, destination);
        QFETCH(QString, text);
        QFETCH(QString, answer);
        QFETCH(int, copies);
        const bool accepted = answer != u"no";
        ScriptedDialogs dialogs;
        if (answer == u"yes")
            dialogs.answerYes();
        else if (answer == u"no")
            dialogs.answerNo();
        PrintOptions::current().copies = 7;
        frmTulostus w;
        w.show();
        child<QComboBox>(w, "cmbTulostusLaite")->setCurrentIndex(destination);
        child<QLineEdit>(w, "tKopioita")->setText(text);
        PrintOptions::current().cancelled = true;
        child<QPushButton>(w, "cTulosta")->click();
        QCOMPARE(w.isVisible(), !accepted);
        QCOMPARE(PrintOptions::current().copies, copies);
        QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Question).size(), answer.isEmpty() ? 0 : 1);
        if (accepted) {
            QCOMPARE(int(PrintOptions::current().destination), destination);
            QVERIFY(!PrintOptions::current().cancelled);
        }
    }

    void noPrinterLeavesTheWindowToChoose()
    {
        ScriptedDialogs dialogs;
        ReportRunner::setPrinterCheck([] { return false; });
        frmTulostus w;
        w.show();
        child<QPushButton>(w, "cTulosta")->click();
        QVERIFY(w.isVisible());
        QCOMPARE(dialogs.transcript(), QStringList { "information: " + ReportRunner::noPrinterText() });
        child<QPushButton>(w, "cTulosta")->click();
        QVERIFY(!w.isVisible());
        QCOMPARE(PrintOptions::current().destination, Destination::Window);
    }

    void cancel()
    {
        frmTulostus w;
        child<QPushButton>(w, "cPeruTulostus")->click();
        QVERIFY(PrintOptions::current().cancelled);
    }

    // Each field reaches its own check and the period its order; the rules themselves are
    // PeriodCheck's. Nothing is stored on a refusal.
    void dates_data()
    {
        QTest::addColumn<QString>("alku");
        QTest::addColumn<QString>("loppu");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* tag, const char* alku, const char* loppu, const char* message = "") {
            QTest::newRow(tag) << alku << loppu << message;
        };
        row("the whole year", "1.1.2011", "31.12.2011");
        row("start a day before the year", "31.12.2010", "31.12.2011",
            "Alkupäivämäärä ei kuulu tilikauteen: 1.1.2011 - 31.12.2011");
        row("end not a date", "1.1.2011", "joulukuu", "Anna loppupäivämäärä päivämäärämuodossa!");
        row("start after end", "2.2.2011", "1.2.2011", "Alkupäivämäärä on loppupäivämäärän jälkeen.");
    }
    void dates()
    {
        QFETCH(QString, alku);
        QFETCH(QString, loppu);
        QFETCH(QString, message);
        ScriptedDialogs dialogs;
        frmDates2 w;
        w.show();
        child<QLineEdit>(w, "tAlkupvm")->setText(alku);
        child<QLineEdit>(w, "tLoppupvm")->setText(loppu);
        child<QPushButton>(w, "cSeuraava")->click();
        QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information),
            message.isEmpty() ? QStringList() : QStringList { message });
        const bool stored = message.isEmpty();
        QCOMPARE(w.result() == QDialog::Accepted, stored);
        QCOMPARE(PrintOptions::current().alkupvm, stored ? Dates::parse(alku) : QDate());
        QCOMPARE(PrintOptions::current().loppupvm, stored ? Dates::parse(loppu) : QDate());
    }

    // The statements' dialog checks its period as frmDates2 does, and keeps its options only with
    // a period taken.
    void statementOptions()
    {
        ScriptedDialogs dialogs;
        frmDates w;
        child<QCheckBox>(w, "chkTiliErottelu")->setChecked(true);
        child<QRadioButton>(w, "optSuppea")->setChecked(true);
        child<QLineEdit>(w, "tAlkupvm")->setText(QStringLiteral("2.1.2012"));
        child<QPushButton>(w, "cSeuraava")->click();
        QCOMPARE(dialogs.texts(ScriptedDialogs::Kind::Information).size(), 1);
        QVERIFY(!PrintOptions::current().alkupvm.isValid() && !PrintOptions::current().tiliErottelu);
        child<QLineEdit>(w, "tAlkupvm")->setText(QStringLiteral("2.1.2011"));
        child<QPushButton>(w, "cSeuraava")->click();
        QCOMPARE(w.result(), int(QDialog::Accepted));
        QCOMPARE(PrintOptions::current().alkupvm, QDate(2011, 1, 2));
        QVERIFY(PrintOptions::current().tiliErottelu && !PrintOptions::current().laaja);
    }
};

QTEST_MAIN(tst_PrintDialogs)
#include "tst_PrintDialogs.moc"
