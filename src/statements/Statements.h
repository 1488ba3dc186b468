#pragma once

#include "statements/StatementOptions.h"

#include <QSqlDatabase>
#include <QString>

// Computing a statement without a window, as the statement window does before it prints: the
// template's income statement into tula or its balance sheet into tase, the automatic profit
// entries counted but never stored. The work tables are the connection's own, so the books are
// only read. The window, vorkam_report, the tests and the benchmark all go through here.
namespace Statements {

// The template's kind (1 income statement, 2 balance sheet); 0 when there is no such template.
int kindOf(const QSqlDatabase& db, qint32 templateId);

// The statement with its profit entries: an income statement's for its period; a balance
// sheet's from its linked income statement. False, with the message shown, when the template is
// missing or a balance sheet names no income statement. Throws DatabaseError.
bool compute(const QSqlDatabase& db, const StatementOptions& options);

} // namespace Statements
