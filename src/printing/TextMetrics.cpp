#include "TextMetrics.h"

#include "PageText.h"

#include <QFile>
#include <hpdf.h>
#include <mutex>

namespace {

constexpr int Styles = 12; // 3 families × regular, bold, italic, bold italic
constexpr int Characters = 65536;

int styleIndex(FontFamily family, bool bold, bool italic)
{
    return int(family) * 4 + (bold ? 1 : 0) + (italic ? 2 : 0);
}

const char* const LiberationFiles[Styles] = { "LiberationSerif-Regular", "LiberationSerif-Bold",
    "LiberationSerif-Italic", "LiberationSerif-BoldItalic", "LiberationSans-Regular", "LiberationSans-Bold",
    "LiberationSans-Italic", "LiberationSans-BoldItalic", "LiberationMono-Regular", "LiberationMono-Bold",
    "LiberationMono-Italic", "LiberationMono-BoldItalic" };

// The advances as the PDF's own width arrays give them, in thousandths of an em.
TextMetrics::Table measure(FontFamily family, bool bold, bool italic)
{
    // Without the font every character is taken as half an em wide: the layout still works,
    // and the PDF writer says what is missing.
    TextMetrics::Table table(Characters, 0.5f);
    const QString file = TextMetrics::fontFile(family, bold, italic);
    HPDF_Doc pdf = file.isEmpty() ? nullptr : HPDF_New(nullptr, nullptr);
    if (!pdf)
        return table;
    HPDF_UseUTFEncodings(pdf);
    const char* name = HPDF_LoadTTFontFromFile(pdf, QFile::encodeName(file).constData(), HPDF_FALSE);
    HPDF_Font font = name ? HPDF_GetFont(pdf, name, "UTF-8") : nullptr;
    for (int c = 0; c < Characters && font; ++c)
        table[size_t(c)] = float(HPDF_Font_GetUnicodeWidth(font, HPDF_UNICODE(c))) / 1000.0f;
    HPDF_Free(pdf);
    return table;
}

} // namespace

QString TextMetrics::fontFile(FontFamily family, bool bold, bool italic)
{
    const QLatin1String name(LiberationFiles[styleIndex(family, bold, italic)]);
    for (const char* folder :
        { "/usr/share/fonts/truetype/liberation", "/usr/share/fonts/truetype/liberation2" }) {
        const QString file = QStringLiteral("%1/%2.ttf").arg(QLatin1String(folder), name);
        if (QFile::exists(file))
            return file;
    }
    return {};
}

const TextMetrics::Table& TextMetrics::table(FontFamily family, bool bold, bool italic)
{
    static Table tables[Styles];
    static std::once_flag once[Styles];
    const int i = styleIndex(family, bold, italic);
    std::call_once(once[i], [&] { tables[i] = measure(family, bold, italic); });
    return tables[i];
}

float TextMetrics::width(const PageFont& font, const char* text, qsizetype length)
{
    const float* t = table(font.family, font.bold, font.italic).data();
    float sum = 0;
    const char* end = text + length;
    while (text < end) {
        const auto b = static_cast<unsigned char>(*text);
        if (b < 0x80) {
            sum += t[b];
            ++text;
        } else {
            sum += t[PageText::next(text)];
        }
    }
    return sum * font.size;
}

float TextMetrics::width(const PageFont& font, QStringView text)
{
    const float* t = table(font.family, font.bold, font.italic).data();
    float sum = 0;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        // As the page text holds them: controls as blanks, halves of a pair as "?".
        sum += t[u < 0x20 ? u' ' : (u >= 0xD800 && u <= 0xDFFF) ? u'?' : u];
    }
    return sum * font.size;
}

QString TextMetrics::screenFamily(FontFamily family)
{
    switch (family) {
    case FontFamily::Serif:
        return QStringLiteral("Liberation Serif");
    case FontFamily::Sans:
        return QStringLiteral("Liberation Sans");
    case FontFamily::Mono:
        break;
    }
    return QStringLiteral("Liberation Mono");
}
