#include "printing/ReportData.h"

#include "core/Dates.h"
#include "printing/PageText.h"

#include <cmath>

namespace {

bool isNumeric(CellFormat f)
{
    return f == CellFormat::Money || f == CellFormat::Integer || f == CellFormat::Date;
}

} // namespace

ReportData::ReportData(std::vector<Field> fields)
    : m_fields(std::move(fields))
    , m_columns(m_fields.size())
{
}

int ReportData::fieldIndex(const QString& name) const
{
    for (size_t i = 0; i < m_fields.size(); ++i)
        if (m_fields[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return int(i);
    return -1;
}

void ReportData::reserve(int rows)
{
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const CellFormat f = m_fields[i].format;
        if (isNumeric(f))
            m_columns[i].numbers.reserve(size_t(rows));
        else if (f == CellFormat::Percentage)
            m_columns[i].reals.reserve(size_t(rows));
        else
            m_columns[i].texts.reserve(size_t(rows));
    }
}

void ReportData::appendRow()
{
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const CellFormat f = m_fields[i].format;
        if (isNumeric(f))
            m_columns[i].numbers.push_back(Null);
        else if (f == CellFormat::Percentage)
            m_columns[i].reals.push_back(std::nan(""));
        else {
            m_columns[i].texts.emplace_back();
            m_columns[i].textNull.push_back(true);
        }
    }
    ++m_rows;
}

void ReportData::setValue(int row, int field, const QVariant& value)
{
    Column& c = m_columns[size_t(field)];
    const CellFormat f = m_fields[size_t(field)].format;
    if (value.isNull()) {
        if (isNumeric(f))
            c.numbers[size_t(row)] = Null;
        else if (f == CellFormat::Percentage)
            c.reals[size_t(row)] = std::nan("");
        else
            c.textNull[size_t(row)] = true;
        return;
    }
    switch (f) {
    case CellFormat::Money:
    case CellFormat::Integer:
        c.numbers[size_t(row)] = value.toLongLong();
        break;
    case CellFormat::Date:
        setDate(row, field, value.toString());
        break;
    case CellFormat::Percentage:
        c.reals[size_t(row)] = value.toDouble();
        break;
    case CellFormat::Text:
        setText(row, field, value.toString());
        break;
    }
}

void ReportData::setDate(int row, int field, const QString& text)
{
    setDate(row, field, QByteArrayView(text.toLatin1()));
}

void ReportData::setDate(int row, int field, QByteArrayView text)
{
    // Read by hand: a long report has a date on every row.
    const int day = Dates::dayNumber(text);
    const QDate d
        = day != 0 ? QDate(day / 10000, day / 100 % 100, day % 100) : Dates::fromSql(QString::fromUtf8(text));
    m_columns[size_t(field)].numbers[size_t(row)] = d.isValid() ? d.toJulianDay() : Null;
}

void ReportData::copyValue(int row, int from, int field)
{
    Column& c = m_columns[size_t(field)];
    const CellFormat f = m_fields[size_t(field)].format;
    if (isNumeric(f)) {
        c.numbers[size_t(row)] = c.numbers[size_t(from)];
    } else if (f == CellFormat::Percentage) {
        c.reals[size_t(row)] = c.reals[size_t(from)];
    } else {
        c.texts[size_t(row)] = c.texts[size_t(from)];
        c.textNull[size_t(row)] = c.textNull[size_t(from)];
    }
}

void ReportData::setNumber(int row, int field, qint64 value)
{
    m_columns[size_t(field)].numbers[size_t(row)] = value;
}

void ReportData::setText(int row, int field, const QString& value)
{
    m_columns[size_t(field)].texts[size_t(row)] = value;
    m_columns[size_t(field)].textNull[size_t(row)] = false;
}

bool ReportData::isNull(int row, int field) const
{
    const Column& c = m_columns[size_t(field)];
    const CellFormat f = m_fields[size_t(field)].format;
    if (isNumeric(f))
        return c.numbers[size_t(row)] == Null;
    if (f == CellFormat::Percentage)
        return std::isnan(c.reals[size_t(row)]);
    return c.textNull[size_t(row)];
}

