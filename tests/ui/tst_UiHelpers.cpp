#include "ui/EnterAsTab.h"
#include "ui/TitleFit.h"

#include <QDialog>
#include <QLabel>

#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

class tst_UiHelpers : public QObject {
    Q_OBJECT

private slots:
    void enterMovesThroughFields()
    {
        // The fields take the focus in the order they are made.
        QWidget w;
        auto* first = new QLineEdit(&w);
        auto* second = new QComboBox(&w);
        second->setEditable(true);
        auto* third = new QLineEdit(&w);
        EnterAsTab::install(&w);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));

        first->setFocus();
        QTest::keyClick(first, Qt::Key_Return);
        QVERIFY(second->hasFocus() || second->lineEdit()->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
        QVERIFY(third->hasFocus());
        // Shift+Enter is not Enter: the field keeps the focus.
        QTest::keyClick(third, Qt::Key_Return, Qt::ShiftModifier);
        QVERIFY(third->hasFocus());
        // Installing twice does not move two fields at a time.
        EnterAsTab::install(&w);
        first->setFocus();
        QTest::keyClick(first, Qt::Key_Return);
        QVERIFY(second->hasFocus() || second->lineEdit()->hasFocus());
    }

    void windowsAreAsWideAsTheirTitles()
    {
        TitleFit::install();
        QDialog narrow;
        (new QVBoxLayout(&narrow))->addWidget(new QLabel(QStringLiteral("OK?"), &narrow));
        narrow.setWindowTitle(QStringLiteral("Tilikauden vaihto - Tarkista tositteet ennen vaihtoa"));
        QDialog wide;
        wide.setWindowTitle(QStringLiteral("Haku"));
        wide.resize(900, 200);
        for (QDialog* d : { &narrow, &wide }) {
            d->show();
            QVERIFY(QTest::qWaitForWindowExposed(d));
        }
        QVERIFY(TitleFit::neededWidth(narrow) > 300);
        QVERIFY(narrow.width() >= TitleFit::neededWidth(narrow));
        QCOMPARE(wide.width(), 900);
    }
};

QTEST_MAIN(tst_UiHelpers)
#include "tst_UiHelpers.moc"
