#include "TextMetrics.h"

#include <QCoreApplication>
#include <QFile>
#include <QFont>
#include <QGuiApplication>
#include <QRawFont>
#include <hpdf.h>
#include <mutex>

namespace {

constexpr int Styles = 12; // 3 families × regular, bold, italic, bold italic

int styleIndex(FontFamily family, bool bold, bool italic)
{
    return int(family) * 4 + (bold ? 1 : 0) + (italic ? 2 : 0);
}

const char* const LiberationFiles[Styles] = { "LiberationSerif-Regular", "LiberationSerif-Bold",
    "LiberationSerif-Italic", "LiberationSerif-BoldItalic", "LiberationSans-Regular", "LiberationSans-Bold",
    "LiberationSans-Italic", "LiberationSans-BoldItalic", "LiberationMono-Regular", "LiberationMono-Bold",
    "LiberationMono-Italic", "LiberationMono-BoldItalic" };

const char* const PdfNames[Styles] = { "Times-Roman", "Times-Bold", "Times-Italic", "Times-BoldItalic",
    "Helvetica", "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique", "Courier", "Courier-Bold",
    "Courier-Oblique", "Courier-BoldOblique" };

// The Liberation font of a style at 1000 pixels, so advances come in thousandths of an em.
QRawFont liberation(FontFamily family, bool bold, bool italic)
{
    QFont font(TextMetrics::screenFamily(family));
    font.setBold(bold);
    font.setItalic(italic);
    font.setPixelSize(1000);
    font.setHintingPreference(QFont::PreferNoHinting);
    QRawFont raw = QRawFont::fromFont(font);
    if (raw.isValid() && raw.familyName() == TextMetrics::screenFamily(family))
        return raw;
    // The font database did not give it; the Debian package's own file will do.
    const QString file = QStringLiteral("/usr/share/fonts/truetype/liberation/%1.ttf")
                             .arg(QLatin1String(LiberationFiles[styleIndex(family, bold, italic)]));
    if (QFile::exists(file))
        return QRawFont(file, 1000, QFont::PreferNoHinting);
    return {};
}

TextMetrics::Table measure(FontFamily family, bool bold, bool italic)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return TextMetrics::pdfTable(family, bold, italic);
    const QRawFont raw = liberation(family, bold, italic);
    if (!raw.isValid())
        return TextMetrics::pdfTable(family, bold, italic);
    TextMetrics::Table table {};
    QString all;
    for (int b = 0; b < 256; ++b)
        all += QChar(WinAnsi::decode(static_cast<unsigned char>(b)));
    const QList<quint32> glyphs = raw.glyphIndexesForString(all);
    if (glyphs.size() != 256)
        return TextMetrics::pdfTable(family, bold, italic);
    const QList<QPointF> advances = raw.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics);
    for (int b = 0; b < 256; ++b)
        table[size_t(b)] = float(advances.at(b).x() / 1000.0);
    return table;
}

} // namespace

const TextMetrics::Table& TextMetrics::table(FontFamily family, bool bold, bool italic)
{
    static Table tables[Styles];
    static std::once_flag once[Styles];
    const int i = styleIndex(family, bold, italic);
    std::call_once(once[i], [&] { tables[i] = measure(family, bold, italic); });
    return tables[i];
}

TextMetrics::Table TextMetrics::pdfTable(FontFamily family, bool bold, bool italic)
{
    Table table {};
    HPDF_Doc pdf = HPDF_New(nullptr, nullptr);
    if (!pdf)
        return table;
    HPDF_Font font = HPDF_GetFont(pdf, pdfFontName(family, bold, italic), "WinAnsiEncoding");
    for (int b = 0; b < 256 && font; ++b)
        table[size_t(b)]
            = float(HPDF_Font_GetUnicodeWidth(font, WinAnsi::decode(static_cast<unsigned char>(b))))
            / 1000.0f;
    HPDF_Free(pdf);
    return table;
}

float TextMetrics::width(const PageFont& font, const char* text, qsizetype length)
{
    const Table& t = table(font.family, font.bold, font.italic);
    float sum = 0;
    for (qsizetype i = 0; i < length; ++i)
        sum += t[static_cast<unsigned char>(text[i])];
    return sum * font.size;
}

const char* TextMetrics::pdfFontName(FontFamily family, bool bold, bool italic)
{
    return PdfNames[styleIndex(family, bold, italic)];
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
