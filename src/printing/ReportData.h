#pragma once

#include "printing/ReportDefinition.h"

#include <QByteArray>
#include <QDate>
#include <QString>
#include <QVariant>
#include <limits>
#include <vector>

// The rows of a report, column by column in typed form: money and integers as numbers, dates as
// day numbers, percentages as doubles, texts as texts. Kept compact because a long report holds
// hundreds of thousands of rows and its pages are formatted from them on demand.
class ReportData final {
public:
    struct Field {
        QString name;
        CellFormat format = CellFormat::Text;
    };

    explicit ReportData(std::vector<Field> fields = {});

    const std::vector<Field>& fields() const { return m_fields; }
    int fieldCount() const { return int(m_fields.size()); }
    // The field of a name, case-insensitively; -1 when there is none.
    int fieldIndex(const QString& name) const;
    int rowCount() const { return m_rows; }

    void reserve(int rows);
    // Adds a row of nulls; set its values with the setters.
    void appendRow();
    // A value as the database gives it (money and integers as numbers, dates as "YYYY-MM-DD").
    void setValue(int row, int field, const QVariant& value);
    void setNumber(int row, int field, qint64 value);
    void setText(int row, int field, const QString& value);
    // A date in the storage form "YYYY-MM-DD"; anything else is null.
    void setDate(int row, int field, const QString& value);
    void setDate(int row, int field, QByteArrayView value);
    // The value of `field` in row `from`, given to `row` as well.
    void copyValue(int row, int from, int field);

    bool isNull(int row, int field) const;
    // The two rows hold the same value in `field` (both null counts as the same).
    bool sameValue(int a, int b, int field) const;
    qint64 numberAt(int row, int field) const; // money (ten-thousandths), integers, 0 for null
    QString text(int row, int field) const;
    // The value for a spreadsheet: money in euros, integers, dates, percentages, texts.
    QVariant value(int row, int field) const;

    // The value shown in a report cell: "1 234,50", "5.9.2011", "12,5 %", texts as they are.
    QString display(int row, int field) const;
    // The same as page text (UTF-8), appended to `out`.
    void appendDisplay(QByteArray& out, int row, int field) const;
    // A number of a column's format as shown ("1 234,50", "17").
    static void appendNumber(QByteArray& out, qint64 value, CellFormat format);
    static QString formatNumber(qint64 value, CellFormat format);

private:
    static constexpr qint64 Null = std::numeric_limits<qint64>::min();
    struct Column {
        std::vector<qint64> numbers; // money, integer, date (Julian day)
        std::vector<double> reals; // percentage, NaN for null
        std::vector<QString> texts;
        std::vector<bool> textNull;
    };
    std::vector<Field> m_fields;
    std::vector<Column> m_columns;
    int m_rows = 0;
};
