#pragma once

#include "StatementOptions.h"

#include <QSqlDatabase>
#include <QString>

// Computing a statement without a window, as the statement window does before it prints: the
// automatic profit entries are brought up to date, then the template's income statement is
// computed into tula or its balance sheet into tase. The window, vorkam_report, the tests and
// the benchmark all go through here.
namespace Statements {

// The template's kind (1 income statement, 2 balance sheet); 0 when there is no such template.
int kindOf(const QSqlDatabase& db, qint32 templateId);

// The profit entries and the statement, in one transaction. An income statement's entries are
// posted for its period; a balance sheet's for its linked income statement from the fiscal
// year's start to its end date. False, with the message shown and the books unchanged, when
// the template is missing or a balance sheet names no income statement. Throws DatabaseError.
bool compute(const QSqlDatabase& db, const StatementOptions& options);

} // namespace Statements
