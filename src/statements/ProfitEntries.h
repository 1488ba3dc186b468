#pragma once

#include "core/ComputedEntries.h"
#include "core/Money.h"
#include "statements/EntrySums.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <vector>

class TemplateTree;

// The automatic profit entries: the year's result (profit or loss) as two entries, one on the income
// statement's profit account and one on the balance sheet's (the setting VoittoTaseella), for the current and
// the previous year. They are computed at every statement run from the books as they stand and counted by the
// statements as if they were booked; they are never stored, so printing never changes the books, takes no
// voucher number and leaves nothing that the journal, the voucher window or the voucher check would show.
namespace ProfitEntries {

struct Outcome {
    bool posted = false; // false: refused, see `refusal`
    QString refusal; // the Finnish reason when refused
    Money current; // the current year's result from the fiscal year's start to the end date
    Money previous; // the same for the previous year, one year earlier
    // Each year's result split into the part of the year before the period (dated the day
    // before it) and the period itself (dated its last day), so that every column of the income
    // statement shows the result of its own dates and the balance sheet balances at the end date.
    // A part whose result is 0 has no entries.
    std::vector<ComputedEntry> entries;
};

// The income statement's profit account (the first account of its first profit row) and the
// balance sheet's; with `refusal` set when either is missing or both are the same.
struct Accounts {
    qint32 income = 0;
    qint32 balance = 0;
    QString refusal;
};
Accounts accounts(const TemplateTree& incomeTemplate);

// The result of the entries `sums` holds under `filter`: every main row of the income statement
// template that is not a profit row, with every row below it, each on its own balance side.
Money result(const TemplateTree& incomeTemplate, const EntrySums& sums, int filter);

// The entries from sums already read for the income statement: each year's sums with the filter
// `period` (start…end, one year earlier for the previous year) and `fromYearStart` (the fiscal
// year's start…end).
Outcome fromSums(const TemplateTree& incomeTemplate, const EntrySums& current, const EntrySums& previous,
    int period, int fromYearStart, const QDate& start, const QDate& end);

// The same, reading the sums itself, for the income statement template `incomeTemplateId` and the
// period `start`…`end` with the fiscal years of the bookkeeping settings. Reads only; the refusal
// is given in the outcome, not shown. Throws DatabaseError.
Outcome compute(const QSqlDatabase& db, qint32 incomeTemplateId, const QDate& start, const QDate& end);

// The current year's entries on the account tlID `account` for the whole fiscal year, as the
// account inspection shows them: of the income statement that the first balance sheet names
// (else the first income statement). None when the account is no profit account, the books have
// no income statement or the entries are refused; the year is read only for a profit account.
// Throws DatabaseError.
std::vector<ComputedEntries::Entry> ofFiscalYear(const QSqlDatabase& db, qint32 account);

} // namespace ProfitEntries
