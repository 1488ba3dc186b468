#include "printing/PrintOptions.h"

#include "core/ProgramSettings.h"

namespace PrintOptions {

PrintValues& current()
{
    static PrintValues values;
    return values;
}

std::optional<int> copies(const QString& text)
{
    bool ok = false;
    const int n = text.trimmed().toInt(&ok);
    if (!ok || n < 1 || n > 99)
        return std::nullopt;
    return n;
}

QDate periodStart()
{
    const QDate d = current().alkupvm;
    return d.isValid() ? d : ProgramSettings::bookkeeping().TilikausiAlku;
}

QDate periodEnd()
{
    const QDate d = current().loppupvm;
    return d.isValid() ? d : ProgramSettings::bookkeeping().TilikausiLoppu;
}

void applyTo(ReportJob& job)
{
    job.destination = current().destination;
    job.copies = current().copies;
}

} // namespace PrintOptions
