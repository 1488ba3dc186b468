#pragma once

#include "core/Money.h"

#include <QDate>
#include <QSqlDatabase>
#include <vector>

// The daily balances of one account: a row for every day of the period on which the account
// has entries in the current year's vouchers numbered 0 or above, with the day's debit and
// credit, their difference and the balance (debit − credit) at the end of the day, counted
// from the period's start. Automatic entries count. Nothing is written; the rows live in memory.
namespace DailyBalances {

struct Rivi {
    QDate paiva;
    Money debet;
    Money kredit;
    Money erotus;
    Money saldo;
};

// The days of `alku`..`loppu`, both ends included, in date order. Throws DatabaseError.
std::vector<Rivi> laske(const QSqlDatabase& db, qint32 tili, const QDate& alku, const QDate& loppu);

} // namespace DailyBalances
