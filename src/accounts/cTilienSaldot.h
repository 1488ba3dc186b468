#pragma once

#include "core/Money.h"

#include <QSqlDatabase>
#include <QString>
#include <vector>

// The account balances: for every account of the chart, the sums of its debit and credit
// entries of the current fiscal year and their difference, written to the work table tlSaldot
// in account-number order for the report "tilisald.rpt".
//
// Which entries count: every entry of vi whose voucher exists in "to", on any date, opening and
// closing entries included, automatic entries (viAutomaatti) left out; the side comes from the
// type code ("D" or "K"; others add nothing). The previous year's tables are not read.
class cTilienSaldot final {
public:
    struct Rivi {
        qint32 id = 0; // tlsID
        QString tili; // "1910 Pankkitili"
        Money debet;
        Money kredit;
        Money erotus;
    };

    explicit cTilienSaldot(const QSqlDatabase& db);

    // Empties tlSaldot. Throws DatabaseError.
    void Tyhjenna();
    // Empties tlSaldot and writes a row for every account, also one without entries, from one
    // grouped query over all entries, in one transaction: a failure leaves the table as it was.
    // Throws DatabaseError.
    void Laske();

    const std::vector<Rivi>& rivit() const { return m_rivit; }
    Money debetSumma() const { return m_debet; }
    Money kreditSumma() const { return m_kredit; }
    Money erotusSumma() const { return m_debet - m_kredit; }

private:
    QSqlDatabase m_db;
    std::vector<Rivi> m_rivit;
    Money m_debet;
    Money m_kredit;
};
