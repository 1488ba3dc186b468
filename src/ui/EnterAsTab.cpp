#include "ui/EnterAsTab.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QWidget>

EnterAsTab* EnterAsTab::install(QWidget* root)
{
    auto* filter = root->findChild<EnterAsTab*>(QString(), Qt::FindDirectChildrenOnly);
    if (!filter)
        filter = new EnterAsTab(root);
    const auto fields = root->findChildren<QWidget*>();
    for (QWidget* w : fields) {
        if (qobject_cast<QLineEdit*>(w) || qobject_cast<QAbstractSpinBox*>(w)
            || qobject_cast<QComboBox*>(w)) {
            w->removeEventFilter(filter);
            w->installEventFilter(filter);
        }
    }
    return filter;
}

bool EnterAsTab::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
            && key->modifiers() == Qt::NoModifier) {
            if (auto* w = qobject_cast<QWidget*>(watched)) {
                // Let an open completer or combo popup take Enter first.
                if (auto* combo = qobject_cast<QComboBox*>(w); combo && combo->view()->isVisible())
                    return false;
                QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
                QCoreApplication::sendEvent(w, &tab);
                return true;
            }
        }
    }
    return QObject::eventFilter(watched, event);
}
