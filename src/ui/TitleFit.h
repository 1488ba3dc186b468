#pragma once

#include <QObject>

class QWidget;

// A window is never narrower than its title: the window manager would cut the title short.
// Installed once on the application, it widens each window as it is first shown.
class TitleFit final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    static void install();
    // The width a window needs for its title, the window manager's icon and buttons included.
    static int neededWidth(const QWidget& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
