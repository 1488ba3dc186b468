#include "printing/TextMetrics.h"

#include "printing/PageText.h"

#include <QFile>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H

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

} // namespace

struct TextMetrics::Advances::Face {
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    ~Face()
    {
        if (face)
            FT_Done_Face(face);
        if (library)
            FT_Done_FreeType(library);
    }
};

TextMetrics::Advances::Advances(const QString& file)
    : m_face(std::make_unique<Face>())
{
    if (file.isEmpty() || FT_Init_FreeType(&m_face->library) != 0
        || FT_New_Face(m_face->library, QFile::encodeName(file).constData(), 0, &m_face->face) != 0)
        m_face->face = nullptr;
    read(0);
}

TextMetrics::Advances::~Advances() = default;

void TextMetrics::Advances::read(int block) const
{
    const std::lock_guard lock(m_mutex);
    if (m_ready[size_t(block)].load(std::memory_order_relaxed))
        return;
    FT_Face face = m_face->face;
    for (int i = 0; i < 256; ++i) {
        const int c = block * 256 + i;
        // Without the font every character is taken as half an em wide: the layout still
        // works, and the PDF writer says what is missing.
        float width = 0.5f;
        FT_Fixed advance = 0;
        if (face
            && FT_Get_Advance(face, FT_Get_Char_Index(face, FT_ULong(c)), FT_LOAD_NO_SCALE, &advance) == 0)
            // Whole thousandths, cut as the PDF library cuts them for the width arrays.
            width = float(advance * 1000 / face->units_per_EM) / 1000.0f;
        m_widths[size_t(c)] = width;
    }
    m_ready[size_t(block)].store(true, std::memory_order_release);
}

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

const TextMetrics::Advances& TextMetrics::advances(FontFamily family, bool bold, bool italic)
{
    static std::unique_ptr<Advances> styles[Styles];
    static std::once_flag once[Styles];
    const int i = styleIndex(family, bold, italic);
    std::call_once(once[i], [&] { styles[i] = std::make_unique<Advances>(fontFile(family, bold, italic)); });
    return *styles[i];
}

float TextMetrics::width(const PageFont& font, const char* text, qsizetype length)
{
    const Advances& a = advances(font.family, font.bold, font.italic);
    float sum = 0;
    const char* end = text + length;
    while (text < end) {
        const auto b = static_cast<unsigned char>(*text);
        if (b < 0x80) {
            sum += a.first256(b);
            ++text;
        } else {
            sum += a[PageText::next(text)];
        }
    }
    return sum * font.size;
}

float TextMetrics::width(const PageFont& font, QStringView text)
{
    const Advances& a = advances(font.family, font.bold, font.italic);
    float sum = 0;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        // As the page text holds them: controls as blanks, halves of a pair as "?".
        sum += a[u < 0x20 ? u' ' : (u >= 0xD800 && u <= 0xDFFF) ? u'?' : u];
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