bool ReportData::sameValue(int a, int b, int field) const
{
    const Column& c = m_columns[size_t(field)];
    const CellFormat f = m_fields[size_t(field)].format;
    if (isNumeric(f))
        return c.numbers[size_t(a)] == c.numbers[size_t(b)];
    if (f == CellFormat::Percentage)
        return c.reals[size_t(a)] == c.reals[size_t(b)]
            || (std::isnan(c.reals[size_t(a)]) && std::isnan(c.reals[size_t(b)]));
    return c.textNull[size_t(a)] == c.textNull[size_t(b)] && c.texts[size_t(a)] == c.texts[size_t(b)];
}

qint64 ReportData::numberAt(int row, int field) const
{
    const qint64 n = m_columns[size_t(field)].numbers[size_t(row)];
    return n == Null ? 0 : n;
}

QString ReportData::text(int row, int field) const { return m_columns[size_t(field)].texts[size_t(row)]; }

QVariant ReportData::value(int row, int field) const
{
    if (isNull(row, field))
        return {};
    switch (m_fields[size_t(field)].format) {
    case CellFormat::Money:
        return double(std::llround(double(numberAt(row, field)) / 100.0)) / 100.0;
    case CellFormat::Integer:
        return numberAt(row, field);
    case CellFormat::Date:
        return QDate::fromJulianDay(numberAt(row, field));
    case CellFormat::Percentage:
        return m_columns[size_t(field)].reals[size_t(row)];
    case CellFormat::Text:
        break;
    }
    return text(row, field);
}

void ReportData::appendNumber(QByteArray& out, qint64 value, CellFormat format)
{
    // Written by hand: a long report formats millions of amounts.
    char digits[32];
    int n = 0;
    if (format == CellFormat::Money) {
        // Whole cents, half away from zero, as Money::toString rounds.
        const qint64 cents = (value >= 0 ? value + 50 : value - 50) / 100;
        quint64 a = quint64(cents < 0 ? -cents : cents);
        digits[n++] = char('0' + a % 10);
        a /= 10;
        digits[n++] = char('0' + a % 10);
        a /= 10;
        digits[n++] = ',';
        int group = 0;
        do {
            if (group == 3) {
                // A no-break space, written backwards: C2 A0 in UTF-8.
                digits[n++] = '\xA0';
                digits[n++] = '\xC2';
                group = 0;
            }
            digits[n++] = char('0' + a % 10);
            a /= 10;
            ++group;
        } while (a > 0);
        if (cents < 0)
            digits[n++] = '-';
    } else {
        quint64 a = quint64(value < 0 ? -value : value);
        do {
            digits[n++] = char('0' + a % 10);
            a /= 10;
        } while (a > 0);
        if (value < 0)
            digits[n++] = '-';
    }
    const qsizetype start = out.size();
    out.resize(start + n);
    char* p = out.data() + start;
    while (n > 0)
        *p++ = digits[--n];
}

QString ReportData::formatNumber(qint64 value, CellFormat format)
{
    QByteArray out;
    appendNumber(out, value, format);
    return PageText::toUnicode(out);
}

void ReportData::appendDisplay(QByteArray& out, int row, int field) const
{
    if (isNull(row, field))
        return;
    const CellFormat f = m_fields[size_t(field)].format;
    switch (f) {
    case CellFormat::Money:
    case CellFormat::Integer:
        appendNumber(out, numberAt(row, field), f);
        return;
    case CellFormat::Date: {
        int y = 0, m = 0, d = 0;
        QDate::fromJulianDay(numberAt(row, field)).getDate(&y, &m, &d);
        out += QByteArray::number(d) + '.' + QByteArray::number(m) + '.' + QByteArray::number(y);
        return;
    }
    case CellFormat::Percentage: {
        const double v = m_columns[size_t(field)].reals[size_t(row)];
        QByteArray t = QByteArray::number(v, 'f', 1);
        t.replace('.', ',');
        out += t + "\xC2\xA0%";
        return;
    }
    case CellFormat::Text:
        PageText::append(out, text(row, field));
        return;
    }
}

QString ReportData::display(int row, int field) const
{
    QByteArray out;
    appendDisplay(out, row, field);
    return PageText::toUnicode(out);
}
