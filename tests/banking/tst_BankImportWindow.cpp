#include "BankFiles.h"
#include "Controls.h"
#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "banking/BankImportWindow.h"
#include "core/DatabaseError.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

// The statement window driven by keyboard: read, correct an account, leave a line out, store.
class tst_BankImportWindow : public QObject {
    Q_OBJECT

private slots:
    void readCorrectAndStoreByKeyboard()
    {
        TestEnv env;
        ScriptedDialogs dialogs;
        const QString books = env.path(QStringLiteral("seura.mdb"));
        QVERIFY(QFile::copy(QStringLiteral(VORKAM_BIN_DIR "/demo1.mdb"), books));
        QFile::setPermissions(books, QFile::ReadOwner | QFile::WriteOwner);
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("w"));
        db.setDatabaseName(books);
        QVERIFY(db.open());
        ProgramSettings::loadBookkeeping(db, books);
        const QString year = QString::number(ProgramSettings::bookkeeping().TilikausiAlku.year());
        const QString file = env.path(QStringLiteral("ote.xml"));
        QVERIFY(TestEnv::writeFile(file,
            BankFiles::camt(
                { { "120.50", "CRDT", qPrintable(year + QStringLiteral("-03-02")), "A1", "Matti" },
                    { "45.00", "DBIT", qPrintable(year + QStringLiteral("-03-03")), "A2", "Kukka" },
                    { "2.00", "DBIT", qPrintable(year + QStringLiteral("-03-04")), "A3", "Posti" },
                    { "1.00", "DBIT", "1999-01-01", "A4", "Vanha" } },
                "0", "72.50")));
        {
            BankImportWindow w(db);
            w.show();
            QVERIFY(QTest::qWaitForWindowActive(&w));
            auto* tiedosto = child<QLineEdit>(w, "tTiedosto");
            tiedosto->setFocus();
            QTest::keyClicks(tiedosto, file);
            QTest::keyClick(tiedosto, Qt::Key_Return);
            QCOMPARE(child<QLabel>(w, "lblYhteenveto")->text(),
                QStringLiteral("4 riviä, joista uusia 3, tilikauden ulkopuolella 1."));
            auto* rivit = child<QTableView>(w, "tblRivit");
            QVERIFY(rivit->hasFocus());
            // The first line's counter-account typed by number, the second line left out.
            rivit->setCurrentIndex(w.model().index(0, BankLinesModel::Tili));
            QTest::keyClick(rivit, Qt::Key_3); // the first key opens the editor
            QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("000"));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
            QTRY_COMPARE(rivit->hasFocus(), true);
            QCOMPARE(w.model().index(0, BankLinesModel::Tili).data().toString(),
                QStringLiteral("3000 Kurssimaksut"));
            rivit->setCurrentIndex(w.model().index(1, BankLinesModel::Valittu));
            QTest::keyClick(rivit, Qt::Key_Space);
            QCOMPARE(w.model().chosen(), (std::vector<size_t> { 0, 2 }));
            // The third line has no account: the suspense account is offered.
            dialogs.answerYes();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_T, Qt::AltModifier);
            QTRY_COMPARE(dialogs.remainingAnswers(), 0); // a mnemonic clicks after a moment
            QVERIFY2(dialogs.texts(ScriptedDialogs::Kind::Information)
                         .last()
                         .startsWith(QStringLiteral("Tallennettiin 2 tositetta")),
                qPrintable(dialogs.transcript().join(u'\n')));
            QCOMPARE(w.model().plan().linesIn(BankImport::State::Imported), 2);
        }
        QCOMPARE(
            Sql::scalar(db,
                QStringLiteral("SELECT COUNT(*) FROM vi JOIN tl ON tlID = vitlID WHERE tlNumero = 3000 AND "
                               "viArvo = 1205000 AND viTyyppi = 'K'"))
                .toInt(),
            1);
        QVERIFY(dialogs.failures().isEmpty());
        db.close();
        db = {};
        QSqlDatabase::removeDatabase(QStringLiteral("w"));
    }
};

QTEST_MAIN(tst_BankImportWindow)
#include "tst_BankImportWindow.moc"
