#pragma once

#include "core/ProgramSettings.h"
#include "printing/PageModel.h"
#include "printing/ReportData.h"
#include "printing/ReportDefinition.h"

#include <QDate>
#include <QMap>
#include <QSizeF>
#include <memory>
#include <vector>

// What the layout needs besides the definition and the rows.
struct LayoutOptions {
    SectionFontTable fonts; // the definition's fonts with the settings' section fonts applied
    ReportMargins margins; // twips; 0 takes the layout's own 15 mm
    bool landscape = false;
    QDate printDate = QDate::currentDate();
    QMap<QString, QString> formulas; // by the definition's names
    QString period; // "1.1.2011 - 31.12.2011", or empty
};

// A laid-out report: pages of positioned text runs and rules on A4. The page breaks are
// computed at once (a cheap pass over row heights); the runs of a page are made only when the
// page is asked for, so the first page of a long report shows at once and a PDF writer goes
// through thousands of pages without holding them all.
class ReportDocument final {
public:
    ReportDocument(
        ReportDefinition definition, std::shared_ptr<const ReportData> data, LayoutOptions options);

    int pageCount() const { return int(m_pageStarts.size()); }
    QSizeF pageSize() const { return { m_pageWidth, m_pageHeight }; }
    bool landscape() const { return m_options.landscape; }
    const std::vector<PageFont>& fonts() const { return m_fonts; }
    ReportPage page(int index) const;

    const ReportDefinition& definition() const { return m_definition; }
    const ReportData& data() const { return *m_data; }
    // The title lines as printed on the first page ("Esimerkkiyhdistys ry", "Tilien saldot").
    const QStringList& titleLines() const { return m_titleLines; }
    // A formula's text as the report prints it; empty when the report has no such formula.
    QString formula(const QString& name) const;
    // "Esimerkkiyhdistys ry - Tilien saldot": for the window caption, the PDF and spreadsheets.
    QString title() const;
    // A column's caption with its formulas filled in ("Loppusaldo 0512").
    QString columnCaption(int column) const { return PageText::toUnicode(m_captions[size_t(column)]); }

    // The rows as a spreadsheet gets them, in printing order: group headers, detail rows, group
    // and grand totals. Each cell is a number, a date, a text or null.
    enum class RowKind { GroupHeader, Detail, GroupTotal, GrandTotal, GroupFooter, Summary };
    struct TableRow {
        RowKind kind;
        QVariantList cells; // one per column
        // A detail row of a report whose rows vary in style (a statement): its level below the
        // main groups and whether it is printed in bold.
        int level = 0;
        bool bold = false;
        int group = -1; // a group header's group level
    };
    std::vector<TableRow> tableRows() const;

    // The page as text on a character grid, with rules drawn as dashes: for tests and golden
    // files. One character stands for `pointsPerChar` points across.
    QString pageText(int index, double pointsPerChar = 4.5) const;
    // The runs' texts in drawing order, one per line.
    QString pageRunTexts(int index) const;

private:
    enum class Kind : quint8 { GroupHeader, Detail, GroupTotal, GrandTotal, Empty, GroupFooter, Summary };
    struct Item {
        Kind kind;
        quint8 level; // group level
        quint8 lines = 1; // text lines of a group header or detail row whose texts wrap
        qint32 index; // row, block of totals, or summary line
    };
    // A text with fields and formulas, compiled once: formulas and the period are fixed for the
    // document, fields are read from a row when the text is drawn.
    struct Template {
        struct Part {
            QByteArray literal; // UTF-8, as the page holds it
            int field = -1;
        };
        std::vector<Part> parts;
        int onlyField = -1; // the text is one field and nothing else
        bool hasNoParts() const { return parts.empty(); }
    };
    struct Cell {
        Template text;
        int from = 0;
        int to = 0;
        bool wrap = false;
        CellAlign align = CellAlign::Left;
    };
    using Line = std::vector<Cell>;

