#include "Dates.h"

#include <QStringList>

namespace Dates {

QDate parse(const QString& input)
{
    const QStringList parts = input.trimmed().split(u'.');
    if (parts.size() != 3)
        return {};
    bool okDay = false, okMonth = false, okYear = false;
    const QString dayText = parts.at(0).trimmed();
    const QString monthText = parts.at(1).trimmed();
    const QString yearText = parts.at(2).trimmed();
    if (dayText.isEmpty() || dayText.size() > 2 || monthText.isEmpty() || monthText.size() > 2)
        return {};
    const int day = dayText.toInt(&okDay);
    const int month = monthText.toInt(&okMonth);
    int year = yearText.toInt(&okYear);
    if (!okDay || !okMonth || !okYear || day < 1 || month < 1)
        return {};
    if (yearText.size() == 2)
        year += year < 30 ? 2000 : 1900;
    else if (yearText.size() != 4)
        return {};
    return QDate(year, month, day); // QDate is invalid for 31.4. or 29.2. of a common year
}

QString format(const QDate& date) { return date.isValid() ? date.toString(u"d.M.yyyy") : QString(); }

QString toSql(const QDate& date) { return date.isValid() ? date.toString(Qt::ISODate) : QString(); }

QDate fromSql(const QString& text) { return QDate::fromString(text.left(10), Qt::ISODate); }

QString sqlLiteral(const QDate& date)
{
    if (!date.isValid())
        return {};
    return QStringLiteral("#%1/%2/%3#")
        .arg(date.month())
        .arg(date.day())
        .arg(date.year(), 4, 10, QChar(u'0'));
}

QDate yearStart(const QDate& today) { return QDate(today.year(), 1, 1); }
QDate yearEnd(const QDate& today) { return QDate(today.year(), 12, 31); }

} // namespace Dates
