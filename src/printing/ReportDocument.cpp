#include "printing/ReportDocument.h"

#include "core/Dates.h"
#include "printing/ReportError.h"
#include "printing/TextMetrics.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <map>

namespace {

constexpr float A4Width = 595.276f;
constexpr float A4Height = 841.89f;
constexpr float DefaultMargin = 42.52f; // 15 mm
constexpr char Ellipsis[] = "\xE2\x80\xA6"; // … in UTF-8
// A wrapped text longer than this many lines is cut.
constexpr int MaxWrappedLines = 12;
constexpr char Continued[] = " (jatkuu)";

float marginPoints(int twips) { return twips > 0 ? float(twips) / 20.0f : DefaultMargin; }

// The baseline of a line `height` high whose top is at `top`.
float baseline(float top, float height) { return top + height * 0.78f; }

const QRegularExpression& placeholder()
{
    static const QRegularExpression re(QStringLiteral(R"(\{([^{}]+)\})"));
    return re;
}

} // namespace

ReportDocument::ReportDocument(
    ReportDefinition definition, std::shared_ptr<const ReportData> data, LayoutOptions options)
    : m_definition(std::move(definition))
    , m_data(std::move(data))
    , m_options(std::move(options))
{
    const auto& f = m_options.fonts;
    const auto sectionFont = [&](Section s) { return f[size_t(s)]; };
    m_titleFont
        = fontIndex(Section::Title, sectionFont(Section::Title).bold, sectionFont(Section::Title).italic);
    m_headerFont
        = fontIndex(Section::Header, sectionFont(Section::Header).bold, sectionFont(Section::Header).italic);
    m_detailFont
        = fontIndex(Section::Detail, sectionFont(Section::Detail).bold, sectionFont(Section::Detail).italic);
    m_groupFont
        = fontIndex(Section::Group, sectionFont(Section::Group).bold, sectionFont(Section::Group).italic);
    m_totalFont
        = fontIndex(Section::Total, sectionFont(Section::Total).bold, sectionFont(Section::Total).italic);
    m_footerFont
        = fontIndex(Section::Footer, sectionFont(Section::Footer).bold, sectionFont(Section::Footer).italic);
    m_runningFont = fontIndex(Section::Footer, false, true);
    m_detailBoldFont = fontIndex(Section::Detail, true, sectionFont(Section::Detail).italic);
    m_titleLine = font(m_titleFont).size * 1.35f;
    m_headerLine = font(m_headerFont).size * 1.5f;
    m_detailLine = font(m_detailFont).size * 1.3f;
    m_groupLine = font(m_groupFont).size * 1.3f + 3;
    m_totalLine = font(m_totalFont).size * 1.3f + 4;
    m_footerLine = font(m_footerFont).size * 1.4f;
    m_groupTextLine = font(m_groupFont).size * 1.3f;

    m_pageWidth = m_options.landscape ? A4Height : A4Width;
    m_pageHeight = m_options.landscape ? A4Width : A4Height;
    m_left = marginPoints(m_options.margins.left);
    m_right = m_pageWidth - marginPoints(m_options.margins.right);
    m_top = marginPoints(m_options.margins.top);
    m_bottom = m_pageHeight - marginPoints(m_options.margins.bottom);
    m_bodyBottom = m_bottom - m_footerLine - 4;
    if (m_right - m_left < 72 || m_bodyBottom - m_top < 144)
        throw ReportError(QStringLiteral("Raportin %1 reunukset ovat niin leveät, ettei sivulle jää tilaa. "
                                         "Pienennä reunuksia asetuksista.")
                              .arg(m_definition.name));

    double weights = 0;
    for (const ReportColumn& c : m_definition.columns)
        weights += c.width;
    double x = m_left;
    for (const ReportColumn& c : m_definition.columns) {
        const int field = m_data->fieldIndex(c.field);
        if (field < 0)
            throw ReportError(QStringLiteral("Raportin %1 saraketta %2 ei ole sen tiedoissa.")
                                  .arg(m_definition.name, c.field));
        m_columnField.push_back(field);
        m_columnLeft.push_back(float(x));
        x += (m_right - m_left) * c.width / weights;
        m_columnRight.push_back(float(x));
    }
    for (int c = 0; c < int(m_definition.columns.size()); ++c)
        if (m_definition.columns[c].detail)
            m_detailColumns.push_back(c);
    for (const ReportGroup& g : m_definition.groups) {
        const int field = m_data->fieldIndex(g.field);
        if (field < 0)
            throw ReportError(QStringLiteral("Raportin %1 ryhmän kenttää %2 ei ole sen tiedoissa.")
                                  .arg(m_definition.name, g.field));
        m_groupField.push_back(field);
        m_groupHeaders.push_back(compile(g.header));
        m_groupTotals.push_back(compile(g.totalCaption));
        m_headerCells.push_back(compileCells(g.headerCells));
        m_footerCells.push_back(compileCells(g.footerCells));
    }
    for (const QList<ReportCell>& line : m_definition.summary)
        m_summary.push_back(compileCells(line));
    for (const QString& line : m_definition.title) {
        const QString text = expand(line, -1).trimmed();
        if (!text.isEmpty())
            m_titleLines.append(text);
    }
    m_grandTotal = compile(m_definition.grandTotal);
    m_runningTitle = title();
    for (const ReportColumn& c : m_definition.columns)
        m_captions.push_back(PageText::fromUnicode(expand(c.caption, -1)));
    const ReportRowStyle& style = m_definition.rowStyle;
    m_indentField = style.indentField.isEmpty() ? -1 : m_data->fieldIndex(style.indentField);
    m_boldField = style.boldField.isEmpty() ? -1 : m_data->fieldIndex(style.boldField);
    m_ruleField = style.ruleField.isEmpty() ? -1 : m_data->fieldIndex(style.ruleField);
    for (int c = 0; c < int(m_definition.columns.size()); ++c)
        if (m_definition.columns[c].field.compare(style.indentColumn, Qt::CaseInsensitive) == 0)
            m_indentColumn = c;

    buildItems();
    paginate();
}

