#pragma once

#include "core/Money.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <vector>

// The account inspection: every entry of one account in the current year's vouchers numbered 0
// or above, in date order (entries of one day in voucher number and then stored order), with
// its voucher's number, date and description, its amount on the debit or the credit side and
// the account's balance (debit − credit) after it. Opening and closing entries count. The rows are written to
// the work table tlTarkastelut for the report "tilitark.rpt".
class cTiliTarkastelut final {
public:
    struct Rivi {
        qint32 toId = 0; // the voucher, for opening it from the list; 0 for a computed line
        qint32 numero = 0; // Laskettu for a computed line, which has no voucher
        QDate paiva;
        QString selite;
        Money debet;
        Money kredit;
        Money erotus;
    };

    static constexpr qint32 Laskettu = -1;

    explicit cTiliTarkastelut(const QSqlDatabase& db);

    // Empties tlTarkastelut. Throws DatabaseError.
    void Tyhjenna();
    // Computes the inspection of the account tlID `tili`; the rows replace those of this
    // connection's tlTarkastelut in one transaction (a failure leaves the table as it was). For a
    // profit account the year's result, which is computed and never booked, follows as a last
    // row marked as such. Throws DatabaseError.
    void Laske(qint32 tili);

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
