#pragma once

#include <QByteArrayView>
#include <QDate>
#include <QString>

// Dates as Finnish users type and read them ("5.9.2011") and as Vorkam stores them.
namespace Dates {

// "d.M.yyyy", also "d.M.yy" (00–29 → 2000s, 30–99 → 1900s). Invalid input gives an invalid QDate.
QDate parse(const QString& text);
// The same, and a day and month without a year ("15.3" or "15.3.") as that day within the period
// (in its first year when the day falls in both, as it does in a period longer than a year).
QDate parse(const QString& text, const QDate& periodStart, const QDate& periodEnd);
// "5.9.2011"; an invalid date gives "".
QString format(const QDate& date);

// Storage form "YYYY-MM-DD"; NULL/empty or malformed text reads as an invalid date.
QString toSql(const QDate& date);
QDate fromSql(const QString& text);
// A stored date ("YYYY-MM-DD", as bytes) or a date as the number yyyymmdd, which orders as the
// dates do, for loops over hundreds of thousands of vouchers; 0 for what is no such date.
int dayNumber(QByteArrayView stored);
int dayNumber(const QDate& date);

// The first and last day of the calendar year of `today`.
QDate yearStart(const QDate& today);
QDate yearEnd(const QDate& today);

} // namespace Dates
