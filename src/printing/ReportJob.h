#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <memory>

class QSqlDatabase;
class RowSource;

// Where a report goes: the screen preview or the printer.
enum class Destination { Window = 0, Printer = 1 };

// What a caller hands to the report engine besides the definition file.
struct ReportJob {
    QString reportFile; // "tilisald.rpt", in the program's folder
    // Named formulas, each "Name= 'text'", in the order the caller sets them.
    QStringList formulas;
    // "{to.toPvm} <= Date(2011,12,31) AND {to.toNumero} >= 0"; empty selects every row.
    QString selectionFormula;
    QStringList sortFields; // "+{tlSaldot.tlsID}"
    // Values of the named parameters of the definition's query (":taseID").
    QVariantMap parameters;
    // 1: sections separately, 2: the whole report (the section fonts of the settings).
    int fontSet = 1;
    // The report period, shown as {Jakso} where the report has no formula of that name.
    QDate periodStart;
    QDate periodEnd;
    // The date in the page footer; invalid: today.
    QDate printDate;
    Destination destination = Destination::Printer;
    int copies = 1;
    // The rows already computed, in print order, with the columns the definition's query names;
    // the query, the selection formula and the sort fields are then not run. For the long
    // reports whose rows a computation in memory gives far faster than the engine's joins.
    std::function<std::unique_ptr<RowSource>(const QSqlDatabase& db)> rows;
};
