#pragma once

#include "printing/ReportDocument.h"
#include "printing/ReportJob.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// The reports vorkam_report writes. Adding a report is one entry: its name, which options it
// takes, and the step that computes its work table (the connection's own, never the file's) and
// builds the job exactly as the report's window does. The books are only read.
namespace ReportCatalog {

struct Options {
    QDate from;
    QDate to;
    std::optional<qint32> account;
    QString kind; // "normal", "opening", "closing"; empty when not given
    QString templateName; // a statement template's name; empty: the first of its kind
    bool perAccount = false; // a statement's lines account by account
    bool groupsOnly = false; // a statement's main-level lines only
    bool narrow = false; // a statement's narrow form
};

struct Entry {
    QString name; // "tilisald"
    QString description; // Finnish, for the usage text
    bool takesPeriod = false;
    bool takesAccount = false;
    bool takesKind = false;
    // Throws DatabaseError or ReportError.
    std::function<ReportJob(const QSqlDatabase& db, const Options& options)> prepare;
    bool takesTemplate = false;
    // A report without a printed layout yet: computes its rows and gives them as a document for
    // CSV and XLSX, in place of prepare. Throws DatabaseError or ReportError.
    std::function<std::unique_ptr<ReportDocument>(const QSqlDatabase& db, const Options& options)>
        document {};
};

const std::vector<Entry>& entries();
const Entry* find(const QString& name);

} // namespace ReportCatalog
