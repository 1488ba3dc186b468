#pragma once

#include "core/Money.h"
#include "printing/ReportJob.h"

#include <QSqlDatabase>

// The printouts of the accounts subsystem, as their windows and vorkam_report hand them to the
// report engine.
namespace AccountReports {

// The list of accounts, "tilit.rpt".
ReportJob tililuettelo();
// The chart of accounts against an income statement and a balance sheet template,
// "tilikart.rpt" (0: no template of that kind). Reads the templates' names for the title.
// Throws DatabaseError.
ReportJob tilikartta(const QSqlDatabase& db, qint32 tuloslaskelmaID, qint32 taseID);
// The account balances of the last computation in tlSaldot, "tilisald.rpt", headed by the fiscal
// year.
ReportJob tilienSaldot();
// The account inspection of the last computation in tlTarkastelut, "tilitark.rpt"; `tili` is the
// account as its list shows it ("1910 Pankkitili"), named in the heading of every page, and
// `loppusaldo` the balance its last line ends at (debit − credit).
ReportJob tiliTarkastelu(const QString& tili, Money loppusaldo);

} // namespace AccountReports
