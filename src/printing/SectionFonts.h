#pragma once

#include <QString>
#include <QStringList>
#include <array>

// The typeface families Vorkam prints with. Each has a metric-compatible Liberation font for
// measuring and the screen, and a standard PDF font (Times, Helvetica, Courier).
enum class FontFamily : quint8 { Serif, Sans, Mono };

struct FontSpec {
    QString face = QStringLiteral("Times New Roman");
    double size = 10;
    bool bold = false;
    bool italic = false;
    bool operator==(const FontSpec&) const = default;
};

// The sections of a report layout whose fonts can be set.
enum class Section { Title, Header, Detail, Group, Total, Footer };
constexpr int SectionCount = 6;
using SectionFontTable = std::array<FontSpec, SectionCount>;

// Section fonts set before each report from the settings Fontti and FonttiKoko.
namespace SectionFonts {

// The five entries "SECTION;font;size;italic;bold;underline;strikeout" ("X" = unchanged).
// Set 1 sets the sections separately (DETAIL, TITLE, HEADER, GRNDTTL, FOOTER); set 2 the whole
// report (ALL, TITLE, HEADER) and leaves entries 3 and 4 empty. The title is always 12 points
// and the page header keeps the layout's size.
QStringList entries(int set, const QString& fontti, int fonttiKoko);

// Applies entries to a layout's own fonts. ALL sets every section; DETAIL also sets the group
// headers, which print in the detail band, and GRNDTTL also the group totals. Empty entries
// are skipped. A malformed entry or an unknown section throws ReportError.
void apply(const QStringList& entries, SectionFontTable& fonts);

// The family of a face name: Courier and other monospace faces, Times and other serif faces,
// and everything else (Arial, Helvetica, Verdana…) as sans.
FontFamily family(const QString& face);

} // namespace SectionFonts
