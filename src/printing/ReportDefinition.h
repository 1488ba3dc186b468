#pragma once

#include "SectionFonts.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

// How a report column shows its value.
enum class CellFormat { Text, Money, Date, Integer, Percentage };
enum class CellAlign { Left, Right, Center };

struct ReportColumn {
    QString field; // a column of the query's result
    QString caption;
    double width = 1; // share of the printable width, relative to the other columns
    CellAlign align = CellAlign::Left;
    CellFormat format = CellFormat::Text;
    bool total = false; // summed in group and grand totals (money and integer columns)
};

struct ReportGroup {
    QString field; // rows with the same value form a group; the rows come sorted by it
    QString header; // "{field}" and "{Formula}" are replaced
    QString totalCaption; // empty: the group has no total row
};

enum class Orientation { Portrait, Landscape, Setting };

// A report definition file (*.rpt): Vorkam's own JSON description of a report's data and layout.
//
//   {
//     "orientation": "portrait" | "landscape" | "setting" (VaakaTulostus decides),
//     "query": { "select": "SELECT … FROM tl", "where": "…", "orderBy": "…",
//                "tables": ["tl"], "parameters": ["taseID"] },
//     "formulas": { "Seurannimi": "", "Otsake": "Tililuettelo" },
//     "title": ["{Seurannimi}", "{Otsake}", "{Jakso}"],
//     "columns": [ { "field": "Tili", "caption": "Tili", "width": 3, "align": "left",
//                    "format": "text|money|date|integer|percentage", "total": false } ],
//     "groups": [ { "field": "Ryhma", "header": "{Ryhma}", "totalCaption": "Yhteensä" } ],
//     "grandTotal": "Yhteensä",
//     "fonts": { "detail": { "face": "Times New Roman", "size": 10, "bold": false } }
//   }
//
// The selection formula and sort fields may name only the tables listed in "tables"; the query's
// own WHERE and ORDER BY come from "where" and "orderBy".
class ReportDefinition final {
public:
    // Reads and checks a file; a missing, empty or malformed file throws ReportError naming it.
    static ReportDefinition load(const QString& path);
    // The same from text; `name` is the report's file name for messages.
    static ReportDefinition parse(const QByteArray& json, const QString& name);

    QString name; // the file name, "tilisald.rpt"
    Orientation orientation = Orientation::Portrait;
    QString select;
    QString where;
    QString orderBy;
    QStringList tables;
    QStringList parameters;
    QMap<QString, QString> formulas; // name → default text
    QStringList title;
    QList<ReportColumn> columns;
    QList<ReportGroup> groups;
    QString grandTotal; // caption of the grand total row; empty: none
    SectionFontTable fonts;

    bool hasTotals() const;
    // The formula of a name as the definition spells it, case-insensitively; "" when it has none.
    QString formulaName(const QString& name) const;
};
