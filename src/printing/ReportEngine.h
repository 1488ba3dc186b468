#pragma once

#include "printing/ReportDocument.h"
#include "printing/ReportJob.h"

#include <QSqlDatabase>
#include <functional>
#include <memory>

// The user cancelled a long report; nothing was written.
struct ReportCancelled final { };

// Runs a report: reads its definition from the program's folder, turns the job's formulas,
// selection and sort fields into its query, reads the rows and lays them out with the section
// fonts, margins and orientation of the bookkeeping settings. Every fault is a ReportError with
// a Finnish sentence that names the report; a database failure is one too.
namespace ReportEngine {

// Called now and then with the rows read so far; false cancels (ReportCancelled is thrown).
using Progress = std::function<bool(int rows)>;

std::unique_ptr<ReportDocument> run(
    const QSqlDatabase& db, const ReportJob& job, const Progress& progress = {});

// The steps of run(), for callers that have the definition or the rows already.
ReportDefinition definition(const QString& reportFile);
std::shared_ptr<ReportData> fetch(const QSqlDatabase& db, const ReportDefinition& definition,
    const ReportJob& job, const Progress& progress = {});
LayoutOptions options(const ReportDefinition& definition, const ReportJob& job);

// The query run() sends, with its values in order: for tests and messages.
struct Query {
    QString sql;
    QVariantList values;
};
Query query(const QSqlDatabase& db, const ReportDefinition& definition, const ReportJob& job);

} // namespace ReportEngine
