#pragma once

#include "core/Money.h"
#include "statements/EntrySums.h"
#include "statements/ProfitEntries.h"
#include "statements/StatementOptions.h"

#include <QSqlDatabase>
#include <QString>
#include <optional>
#include <vector>

// One printed line of an income statement: a row of the work table tula.
struct TulaLine {
    enum class Kind {
        Header, // a group's caption, no amounts
        Detail, // a lowest-level row or one account of it; group totals add these up
        Total, // "**": a group total, a main-level row, a formula row
        Separator, // an empty line
        // "**" below a template row whose accounts are listed one by one: the row's own total,
        // which no group total adds up and no formula finds (as without the breakdown)
        Subtotal,
    };
    Kind kind = Kind::Detail;
    qint16 level = 0; // tulaTyyppi: 0 for the main pass, one more per level below
    QString teksti;
    qint32 mrId = 0;
    Money kuluva; // the period
    Money kuluvaAlusta; // from the fiscal year's start to the period's end
    Money edellinen; // the same period one year earlier
    Money edellinenAlusta; // the previous fiscal year's start to the period's end one year earlier

    bool hasAmounts() const { return kind == Kind::Detail || kind == Kind::Total || kind == Kind::Subtotal; }
    bool groupRow() const { return kind == Kind::Header || kind == Kind::Total || kind == Kind::Subtotal; }
};

// The sums an income statement reads: each year's entries with filter 0 the period (one year
// earlier for the previous year) and filter 1 from the fiscal year's start to the period's end.
// A caller that reads the same year for its own sums passes them in, so that a year is read once.
struct IncomeStatementSums {
    EntrySums current;
    EntrySums previous;
};

struct IncomeStatementLines {
    std::vector<TulaLine> lines;
    // The turnover row's amounts; 0 when the template has none, and the turnover
    // percentages are then left empty.
    Money turnoverPeriod;
    Money turnoverYear;
    // The previous year held no entries of the template's accounts in the period, or from its
    // start: those columns are left empty rather than shown as zeros.
    bool noPreviousPeriod = false;
    bool noPreviousYear = false;
    // The automatic profit entries counted in the amounts above.
    ProfitEntries::Outcome profit;
};

// The income statement: a template's rows computed for a period into the work table tula, one
// line per printed line in print order. Sums are read in one grouped query per fiscal year.
namespace IncomeStatement {

// The turnover and the main pass: every line with its amounts, the automatic profit entries
// counted. Tells the user when the template has no turnover row, or when the profit entries are
// refused, and goes on. A formula term that names a row whose caption
// holds an apostrophe ends the computation with DatabaseError, as such a caption cannot be
// looked up. Throws DatabaseError.
IncomeStatementLines compute(const QSqlDatabase& db, const StatementOptions& options,
    std::optional<IncomeStatementSums> sums = std::nullopt);
// The filters of IncomeStatementSums, for one year: the period and from the year's start.
std::vector<EntryFilter> filters(const StatementOptions& options, FiscalYear year);
// What is printed: with `groupsOnly` only the main-level lines, and never a separator last.
void finish(IncomeStatementLines& statement, bool groupsOnly);
// Appends the lines to tula with their changes and percentages.
void write(const QSqlDatabase& db, const IncomeStatementLines& statement);
// Empties tula and tase (this connection's own work tables, never the file's) and fills tula
// with the finished statement, in one transaction.
void run(const QSqlDatabase& db, const StatementOptions& options);

// part ÷ divisor × 100; nullopt when the divisor is 0. The divisor keeps its sign.
std::optional<double> percentage(Money part, Money divisor);

// The first total line written so far whose caption is `caption`, compared as the database
// compares text (without regard to case); nullptr when there is none.
const TulaLine* findTotal(const std::vector<TulaLine>& lines, const QString& caption);
// DatabaseError when `caption` holds an apostrophe: the lookup of such a caption fails.
void checkLookupCaption(const QString& caption);

} // namespace IncomeStatement
