#pragma once

#include <QString>
#include <QWidget>

// A window's control by its object name, as the window tests find every control. A missing one
// stops the test with its name: a renamed control is a fault, not a skipped check.
template <typename T = QWidget> T* child(const QObject& window, const QString& name)
{
    T* found = window.findChild<T*>(name);
    if (!found)
        qFatal("no control %s", qPrintable(name));
    return found;
}