    Template compile(const QString& text) const;
    void render(QByteArray& out, const Template& t, int row) const;
    Line compileCells(const QList<ReportCell>& cells) const;
    // The pieces (offset, length) of `text` that fit `width` line by line, at most `maxLines`.
    std::vector<std::pair<qsizetype, qsizetype>> wrap(
        const PageFont& font, const char* text, qsizetype length, float width, int maxLines) const;
    float spanWidth(const Cell& cell) const;
    // `suffix` is appended to the line's last cell: " (jatkuu)" on a heading repeated on the next page.
    int cellLines(const Line& line, quint8 font, int row, const QByteArray& suffix = {}) const;
    void addLine(ReportPage& page, const Line& line, float top, float lineHeight, quint8 font, int row,
        const QByteArray& suffix = {}) const;
    // The text lines of a detail row: its texts wrap rather than being cut.
    int detailLines(int row) const;
    float detailIndent(int column, int row) const;
    float detailWidth(int column, int row) const;
    // Wraps the text appended at `offset` over lines `step` apart.
    void placeWrapped(ReportPage& page, quint32 offset, int from, int to, CellAlign align,
        float firstBaseline, float step, quint8 font, float width, int maxLines, float indent = 0) const;
    quint8 detailFont(int row) const;
    void addGroupHeader(ReportPage& page, float top, const Item& item, bool continued) const;
    QVariantList tableCells(const Line& line, int row) const;
    void buildItems();
    void paginate();
    float height(const Item& item) const;
    QString expand(const QString& text, int row) const;
    quint8 fontIndex(Section section, bool bold, bool italic);
    const PageFont& font(quint8 index) const { return m_fonts[index]; }
    float firstBodyTop() const;
    float otherBodyTop() const;
    void addText(ReportPage& page, float x, float y, quint8 font, const QByteArray& text) const;
    void placeCell(ReportPage& page, int column, float y, quint8 font, quint32 offset) const;
    void placeSpan(ReportPage& page, int from, int to, CellAlign align, float y, quint8 font, quint32 offset,
        float indent = 0) const;
    void addDetail(ReportPage& page, float top, int lines, int row) const;
    void addCell(ReportPage& page, int column, float y, quint8 font, const QByteArray& text) const;
    void addTotals(ReportPage& page, float top, float line, quint8 font, int block, const QByteArray& caption,
        bool columnRules) const;

    ReportDefinition m_definition;
    std::shared_ptr<const ReportData> m_data;
    LayoutOptions m_options;
    std::vector<PageFont> m_fonts;
    QStringList m_titleLines;
    QString m_runningTitle;

    std::vector<Item> m_items;
    std::vector<std::vector<qint64>> m_totals; // per totals block, one sum per column
    std::vector<int> m_totalRows; // first row of each block's group; -1 for the grand total
    std::vector<int> m_columnField; // data field of each column
    std::vector<int> m_groupField;
    std::vector<int> m_detailColumns; // the columns drawn in detail rows
    std::vector<QByteArray> m_captions; // the column captions with their formulas
    // The row style's fields and the indented column; -1 when not used.
    int m_indentField = -1, m_indentColumn = -1, m_boldField = -1, m_ruleField = -1;
    std::vector<Template> m_groupHeaders, m_groupTotals;
    std::vector<Line> m_headerCells, m_footerCells; // per group level
    std::vector<Line> m_summary;
    Template m_grandTotal;
    std::vector<int> m_pageStarts; // first item of each page
    // The group headings repeated at the top of each page, "(jatkuu)": the groups a page break cut,
    // as the items that began them and their lines with the mark.
    struct Repeated {
        int item;
        quint8 lines;
    };
    std::vector<std::vector<Repeated>> m_pageContinued;

    // Geometry in points.
    float m_pageWidth = 0, m_pageHeight = 0;
    float m_left = 0, m_right = 0, m_top = 0, m_bottom = 0;
    float m_bodyBottom = 0;
    std::vector<float> m_columnLeft, m_columnRight;
    float m_padding = 3;
    // Font indexes of the sections.
    quint8 m_titleFont = 0, m_headerFont = 0, m_detailFont = 0, m_groupFont = 0, m_totalFont = 0,
           m_footerFont = 0, m_runningFont = 0, m_detailBoldFont = 0;
    float m_titleLine = 0, m_headerLine = 0, m_detailLine = 0, m_groupLine = 0, m_totalLine = 0,
          m_footerLine = 0;
    float m_groupTextLine = 0; // each further line of a wrapped group header
};
