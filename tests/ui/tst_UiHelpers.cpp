#include "ui/EnterAsTab.h"
#include "ui/TitleFit.h"

#include <QDialog>
#include <QLabel>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

class tst_UiHelpers : public QObject {
    Q_OBJECT

private slots:
    void enterMovesThroughFields()
    {
        QWidget w;
        auto* layout = new QVBoxLayout(&w);
        auto* first = new QLineEdit(&w);
        auto* second = new QComboBox(&w);
        second->setEditable(true);
        auto* third = new QLineEdit(&w);
        auto* button = new QPushButton(QStringLiteral("OK"), &w);
        for (QWidget* child : { static_cast<QWidget*>(first), static_cast<QWidget*>(second),
                 static_cast<QWidget*>(third), static_cast<QWidget*>(button) })
            layout->addWidget(child);
        EnterAsTab::install(&w);
        w.show();
        QVERIFY(QTest::qWaitForWindowActive(&w));

        first->setFocus();
        QTest::keyClicks(first, QStringLiteral("abc"));
        QTest::keyClick(first, Qt::Key_Return);
        QVERIFY(second->hasFocus() || second->lineEdit()->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
        QVERIFY(third->hasFocus());
        // Text typed before Enter stays where it was typed.
        QCOMPARE(first->text(), QStringLiteral("abc"));
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
        const QString title = QStringLiteral("Tilikauden vaihto - Tarkista tositteet ennen vaihtoa");
        QDialog narrow;
        (new QVBoxLayout(&narrow))->addWidget(new QLabel(QStringLiteral("OK?"), &narrow));
        narrow.setWindowTitle(title);
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
