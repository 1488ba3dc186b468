#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <functional>
#include <optional>

// A condition ready for a WHERE clause: SQL text with "?" placeholders and their values in order.
struct SqlCondition {
    QString sql;
    QVariantList values;
};

// A field of a report's data as a formula names it ({table.field}): its SQL text, and whether it
// holds money (ten-thousandths), so that a number typed in euros is compared in the same unit.
struct FormulaField {
    QString sql;
    bool money = false;
};
// Gives the field, or nullopt for a table or field the report does not have.
using FieldResolver = std::function<std::optional<FormulaField>(const QString& table, const QString& field)>;

// The record-selection formulas and sort fields that report callers build, turned into bound
// SQL. The supported subset is what Vorkam's callers write: comparisons (= <> < <= > >=) of
// fields, numbers, quoted texts, Date(y,m,d) and True/False, joined with AND, OR and NOT and
// grouped with parentheses. Anything else throws ReportError with a Finnish description of the
// fault and where it is; nothing is silently left out.
namespace SelectionFormula {

// "{to.toPvm} <= Date(2011,12,31) AND {to.toNumero} >= 0"; an empty or blank formula selects
// everything and gives an empty condition.
SqlCondition toSql(const QString& formula, const FieldResolver& resolve);

// "+{tl.tlNumero}" ascending, "-{to.toPvm}" descending, into the terms of an ORDER BY, in order.
QString orderBy(const QStringList& sortFields, const FieldResolver& resolve);

} // namespace SelectionFormula