quint8 ReportDocument::fontIndex(Section section, bool bold, bool italic)
{
    const FontSpec& style = m_options.fonts[size_t(section)];
    const PageFont f { SectionFonts::family(style.face), bold, italic, float(style.size) };
    const auto it = std::find(m_fonts.begin(), m_fonts.end(), f);
    if (it != m_fonts.end())
        return quint8(it - m_fonts.begin());
    m_fonts.push_back(f);
    return quint8(m_fonts.size() - 1);
}

QString ReportDocument::expand(const QString& text, int row) const
{
    QString out;
    qsizetype last = 0;
    QRegularExpressionMatchIterator it = placeholder().globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        out += text.mid(last, m.capturedStart() - last);
        last = m.capturedEnd();
        const QString name = m.captured(1).trimmed();
        const QString formula = m_definition.formulaName(name);
        if (!formula.isEmpty()) {
            out += m_options.formulas.value(formula, m_definition.formulas.value(formula));
        } else if (name.compare(QLatin1String("Jakso"), Qt::CaseInsensitive) == 0) {
            out += m_options.period;
        } else if (const int field = m_data->fieldIndex(name); field >= 0) {
            if (row >= 0)
                out += m_data->display(row, field);
        } else {
            throw ReportError(
                QStringLiteral("Raportin %1 tekstissä \"%2\" on tuntematon kaava tai kenttä {%3}.")
                    .arg(m_definition.name, text, name));
        }
    }
    out += text.mid(last);
    return out;
}

ReportDocument::Template ReportDocument::compile(const QString& text) const
{
    Template t;
    QString literal;
    const auto flush = [&] {
        if (!literal.isEmpty())
            t.parts.push_back({ PageText::fromUnicode(literal), -1 });
        literal.clear();
    };
    qsizetype last = 0;
    QRegularExpressionMatchIterator it = placeholder().globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        literal += text.mid(last, m.capturedStart() - last);
        last = m.capturedEnd();
        const QString name = m.captured(1).trimmed();
        const QString formula = m_definition.formulaName(name);
        if (!formula.isEmpty()) {
            literal += m_options.formulas.value(formula, m_definition.formulas.value(formula));
        } else if (name.compare(QLatin1String("Jakso"), Qt::CaseInsensitive) == 0) {
            literal += m_options.period;
        } else if (const int field = m_data->fieldIndex(name); field >= 0) {
            flush();
            t.parts.push_back({ {}, field });
        } else {
            throw ReportError(
                QStringLiteral("Raportin %1 tekstissä \"%2\" on tuntematon kaava tai kenttä {%3}.")
                    .arg(m_definition.name, text, name));
        }
    }
    literal += text.mid(last);
    flush();
    if (t.parts.size() == 1 && t.parts.front().field >= 0)
        t.onlyField = t.parts.front().field;
    return t;
}

void ReportDocument::render(QByteArray& out, const Template& t, int row) const
{
    for (const Template::Part& part : t.parts) {
        if (part.field < 0)
            out += part.literal;
        else if (row >= 0)
            m_data->appendDisplay(out, row, part.field);
    }
}

