#pragma once

#include "PageModel.h"

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <vector>

// Text widths of the report fonts, read from the Liberation TrueType files that the PDF embeds
// and the screen draws with, so that the layout places text the same way for the screen, the
// printer and the PDF. One table of advances per font style, made once when first used.
class TextMetrics final {
public:
    // Width in points of the page text (UTF-8) in `font`.
    static float width(const PageFont& font, const char* text, qsizetype length);
    static float width(const PageFont& font, const QByteArray& text)
    {
        return width(font, text.constData(), text.size());
    }

    static float width(const PageFont& font, QStringView text);

    // The advances of the 65 536 16-bit characters at 1 point; a character the font lacks has
    // the font's missing width.
    using Table = std::vector<float>;
    static const Table& table(FontFamily family, bool bold, bool italic);

    // The TrueType file of a style ("/usr/share/fonts/truetype/liberation/LiberationSans-Bold.ttf");
    // empty when it is not installed.
    static QString fontFile(FontFamily family, bool bold, bool italic);
    // "Liberation Serif", …
    static QString screenFamily(FontFamily family);
};
