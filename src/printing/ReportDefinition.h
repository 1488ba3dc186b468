#pragma once

#include "printing/SectionFonts.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <optional>

// How a report column shows its value.
enum class CellFormat { Text, Money, Date, Integer, Percentage };
enum class CellAlign { Left, Right, Center };

struct ReportColumn {
    QString field; // a column of the query's result
    QString caption; // "{Formula}" is replaced
    double width = 1; // share of the printable width, relative to the other columns
    CellAlign align = CellAlign::Left;
    CellFormat format = CellFormat::Text;
    bool total = false; // summed in group and grand totals (money and integer columns)
    // False: the column is left blank in detail rows (its values are shown by group header
    // cells); spreadsheets still get them on every row.
    bool detail = true;
    // A running balance computed from the rows rather than read from the query: `runningStart`
    // (a field, taken at the first row of each outermost group) plus `runningPlus` minus
    // `runningMinus` of every row so far in the group. Empty: the query gives the column.
    QString runningStart;
    QString runningPlus;
    QString runningMinus;
    bool running() const { return !runningPlus.isEmpty(); }
};

// A text placed in the columns of a line of its own: a group header or footer, or a summary
// line at the end of the report. The text is cut to its columns, or wrapped onto more lines.
struct ReportCell {
    QString column; // the field of the column where the text starts
    QString to; // the field of the last column it may use; empty: its own column only
    QString text; // "{field}" and "{Formula}" are replaced
    bool wrap = false;
    std::optional<CellAlign> align; // the column's alignment when not given
};

struct ReportGroup {
    QString field; // rows with the same value form a group; the rows come sorted by it
    QString header; // "{field}" and "{Formula}" are replaced
    QString totalCaption; // empty: the group has no total row
    // In place of `header`: texts placed in the columns of the header line.
    QList<ReportCell> headerCells;
    // A line after the group's total row (fields read from the group's last row).
    QList<ReportCell> footerCells;
};

enum class Orientation { Portrait, Landscape, Setting };

// How detail rows vary by their own values: a statement indents its captions by level and
// prints its totals in bold with a rule above the amounts. Each names an integer field of the
// query; empty: not used.
struct ReportRowStyle {
    QString indentField; // the level: the caption moves right by `indentStep` points per level
    QString indentColumn; // the column whose text is indented
    double indentStep = 0;
    QString boldField; // not 0: the row is printed in bold
    QString ruleField; // not 0: a rule above the row's amounts
};

// A report definition file (*.rpt): Vorkam's own JSON description of a report's data and layout.
//
//   {
//     "orientation": "portrait" | "landscape" | "setting" (VaakaTulostus decides),
//     "query": { "select": "SELECT … FROM tl", "where": "…", "orderBy": "…",
//                "tables": ["tl"], "parameters": ["taseID"] },
//     "formulas": { "Seurannimi": "", "Otsake": "Tililuettelo" },
//     "title": ["{Seurannimi}", "{Otsake}", "{Jakso}"],
//     "columns": [ { "field": "Tili", "caption": "Tili", "width": 3, "align": "left",
//                    "format": "text|money|date|integer|percentage", "total": false,
//                    "running": { "start": "Alkusaldo", "plus": "Debet", "minus": "Kredit" } } ],
//     "groups": [ { "field": "Ryhma", "header": "{Ryhma}", "totalCaption": "Yhteensä",
//                   "headerCells": [ { "column": "Tili", "to": "Nimi", "text": "{Selite}",
//                                      "wrap": true, "align": "left" } ],
//                   "footerCells": [ … ] } ],
//     "grandTotal": "Yhteensä",
//     "summary": [ [ { "column": "Numero", "text": "Tositteita {Tositteita}" } ], … ],
//     "fields": { "Selite": "text" },
//     "fonts": { "detail": { "face": "Times New Roman", "size": 10, "bold": false } },
//     "rowStyle": { "indent": { "field": "Taso", "column": "Rivi", "step": 10 },
//                   "bold": "Korostus", "rule": "Viiva" }
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
    // Rows added after the selected ones ("UNION ALL"), which the selection formula does not
    // filter; the sort fields and "orderBy" must then name columns of "select".
    QString unionAll;
    QString orderBy;
    QStringList tables;
    QStringList parameters;
    QMap<QString, QString> formulas; // name → default text
    QStringList title;
    QList<ReportColumn> columns;
    QList<ReportGroup> groups;
    QString grandTotal; // caption of the grand total row; empty: none
    // Lines after the grand total, each of cells; formulas give their values.
    QList<QList<ReportCell>> summary;
    // Fields of the query that no column shows but cells do, with their formats. In a grouped
    // report they hold one value per outermost group (a voucher's description, an account's
    // balance) and are read at the group's first row only.
    QMap<QString, CellFormat> fields;
    SectionFontTable fonts;
    ReportRowStyle rowStyle;

    bool hasTotals() const;
    // The formula of a name as the definition spells it, case-insensitively; "" when it has none.
    QString formulaName(const QString& name) const;
};