ReportDocument::Line ReportDocument::compileCells(const QList<ReportCell>& cells) const
{
    const auto columnOf = [this](const QString& field) {
        for (int i = 0; i < int(m_definition.columns.size()); ++i)
            if (m_definition.columns[i].field.compare(field, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    };
    Line line;
    for (const ReportCell& c : cells) {
        Cell cell;
        cell.text = compile(c.text);
        cell.from = columnOf(c.column);
        cell.to = c.to.isEmpty() ? cell.from : columnOf(c.to);
        if (cell.from < 0 || cell.to < cell.from)
            throw ReportError(QStringLiteral("Raportin %1 solun sarakkeita %2–%3 ei ole.")
                                  .arg(m_definition.name, c.column, c.to));
        cell.wrap = c.wrap;
        cell.align = c.align.value_or(m_definition.columns[cell.from].align);
        line.push_back(std::move(cell));
    }
    return line;
}

float ReportDocument::spanWidth(const Cell& cell) const
{
    return m_columnRight[size_t(cell.to)] - m_columnLeft[size_t(cell.from)] - 2 * m_padding;
}

std::vector<std::pair<qsizetype, qsizetype>> ReportDocument::wrap(
    const PageFont& font, const char* text, qsizetype length, float width, int maxLines) const
{
    // Greedy, at blanks; a word wider than the line is broken where it overflows. The last
    // allowed line takes the rest, which the placement cuts with an ellipsis.
    std::vector<std::pair<qsizetype, qsizetype>> lines;
    const TextMetrics::Advances& advances = TextMetrics::advances(font.family, font.bold, font.italic);
    const float limit = width / font.size;
    qsizetype start = 0;
    const auto skipBlanks = [&] {
        while (start < length && text[start] == ' ')
            ++start;
    };
    skipBlanks();
    while (start < length && int(lines.size()) < maxLines - 1) {
        float w = 0;
        qsizetype i = start;
        qsizetype lastBlank = -1;
        while (i < length) {
            const char* p = text + i;
            const float a = advances[PageText::next(p)];
            if (w + a > limit)
                break;
            if (text[i] == ' ')
                lastBlank = i;
            w += a;
            i = p - text;
        }
        if (i >= length)
            break;
        const qsizetype end
            = lastBlank > start ? lastBlank : std::max(i, start + PageText::charLength(text[start]));
        lines.emplace_back(start, end - start);
        start = end;
        skipBlanks();
    }
    qsizetype end = length;
    while (end > start && text[end - 1] == ' ')
        --end;
    if (end > start || lines.empty())
        lines.emplace_back(start, end - start);
    return lines;
}

int ReportDocument::cellLines(const Line& line, quint8 f, int row, const QByteArray& suffix) const
{
    int lines = 1;
    QByteArray text;
    for (const Cell& cell : line) {
        if (!cell.wrap)
            continue;
        text.clear();
        render(text, cell.text, row);
        if (&cell == &line.back())
            text += suffix;
        const float width = spanWidth(cell);
        if (TextMetrics::width(font(f), text) <= width)
            continue;
        lines = std::max(
            lines, int(wrap(font(f), text.constData(), text.size(), width, MaxWrappedLines).size()));
    }
    return lines;
}

void ReportDocument::addLine(ReportPage& page, const Line& line, float firstBaseline, float step, quint8 f,
    int row, const QByteArray& suffix) const
{
    for (const Cell& cell : line) {
        const quint32 offset = quint32(page.text.size());
        render(page.text, cell.text, row);
        if (&cell == &line.back())
            page.text += suffix;
        if (quint32(page.text.size()) == offset)
            continue;
        const float width = spanWidth(cell);
        if (!cell.wrap
            || TextMetrics::width(font(f), page.text.constData() + offset, page.text.size() - offset)
                <= width) {
            placeSpan(page, cell.from, cell.to, cell.align, firstBaseline, f, offset);
            continue;
        }
        placeWrapped(
            page, offset, cell.from, cell.to, cell.align, firstBaseline, step, f, width, MaxWrappedLines);
    }
}

void ReportDocument::placeWrapped(ReportPage& page, quint32 offset, int from, int to, CellAlign align,
    float firstBaseline, float step, quint8 f, float width, int maxLines, float indent) const
{
    const QByteArray whole = page.text.mid(offset);
    page.text.resize(offset);
    float y = firstBaseline;
    for (const auto& [start, length] : wrap(font(f), whole.constData(), whole.size(), width, maxLines)) {
        const quint32 at = quint32(page.text.size());
        page.text.append(whole.constData() + start, length);
        placeSpan(page, from, to, align, y, f, at, indent);
        y += step;
    }
}

QVariantList ReportDocument::tableCells(const Line& line, int row) const
{
    QVariantList cells(int(m_definition.columns.size()));
    for (const Cell& cell : line) {
        if (cell.text.onlyField >= 0 && row >= 0) {
            cells[cell.from] = m_data->value(row, cell.text.onlyField);
        } else {
            QByteArray text;
            render(text, cell.text, row);
            // Two texts of one line in the same column share its cell.
            const QString before = cells[cell.from].toString();
            cells[cell.from]
                = before.isEmpty() ? PageText::toUnicode(text) : before + u' ' + PageText::toUnicode(text);
        }
    }
    return cells;
}

QString ReportDocument::formula(const QString& name) const
{
    const QString f = m_definition.formulaName(name);
    return f.isEmpty() ? QString() : m_options.formulas.value(f, m_definition.formulas.value(f));
}

QString ReportDocument::title() const { return m_titleLines.mid(0, 2).join(QStringLiteral(" - ")); }

void ReportDocument::buildItems()
{
    const int rows = m_data->rowCount();
    const int columns = int(m_definition.columns.size());
    const int levels = int(m_groupField.size());
    std::vector<int> totalColumns;
    for (int c = 0; c < columns; ++c)
        if (m_definition.columns[c].total)
            totalColumns.push_back(c);
    std::vector<qint64> grand(size_t(columns), 0);
    std::vector<std::vector<qint64>> open(size_t(levels), std::vector<qint64>(size_t(columns), 0));
    std::vector<int> openRow(size_t(levels), 0);
    m_items.reserve(size_t(rows) + 2);

    const auto close = [&](int level, int lastRow) {
        for (int k = levels - 1; k >= level; --k) {
            if (!m_definition.groups[k].totalCaption.isEmpty()) {
                m_totals.push_back(open[size_t(k)]);
                m_totalRows.push_back(openRow[size_t(k)]);
                m_items.push_back({ Kind::GroupTotal, quint8(k), 1, qint32(m_totals.size() - 1) });
            }
            if (!m_footerCells[size_t(k)].empty())
                m_items.push_back({ Kind::GroupFooter, quint8(k), 1, lastRow });
        }
    };
    for (int r = 0; r < rows; ++r) {
        int changed = r == 0 ? 0 : levels;
        for (int k = 0; k < levels && changed == levels; ++k)
            if (!m_data->sameValue(r, r - 1, m_groupField[size_t(k)]))
                changed = k;
        if (r > 0 && changed < levels)
            close(changed, r - 1);
        for (int k = changed; k < levels; ++k) {
            std::fill(open[size_t(k)].begin(), open[size_t(k)].end(), 0);
            openRow[size_t(k)] = r;
            const Line& cells = m_headerCells[size_t(k)];
            const int lines = cells.empty() ? 1 : cellLines(cells, m_groupFont, r);
            m_items.push_back({ Kind::GroupHeader, quint8(k), quint8(lines), r });
        }
        m_items.push_back({ Kind::Detail, 0, quint8(detailLines(r)), r });
        for (const int c : totalColumns) {
            const qint64 v = m_data->numberAt(r, m_columnField[size_t(c)]);
            grand[size_t(c)] += v;
            for (int k = 0; k < levels; ++k)
                open[size_t(k)][size_t(c)] += v;
        }
    }
    if (rows > 0)
        close(0, rows - 1);
    else
        m_items.push_back({ Kind::Empty, 0, 1, 0 });
    if (!m_definition.grandTotal.isEmpty() && !totalColumns.empty()) {
        m_totals.push_back(grand);
        m_totalRows.push_back(-1);
        m_items.push_back({ Kind::GrandTotal, 0, 1, qint32(m_totals.size() - 1) });
    }
    for (int i = 0; i < int(m_summary.size()); ++i)
        m_items.push_back({ Kind::Summary, 0, 1, i });
}

float ReportDocument::height(const Item& item) const
{
    switch (item.kind) {
    case Kind::GroupHeader:
        return m_groupLine + float(item.lines - 1) * m_groupTextLine;
    case Kind::Detail:
        return m_detailLine * float(item.lines);
    case Kind::Empty:
        return m_detailLine;
    case Kind::GroupTotal:
    case Kind::GroupFooter:
    case Kind::Summary:
        return m_totalLine;
    case Kind::GrandTotal:
        return m_totalLine + 4;
    }
    return m_detailLine;
}

float ReportDocument::firstBodyTop() const
{
    return m_top + float(m_titleLines.size()) * m_titleLine + 6 + m_headerLine + 3;
}

float ReportDocument::otherBodyTop() const { return m_top + m_footerLine + 4 + m_headerLine + 3; }

void ReportDocument::paginate()
{
    m_pageStarts.push_back(0);
    m_pageContinued.emplace_back();
    const int levels = int(m_groupField.size());
    std::vector<int> header(size_t(levels), -1); // the latest heading item of each level
    float top = firstBodyTop();
    float y = top;
    for (size_t i = 0; i < m_items.size(); ++i) {
        const Item& item = m_items[i];
        const float h = height(item);
        // A group header is not left alone at the foot of a page.
        const float need = h + (item.kind == Kind::GroupHeader ? m_detailLine : 0);
        if (y + need > m_bodyBottom && y > top) {
            m_pageStarts.push_back(int(i));
            // The groups the break cuts: all open ones above a new heading; a total still
            // belongs to its group.
            int continued = 0;
            switch (item.kind) {
            case Kind::Detail:
                continued = levels;
                break;
            case Kind::GroupHeader:
                continued = item.level;
                break;
            case Kind::GroupTotal:
            case Kind::GroupFooter:
                continued = item.level + 1;
                break;
            default:
                break;
            }
            std::vector<Repeated> repeated;
            top = otherBodyTop();
            for (int k = 0; k < continued; ++k) {
                const Line& cells = m_headerCells[size_t(k)];
                if (header[size_t(k)] < 0 || (cells.empty() && m_groupHeaders[size_t(k)].hasNoParts()))
                    continue;
                Item heading = m_items[size_t(header[size_t(k)])];
                heading.lines
                    = quint8(cells.empty() ? 1 : cellLines(cells, m_groupFont, heading.index, Continued));
                repeated.push_back({ header[size_t(k)], heading.lines });
                top += height(heading);
            }
            m_pageContinued.push_back(std::move(repeated));
            y = top;
        }
        if (item.kind == Kind::GroupHeader) {
            header[item.level] = int(i);
            std::fill(header.begin() + item.level + 1, header.end(), -1);
        }
        y += h;
    }
}

void ReportDocument::addText(ReportPage& page, float x, float y, quint8 f, const QByteArray& text) const
{
    const quint32 offset = quint32(page.text.size());
    page.text.append(text);
    page.text.append('\0');
    page.runs.push_back({ x, y, offset, quint32(text.size()), f, quint8(CellAlign::Left) });
}

void ReportDocument::placeCell(ReportPage& page, int column, float y, quint8 f, quint32 offset) const
{
    placeSpan(page, column, column, m_definition.columns[column].align, y, f, offset);
}

void ReportDocument::placeSpan(ReportPage& page, int from, int to, CellAlign align, float y, quint8 f,
    quint32 offset, float indent) const
{
    // The text was appended to page.text at `offset`; it is cut to the columns and aligned.
    const PageFont& pf = font(f);
    const float left
        = std::min(m_columnLeft[size_t(from)] + indent, m_columnRight[size_t(to)] - 2 * m_padding);
    const float right = m_columnRight[size_t(to)];
    const float available = right - left - 2 * m_padding;
    quint32 length = quint32(page.text.size()) - offset;
    float w = TextMetrics::width(pf, page.text.constData() + offset, length);
    if (w > available) {
        const float ellipsis = TextMetrics::width(pf, Ellipsis, 3);
        while (length > 0 && w + ellipsis > available) {
            do
                --length;
            while (length > 0 && (static_cast<unsigned char>(page.text[offset + length]) & 0xC0) == 0x80);
            w = TextMetrics::width(pf, page.text.constData() + offset, length);
        }
        page.text.resize(offset + length);
        page.text.append(Ellipsis, 3);
        length += 3;
        w += ellipsis;
    }
    page.text.append('\0');
    float x = left + m_padding;
    if (align == CellAlign::Right)
        x = right - m_padding - w;
    else if (align == CellAlign::Center)
        x = (left + right - w) / 2;
    page.runs.push_back({ x, y, offset, length, f, quint8(align) });
}

quint8 ReportDocument::detailFont(int row) const
{
    return m_boldField >= 0 && m_data->numberAt(row, m_boldField) != 0 ? m_detailBoldFont : m_detailFont;
}

float ReportDocument::detailIndent(int c, int row) const
{
    return c == m_indentColumn && m_indentField >= 0
        ? std::max(0.0f, float(m_data->numberAt(row, m_indentField) * m_definition.rowStyle.indentStep))
        : 0;
}

float ReportDocument::detailWidth(int c, int row) const
{
    const float left
        = std::min(m_columnLeft[size_t(c)] + detailIndent(c, row), m_columnRight[size_t(c)] - 2 * m_padding);
    return m_columnRight[size_t(c)] - left - 2 * m_padding;
}

int ReportDocument::detailLines(int row) const
{
    int lines = 1;
    const PageFont& f = font(detailFont(row));
    QByteArray text;
    for (const int c : m_detailColumns) {
        const int field = m_columnField[size_t(c)];
        if (m_data->fields()[size_t(field)].format != CellFormat::Text || m_data->isNull(row, field))
            continue;
        const float width = detailWidth(c, row);
        if (TextMetrics::width(f, m_data->text(row, field)) <= width)
            continue;
        text.clear();
        m_data->appendDisplay(text, row, field);
        lines = std::max(lines, int(wrap(f, text.constData(), text.size(), width, MaxWrappedLines).size()));
    }
    return lines;
}

void ReportDocument::addDetail(ReportPage& page, float top, int lines, int row) const
{
    const float b = baseline(top, m_detailLine);
    const quint8 f = detailFont(row);
    const bool rule = m_ruleField >= 0 && m_data->numberAt(row, m_ruleField) != 0;
    for (const int c : m_detailColumns) {
        const quint32 offset = quint32(page.text.size());
        m_data->appendDisplay(page.text, row, m_columnField[size_t(c)]);
        if (quint32(page.text.size()) == offset)
            continue;
        const ReportColumn& column = m_definition.columns[c];
        const float indent = detailIndent(c, row);
        const float width = detailWidth(c, row);
        if (lines > 1 && m_data->fields()[size_t(m_columnField[size_t(c)])].format == CellFormat::Text
            && TextMetrics::width(font(f), page.text.constData() + offset, page.text.size() - offset) > width)
            // The text goes on over the row's further lines.
            placeWrapped(page, offset, c, c, column.align, b, m_detailLine, f, width, lines, indent);
        else
            placeSpan(page, c, c, column.align, b, f, offset, indent);
        // A total's amounts are set off from the lines they sum.
        if (rule && column.format == CellFormat::Money)
            page.rules.push_back({ m_columnLeft[size_t(c)] + m_padding, top + 0.5f,
                m_columnRight[size_t(c)] - m_padding, top + 0.5f, 0.5f });
    }
}

void ReportDocument::addGroupHeader(ReportPage& page, float y, const Item& item, bool continued) const
{
    const QByteArray suffix = continued ? QByteArray(Continued) : QByteArray();
    const float b = baseline(y + 3, m_groupLine - 3);
    const Line& cells = m_headerCells[item.level];
    if (!cells.empty()) {
        addLine(page, cells, b, m_groupTextLine, m_groupFont, item.index, suffix);
    } else {
        QByteArray text;
        render(text, m_groupHeaders[item.level], item.index);
        addText(page, m_left + m_padding, b, m_groupFont, text + suffix);
    }
}

void ReportDocument::addCell(ReportPage& page, int column, float y, quint8 f, const QByteArray& text) const
{
    const quint32 offset = quint32(page.text.size());
    page.text.append(text);
    placeCell(page, column, y, f, offset);
}

void ReportDocument::addTotals(ReportPage& page, float top, float line, quint8 f, int block,
    const QByteArray& caption, bool columnRules) const
{
    const std::vector<qint64>& sums = m_totals[size_t(block)];
    const float y = baseline(top, line);
    const int columns = int(m_definition.columns.size());
    // The caption may use every column before the first total.
    int captionFrom = -1, captionTo = -1;
    for (int c = 0; c < columns && !m_definition.columns[c].total; ++c) {
        if (captionFrom < 0)
            captionFrom = c;
        captionTo = c;
    }
    if (captionFrom < 0) {
        for (int c = 0; c < columns && captionFrom < 0; ++c)
            if (!m_definition.columns[c].total)
                captionFrom = captionTo = c;
    }
    for (int c = 0; c < columns; ++c) {
        const ReportColumn& column = m_definition.columns[c];
        if (column.total) {
            QByteArray text;
            ReportData::appendNumber(text, sums[size_t(c)], column.format);
            addCell(page, c, y, f, text);
            if (columnRules)
                page.rules.push_back({ m_columnLeft[size_t(c)] + m_padding, top + 1.5f,
                    m_columnRight[size_t(c)] - m_padding, top + 1.5f, 0.5f });
        }
    }
    if (captionFrom >= 0 && !caption.isEmpty()) {
        const quint32 offset = quint32(page.text.size());
        page.text.append(caption);
        placeSpan(page, captionFrom, captionTo, CellAlign::Left, y, f, offset);
    }
}

ReportPage ReportDocument::page(int index) const
{
    ReportPage page;
    if (index < 0 || index >= pageCount())
        return page;
    const int first = m_pageStarts[size_t(index)];
    const int end = index + 1 < pageCount() ? m_pageStarts[size_t(index) + 1] : int(m_items.size());
    page.runs.reserve(size_t(end - first) * m_definition.columns.size() + 16);
    page.text.reserve((end - first) * 16 * qsizetype(m_definition.columns.size()) + 256);

    float y = m_top;
    if (index == 0) {
        for (const QString& line : m_titleLines) {
            addText(page, m_left, baseline(y, m_titleLine), m_titleFont, PageText::fromUnicode(line));
            y += m_titleLine;
        }
        y += 6;
    } else {
        addText(
            page, m_left, baseline(y, m_footerLine), m_runningFont, PageText::fromUnicode(m_runningTitle));
        y += m_footerLine + 4;
    }
    for (int c = 0; c < int(m_definition.columns.size()); ++c)
        addCell(page, c, baseline(y, m_headerLine), m_headerFont, m_captions[size_t(c)]);
    y += m_headerLine;
    page.rules.push_back({ m_left, y + 1, m_right, y + 1, 0.75f });
    y += 3;
    for (const Repeated& r : m_pageContinued[size_t(index)]) {
        Item heading = m_items[size_t(r.item)];
        heading.lines = r.lines;
        addGroupHeader(page, y, heading, true);
        y += height(heading);
    }

    for (int i = first; i < end; ++i) {
        const Item& item = m_items[size_t(i)];
        const float h = height(item);
        switch (item.kind) {
        case Kind::Detail:
            addDetail(page, y, item.lines, item.index);
            break;
        case Kind::GroupHeader:
            addGroupHeader(page, y, item, false);
            break;
        case Kind::GroupTotal: {
            QByteArray caption;
            render(caption, m_groupTotals[item.level], m_totalRows[size_t(item.index)]);
            addTotals(page, y, h - 2, m_totalFont, item.index, caption, true);
            break;
        }
        case Kind::GroupFooter:
            addLine(page, m_footerCells[item.level], baseline(y, h - 2), 0, m_totalFont, item.index);
            break;
        case Kind::Summary:
            addLine(page, m_summary[size_t(item.index)], baseline(y, h - 2), 0, m_totalFont, -1);
            break;
        case Kind::GrandTotal: {
            QByteArray caption;
            render(caption, m_grandTotal, -1);
            page.rules.push_back({ m_left, y + 1, m_right, y + 1, 0.75f });
            addTotals(page, y + 2, m_totalLine - 2, m_totalFont, item.index, caption, false);
            page.rules.push_back({ m_left, y + h - 2.5f, m_right, y + h - 2.5f, 0.5f });
            page.rules.push_back({ m_left, y + h - 1, m_right, y + h - 1, 0.5f });
            break;
        }
        case Kind::Empty:
            addText(page, m_left + m_padding, baseline(y, h), m_detailFont,
                PageText::fromUnicode(QStringLiteral("Raportissa ei ole rivejä.")));
            break;
        }
        y += h;
    }

    const float footerTop = m_bottom - m_footerLine;
    page.rules.push_back({ m_left, footerTop - 2, m_right, footerTop - 2, 0.5f });
    const float fb = baseline(footerTop, m_footerLine);
    addText(page, m_left, fb, m_footerFont,
        PageText::fromUnicode(QStringLiteral("Tulostettu ") + Dates::format(m_options.printDate)));
    const QByteArray pageNumber
        = "Sivu " + QByteArray::number(index + 1) + " / " + QByteArray::number(pageCount());
    const float w = TextMetrics::width(font(m_footerFont), pageNumber);
    addText(page, m_right - w, fb, m_footerFont, pageNumber);
    page.runs.back().align = quint8(CellAlign::Right);
    return page;
}

std::vector<ReportDocument::TableRow> ReportDocument::tableRows() const
{
    const auto text = [this](const Template& t, int row) {
        QByteArray bytes;
        render(bytes, t, row);
        return PageText::toUnicode(bytes);
    };
    std::vector<TableRow> rows;
    rows.reserve(m_items.size());
    const int columns = int(m_definition.columns.size());
    const auto totals = [&](RowKind kind, int block, const QString& caption) {
        TableRow row { kind, QVariantList(columns) };
        bool captionPlaced = false;
        for (int c = 0; c < columns; ++c) {
            const ReportColumn& column = m_definition.columns[c];
            const qint64 sum = m_totals[size_t(block)][size_t(c)];
            if (column.total)
                row.cells[c] = column.format == CellFormat::Money
                    ? QVariant(double(std::llround(double(sum) / 100.0)) / 100.0)
                    : QVariant(sum);
            else if (!captionPlaced) {
                row.cells[c] = caption;
                captionPlaced = true;
            }
        }
        rows.push_back(row);
    };
    for (const Item& item : m_items) {
        switch (item.kind) {
        case Kind::Detail: {
            TableRow row { RowKind::Detail, QVariantList(columns) };
            for (int c = 0; c < columns; ++c)
                row.cells[c] = m_data->value(item.index, m_columnField[size_t(c)]);
            if (m_indentField >= 0)
                row.level = int(std::max<qint64>(0, m_data->numberAt(item.index, m_indentField)));
            row.bold = m_boldField >= 0 && m_data->numberAt(item.index, m_boldField) != 0;
            rows.push_back(row);
            break;
        }
        case Kind::GroupHeader: {
            const Line& cells = m_headerCells[item.level];
            TableRow row { RowKind::GroupHeader, QVariantList(columns) };
            row.group = item.level;
            if (!cells.empty())
                row.cells = tableCells(cells, item.index);
            else
                row.cells[0] = text(m_groupHeaders[item.level], item.index);
            rows.push_back(row);
            break;
        }
        case Kind::GroupTotal:
            totals(RowKind::GroupTotal, item.index,
                text(m_groupTotals[item.level], m_totalRows[size_t(item.index)]));
            break;
        case Kind::GroupFooter:
            rows.push_back({ RowKind::GroupFooter, tableCells(m_footerCells[item.level], item.index) });
            break;
        case Kind::Summary:
            rows.push_back({ RowKind::Summary, tableCells(m_summary[size_t(item.index)], -1) });
            break;
        case Kind::GrandTotal:
            totals(RowKind::GrandTotal, item.index, text(m_grandTotal, -1));
            break;
        case Kind::Empty:
            break;
        }
    }
    return rows;
}

QString ReportDocument::pageRunTexts(int index) const
{
    const ReportPage p = page(index);
    QStringList lines;
    for (const TextRun& run : p.runs)
        lines.append(p.runText(run));
    return lines.join(u'\n');
}

QString ReportDocument::pageText(int index, double pointsPerChar) const
{
    const ReportPage p = page(index);
    // Text lines by baseline and rules by height, in order down the page.
    std::map<int, std::vector<const TextRun*>> lines;
    for (const TextRun& run : p.runs)
        lines[int(std::lround(run.y * 10))].push_back(&run);
    std::multimap<int, QString> out;
    const int width = int(std::ceil(m_pageWidth / pointsPerChar)) + 1;
    for (auto& [y, runs] : lines) {
        std::sort(runs.begin(), runs.end(), [](const TextRun* a, const TextRun* b) { return a->x < b->x; });
        QString line(width, u' ');
        int used = 0;
        for (const TextRun* run : runs) {
            const QString text = p.runText(*run);
            int col = int(std::lround(run->x / pointsPerChar));
            if (run->align == quint8(CellAlign::Right)) {
                const float w = TextMetrics::width(font(run->font), p.runBytes(*run), run->length);
                col = int(std::lround((run->x + w) / pointsPerChar)) - int(text.size());
            }
            col = std::max(col, used == 0 ? 0 : used + 1);
            if (col + text.size() > line.size())
                line.resize(col + text.size(), u' ');
            line.replace(col, text.size(), text);
            used = col + int(text.size());
        }
        // Amounts group their thousands with a no-break space; a plain one reads the same here.
        line.replace(QChar(0x00A0), u' ');
        while (!line.isEmpty() && line.back() == u' ')
            line.chop(1);
        out.emplace(y, line);
    }
    // Rules at one height share a line.
    std::map<int, QString> rules;
    for (const PageRule& rule : p.rules) {
        const int from = int(std::lround(rule.x1 / pointsPerChar));
        const int to = std::max(from + 1, int(std::lround(rule.x2 / pointsPerChar)));
        QString& line = rules[int(std::lround(rule.y1 * 10))];
        if (line.size() < to)
            line.resize(to, u' ');
        line.replace(from, to - from, QString(to - from, u'-'));
    }
    for (const auto& [y, line] : rules)
        out.emplace(y, line);
    QStringList text;
    for (const auto& [y, line] : out)
        text.append(line);
    return text.join(u'\n') + u'\n';
}
