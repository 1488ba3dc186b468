#include "core/Dates.h"

#include <QStringList>

namespace Dates {

namespace {

// The value of a part written in digits 0–9 only; -1 for anything else. QString::toInt would
// also take a sign and stop at a NUL character, so "1.1.-7" or "1.1.2011\0x" would pass.
int digitsValue(const QString& part)
{
    if (part.isEmpty())
        return -1;
    int value = 0;
    for (QChar c : part) {
        if (c < u'0' || c > u'9')
            return -1;
        value = value * 10 + (c.unicode() - u'0');
    }
    return value;
}

} // namespace

QDate parse(const QString& input)
{
    const QStringList parts = input.trimmed().split(u'.');
    if (parts.size() != 3)
        return {};
    const QString dayText = parts.at(0).trimmed();
    const QString monthText = parts.at(1).trimmed();
    const QString yearText = parts.at(2).trimmed();
    if (dayText.size() > 2 || monthText.size() > 2 || (yearText.size() != 2 && yearText.size() != 4))
        return {};
    const int day = digitsValue(dayText);
    const int month = digitsValue(monthText);
    int year = digitsValue(yearText);
    if (day < 1 || month < 1 || year < 0)
        return {};
    if (yearText.size() == 2)
        year += year < 30 ? 2000 : 1900;
    return QDate(year, month, day); // QDate is invalid for 31.4. or 29.2. of a common year
}

QDate parse(const QString& text, const QDate& periodStart, const QDate& periodEnd)
{
    QStringList parts = text.trimmed().split(u'.');
    if (parts.size() == 3 && parts.at(2).trimmed().isEmpty())
        parts.removeLast();
    if (parts.size() != 2 || !periodStart.isValid() || !periodEnd.isValid())
        return parse(text);
    for (int year = periodStart.year(); year <= periodEnd.year(); ++year) {
        const QDate d = parse(parts.join(u'.') + u'.' + QString::number(year));
        if (d.isValid() && d >= periodStart && d <= periodEnd)
            return d;
    }
    // Outside the period: the day in the period's first year, for the caller to refuse.
    return parse(parts.join(u'.') + u'.' + QString::number(periodStart.year()));
}

QString format(const QDate& date) { return date.isValid() ? date.toString(u"d.M.yyyy") : QString(); }

QString toSql(const QDate& date) { return date.isValid() ? date.toString(Qt::ISODate) : QString(); }

QDate fromSql(const QString& text) { return QDate::fromString(text.left(10), Qt::ISODate); }

QDate yearStart(const QDate& today) { return QDate(today.year(), 1, 1); }
QDate yearEnd(const QDate& today) { return QDate(today.year(), 12, 31); }

int dayNumber(QByteArrayView text)
{
    if (text.size() < 10 || text[4] != '-' || text[7] != '-')
        return 0;
    int n = 0;
    for (int i : { 0, 1, 2, 3, 5, 6, 8, 9 }) {
        const char c = text[i];
        if (c < '0' || c > '9')
            return 0;
        n = n * 10 + (c - '0');
    }
    return n;
}

int dayNumber(const QDate& d) { return d.isValid() ? d.year() * 10000 + d.month() * 100 + d.day() : 0; }

} // namespace Dates
