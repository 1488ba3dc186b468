#pragma once

#include "PageModel.h"

#include <QByteArray>
#include <array>

// Text widths of the report fonts, measured from the Liberation fonts (metric-compatible with
// Times, Helvetica and Courier, which the PDF uses), so that the layout places text the same
// way for the screen, the printer and the PDF. One table of advances per font style, made once.
class TextMetrics final {
public:
    // Width in points of WinAnsi text in `font`.
    static float width(const PageFont& font, const char* text, qsizetype length);
    static float width(const PageFont& font, const QByteArray& text)
    {
        return width(font, text.constData(), text.size());
    }

    // The advances of the 256 WinAnsi characters at 1 point.
    using Table = std::array<float, 256>;
    static const Table& table(FontFamily family, bool bold, bool italic);
    // The same from the standard PDF fonts' own metrics; used when no font can be loaded (a
    // program without a GUI application), and by tests to check that the two agree.
    static Table pdfTable(FontFamily family, bool bold, bool italic);

    // "Times-Bold", "Helvetica-Oblique", …
    static const char* pdfFontName(FontFamily family, bool bold, bool italic);
    // "Liberation Serif", …
    static QString screenFamily(FontFamily family);
};
