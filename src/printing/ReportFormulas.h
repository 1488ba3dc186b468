#pragma once

#include <QString>
#include <optional>

// The named formulas callers hand to a report, each written "Name= 'text'".
namespace ReportFormulas {

struct Named {
    QString name;
    QString value;
};

// Parses "Otsake= 'Tilien saldot'". Blanks around the name and the "=" are allowed (a caller
// sends "LoppuPvm = '…'"). The text runs from the first quote to the last one, and a doubled
// quote inside it stands for one, so a name like "Matin 'kerho'" comes through whether the
// caller doubled its quotes or not. Anything else gives nullopt.
std::optional<Named> parse(const QString& formula);

// The text of a formula as callers write it, "'Matin ''kerho'''": every apostrophe doubled, so
// that parse() gives back the text as it is, doubled apostrophes included.
QString quoted(const QString& text);

} // namespace ReportFormulas
