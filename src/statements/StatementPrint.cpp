#include "statements/StatementPrint.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/ProgramSettings.h"
#include "printing/ReportFormulas.h"
#include "statements/cMalli.h"

#include <QVariant>

namespace {

QString formula(const QString& name, const QString& value) { return name + ReportFormulas::quoted(value); }

} // namespace

namespace StatementPrint {

QString reportFile(int kind, bool wide)
{
    if (kind == cMalli::Tase)
        return wide ? QStringLiteral("tase.rpt") : QStringLiteral("tases.rpt");
    return wide ? QStringLiteral("tula.rpt") : QStringLiteral("tulas.rpt");
}

QString mmyy(const QDate& date) { return date.isValid() ? date.toString(QStringLiteral("MMyy")) : QString(); }

QString period(const QDate& start, const QDate& end) { return mmyy(start) + u'-' + mmyy(end); }

QString incomeHeading(const QDate& start, const QDate& end, const QDate& fiscalStart, const QDate& fiscalEnd)
{
    return QStringLiteral("Kirjanpidon tuloslaskelma : Ajalle : %1 - %2 Tilikaudella : %3 - %4")
        .arg(Dates::format(start), Dates::format(end), Dates::format(fiscalStart), Dates::format(fiscalEnd));
}

QString balanceHeading(const QDate& end)
{
    return QStringLiteral("Kirjanpidon tase : ") + Dates::format(end);
}

ReportJob job(int kind, bool wide, const QDate& start, const QDate& end, const BookkeepingSettings& s)
{
    const bool income = kind != cMalli::Tase;
    ReportJob job;
    job.reportFile = reportFile(kind, wide);
    // In this order, each only for the files that show it; "LoppuPvm = '" keeps its blank.
    job.formulas << formula(QStringLiteral("Seurannimi= "), s.Seurannimi);
    if (income || wide)
        job.formulas << formula(QStringLiteral("Jakso= "), period(start, end));
    if (income) {
        job.formulas << formula(QStringLiteral("EdJakso= "), period(start.addYears(-1), end.addYears(-1)));
        // The year-to-date columns run from each fiscal year's start to the period's end (one
        // year earlier for the previous year), and their captions say so.
        job.formulas << formula(QStringLiteral("Tilikausi= "), period(s.TilikausiAlku, end));
        job.formulas << formula(QStringLiteral("EdTilikausi= "), period(s.EdTilikausiAlku, end.addYears(-1)));
    } else {
        if (wide)
            job.formulas << formula(QStringLiteral("AlkuPvm= "), mmyy(start));
        job.formulas << formula(QStringLiteral("LoppuPvm = "), mmyy(end));
        job.formulas << formula(QStringLiteral("EdLoppuPvm= "), mmyy(end.addYears(-1)));
    }
    job.formulas << formula(QStringLiteral("Otsake= "),
        income ? incomeHeading(start, end, s.TilikausiAlku, s.TilikausiLoppu) : balanceHeading(end));
    job.sortFields << (income ? QStringLiteral("+{tula.tulaID}") : QStringLiteral("+{tase.taseID}"));
    job.periodStart = start;
    job.periodEnd = end;
    return job;
}

int rowCount(const QSqlDatabase& db, qint32 templateId)
{
    return Sql::scalar(db, QStringLiteral("SELECT COUNT(mrID) FROM mr WHERE mrmaID = ?"), { templateId })
        .toInt();
}

} // namespace StatementPrint
