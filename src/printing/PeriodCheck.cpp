#include "printing/PeriodCheck.h"

#include "core/Dates.h"
#include "core/ProgramSettings.h"

namespace {

PeriodCheck::Result check(const QString& text, const QString& notDate, const QString& outside)
{
    const QDate d = Dates::parse(text);
    if (!d.isValid())
        return { {}, notDate };
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    if (d < s.TilikausiAlku || d > s.TilikausiLoppu)
        return { {},
            outside + Dates::format(s.TilikausiAlku) + QStringLiteral(" - ")
                + Dates::format(s.TilikausiLoppu) };
    return { d, {} };
}

} // namespace

namespace PeriodCheck {

Result alku(const QString& text)
{
    return check(text, QStringLiteral("Anna alkupäivämäärä päivämäärämuodossa!"),
        QStringLiteral("Alkupäivämäärä ei kuulu tilikauteen: "));
}

Result loppu(const QString& text)
{
    return check(text, QStringLiteral("Anna loppupäivämäärä päivämäärämuodossa!"),
        QStringLiteral("Loppupäivämäärä ei kuulu tilikauteen: "));
}

QString jakso(const QDate& alku, const QDate& loppu)
{
    if (alku.isValid() && loppu.isValid() && alku > loppu)
        return QStringLiteral("Alkupäivämäärä on loppupäivämäärän jälkeen.");
    return {};
}

} // namespace PeriodCheck
