#pragma once

#include "core/Money.h"
#include "core/Record.h"

#include <QString>

struct TilienSaldoValues {
    QString tili;
    Money debet;
    Money kredit;
    Money erotus;
    bool operator==(const TilienSaldoValues&) const = default;
};

// One row of the work table tlSaldot: an account's text with its debit and credit sums and
// their difference, as the account balances report prints them.
class cTilienSaldo final : public Record<TilienSaldoValues> {
public:
    explicit cTilienSaldo(const QSqlDatabase& db);
    ~cTilienSaldo() override;

    // tlsID; 0 for a row not yet saved.
    qint32 id() const { return IsEmpty() ? 0 : key(); }
    QString Tili() const { return IsEmpty() ? QString() : m_v.tili; }
    // Keeps the first 255 characters.
    void setTili(const QString& value);
    Money Debet() const { return IsEmpty() ? Money() : m_v.debet; }
    void setDebet(Money value) { assign(m_v.debet, value); }
    Money Kredit() const { return IsEmpty() ? Money() : m_v.kredit; }
    void setKredit(Money value) { assign(m_v.kredit, value); }
    Money Erotus() const { return IsEmpty() ? Money() : m_v.erotus; }
    void setErotus(Money value) { assign(m_v.erotus, value); }

protected:
    std::optional<TilienSaldoValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    QString releaseFailure() const override;
};
