#pragma once

#include "printing/ReportJob.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

struct BookkeepingSettings;

// What the statement window hands to the report engine after a statement is computed: the
// report file by kind and width, the formulas in their fixed order and the sort field.
// vorkam_report builds the same job, so both print the same pages.
namespace StatementPrint {

// "tula.rpt", "tulas.rpt", "tase.rpt" or "tases.rpt".
QString reportFile(int kind, bool wide);
// A date as "MMYY": 31.5.2012 gives "0512".
QString mmyy(const QDate& date);
// "0312-0512" for 1.3.2012–31.5.2012.
QString period(const QDate& start, const QDate& end);
// "Kirjanpidon tuloslaskelma : Ajalle : 1.3.2012 - 31.5.2012 Tilikaudella : 1.1.2012 - 31.12.2012"
QString incomeHeading(const QDate& start, const QDate& end, const QDate& fiscalStart, const QDate& fiscalEnd);
// "Kirjanpidon tase : 31.5.2012"
QString balanceHeading(const QDate& end);

// The job of a computed statement of `kind` (1 income statement, 2 balance sheet) for the
// period, with the association's name and fiscal years of `settings`.
ReportJob job(int kind, bool wide, const QDate& start, const QDate& end, const BookkeepingSettings& settings);

// The template's number of rows, the range of the progress bar. Throws DatabaseError.
int rowCount(const QSqlDatabase& db, qint32 templateId);

} // namespace StatementPrint
