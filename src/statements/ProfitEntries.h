#pragma once

#include "Money.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>

// The automatic profit entries: the year's result (profit or loss) posted as automatic
// vouchers "Automaattikirjaukset" to the income statement's profit account and to the balance
// sheet's profit account (the setting VoittoTaseella), for the current and the previous year.
// They are thrown away and made again on every run, so they always follow the books.
namespace ProfitEntries {

// The result of one run.
struct Outcome {
    bool posted = false; // false: refused, with the message shown
    Money current; // the current year's result from the fiscal year's start to the end date
    Money previous; // the same for the previous year, one year earlier
    int vouchers = 0; // automatic vouchers written
};

// The four deletions: every automatic voucher and entry of both years.
void deleteAll(const QSqlDatabase& db);

// Deletes the earlier automatic entries and posts them again for the income statement
// template `incomeTemplateId` and the period `start`…`end`, with the fiscal years and the
// balance sheet's profit account of the bookkeeping settings, all in one transaction. The
// three refusals leave the books without automatic entries. Throws DatabaseError.
Outcome post(const QSqlDatabase& db, qint32 incomeTemplateId, const QDate& start, const QDate& end);

} // namespace ProfitEntries
