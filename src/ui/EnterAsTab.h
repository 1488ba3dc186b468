#pragma once

#include <QObject>

// In entry fields Enter moves to the next field, as Tab does. Install on a window; it acts on
// line edits, spin boxes, date edits and combo boxes inside it.
class EnterAsTab final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    // Installs the filter on every entry field below `root` (and on fields added later, when
    // `root` is passed again).
    static EnterAsTab* install(QWidget* root);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
