#include "printing/PagePainter.h"

#include "printing/ReportDocument.h"
#include "printing/TextMetrics.h"

#include <QFont>
#include <QPainter>
#include <QPen>
#include <vector>

namespace PagePainter {

void paint(QPainter& painter, const ReportDocument& document, int pageIndex)
{
    const ReportPage page = document.page(pageIndex);
    // Font pixel sizes are whole numbers: the page is drawn at 100 units a point, so that a
    // 10.5 point font is exactly that.
    constexpr qreal Units = 100;
    painter.save();
    painter.scale(1 / Units, 1 / Units);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    for (const PageRule& r : page.rules) {
        painter.setPen(QPen(Qt::black, r.width * Units));
        painter.drawLine(QPointF(r.x1 * Units, r.y1 * Units), QPointF(r.x2 * Units, r.y2 * Units));
    }
    std::vector<QFont> fonts;
    for (const PageFont& f : document.fonts()) {
        QFont font(TextMetrics::screenFamily(f.family));
        font.setBold(f.bold);
        font.setItalic(f.italic);
        font.setPixelSize(qMax(1, qRound(f.size * Units)));
        font.setStyleStrategy(QFont::NoFontMerging);
        font.setHintingPreference(QFont::PreferNoHinting);
        // The layout measured advances without kerning, as the PDF prints them.
        font.setKerning(false);
        fonts.push_back(font);
    }
    painter.setPen(Qt::black);
    int current = -1;
    for (const TextRun& run : page.runs) {
        if (run.font != current) {
            current = run.font;
            painter.setFont(fonts[run.font]);
        }
        painter.drawText(QPointF(run.x * Units, run.y * Units), page.runText(run));
    }
    painter.restore();
}

} // namespace PagePainter
