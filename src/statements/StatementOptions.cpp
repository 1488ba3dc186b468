#include "statements/StatementOptions.h"

#include "core/ProgramSettings.h"

StatementOptions StatementOptions::forPeriod(qint32 templateId, const QDate& start, const QDate& end)
{
    StatementOptions o;
    o.templateId = templateId;
    o.start = start;
    o.end = end;
    o.fiscalStart = ProgramSettings::bookkeeping().TilikausiAlku;
    o.previousFiscalStart = ProgramSettings::bookkeeping().EdTilikausiAlku;
    return o;
}
