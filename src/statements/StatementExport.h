#pragma once

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <memory>

class ReportDocument;

// The computed rows of tula and tase as a report document, for writing them to CSV and XLSX
// with the report engine's exports until the printed layouts of the statements exist.
namespace StatementExport {

// "Kirjanpidon tuloslaskelma : Ajalle : 1.3.2012 - 31.5.2012 Tilikaudella : 1.1.2012 - 31.12.2012"
QString incomeHeading(const QDate& start, const QDate& end, const QDate& fiscalStart, const QDate& fiscalEnd);
// "Kirjanpidon tase : 31.5.2012"
QString balanceHeading(const QDate& end);

// Every row of tula (or tase) in print order. Throws ReportError.
std::unique_ptr<ReportDocument> incomeStatement(const QSqlDatabase& db, const QString& heading);
std::unique_ptr<ReportDocument> balanceSheet(const QSqlDatabase& db, const QString& heading);

} // namespace StatementExport
