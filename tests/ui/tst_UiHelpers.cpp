#include "ui/EnterAsTab.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>

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
};

QTEST_MAIN(tst_UiHelpers)
#include "tst_UiHelpers.moc"
