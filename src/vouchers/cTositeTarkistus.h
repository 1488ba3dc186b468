#pragma once

#include "vouchers/cTositeTarkistusVirhe.h"

#include <QSqlDatabase>
#include <vector>

// Checks the vouchers of the current year for what the voucher window lets through: a date
// outside the fiscal year, debits and credits that differ, an entry without a valid account,
// and a bank statement line still on the suspense account.
// Entries whose voucher is gone are removed first, in both years, without a finding.
// Automatic vouchers and the carriers numbered below 0 are never checked for date or balance.
class cTositeTarkistus final {
public:
    explicit cTositeTarkistus(const QSqlDatabase& db)
        : m_db(db)
    {
    }

    // The line shown when the check finds nothing.
    static QString virheeton() { return QStringLiteral("Tarkistus suoritettu virheettömästi."); }

    // Runs every step and gives the findings in the order found. Throws DatabaseError. Without
    // `korjaa` the orphan entries are left where they are (the books are open for reading only);
    // they give no finding either way.
    std::vector<cTositeTarkistusVirhe> Tarkista(bool korjaa = true) const;

private:
    void poistaOrvot() const;
    void paivat(std::vector<cTositeTarkistusVirhe>& virheet) const;
    void saldot(std::vector<cTositeTarkistusVirhe>& virheet) const;
    void tilit(std::vector<cTositeTarkistusVirhe>& virheet) const;
    // Vouchers with an entry on the suspense account.
    void selvittely(std::vector<cTositeTarkistusVirhe>& virheet) const;

    QSqlDatabase m_db;
};
