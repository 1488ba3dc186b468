#pragma once

#include "ReportJob.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

// The reports vorkam_report writes. Adding a report is one entry: its name, which options it
// takes, whether it computes a work table first (the books are then opened for writing), and
// the step that computes that table and builds the job exactly as the report's window does.
namespace ReportCatalog {

struct Options {
    QDate from;
    QDate to;
    std::optional<qint32> account;
    QString kind; // "normal", "opening", "closing"; empty when not given
};

struct Entry {
    QString name; // "tilisald"
    QString description; // Finnish, for the usage text
    bool writesWorkTable = false;
    bool takesPeriod = false;
    bool takesAccount = false;
    bool takesKind = false;
    // Throws DatabaseError or ReportError.
    std::function<ReportJob(const QSqlDatabase& db, const Options& options)> prepare;
};

const std::vector<Entry>& entries();
const Entry* find(const QString& name);

} // namespace ReportCatalog
