#include "ui/TitleFit.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QWidget>

namespace {

// The window manager's icon and three buttons, with room on both sides of the title.
constexpr int Decoration = 140;

} // namespace

void TitleFit::install() { qApp->installEventFilter(new TitleFit(qApp)); }

int TitleFit::neededWidth(const QWidget& window)
{
    QFont font = QApplication::font();
    font.setBold(true); // window managers draw titles bold or larger
    return QFontMetrics(font).horizontalAdvance(window.windowTitle()) + Decoration;
}

bool TitleFit::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType()) {
        auto* window = static_cast<QWidget*>(watched);
        const Qt::WindowType type = window->windowType();
        if (window->isWindow() && (type == Qt::Window || type == Qt::Dialog)
            && !window->windowTitle().isEmpty()) {
            const int needed = qMin(neededWidth(*window), window->maximumWidth());
            if (window->minimumWidth() < needed && window->width() < needed)
                window->setMinimumWidth(needed);
        }
    }
    return QObject::eventFilter(watched, event);
}
