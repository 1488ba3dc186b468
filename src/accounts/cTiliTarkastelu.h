#pragma once

#include "core/Money.h"
#include "core/Record.h"

#include <QDate>
#include <QString>

struct TiliTarkasteluValues {
    qint32 numero = 0;
    QDate paiva;
    QString selite;
    Money debet;
    Money kredit;
    Money erotus;
    bool operator==(const TiliTarkasteluValues&) const = default;
};

// One row of the work table tlTarkastelut: an entry of the inspected account with its voucher's
// number, date and description, its amount on the debit or credit side and the account's
// balance after it, as the account inspection report prints them.
class cTiliTarkastelu final : public Record<TiliTarkasteluValues> {
public:
    explicit cTiliTarkastelu(const QSqlDatabase& db);
    ~cTiliTarkastelu() override;

    // tltID; 0 for a row not yet saved.
    qint32 id() const { return IsEmpty() ? 0 : key(); }
    qint32 Numero() const { return IsEmpty() ? 0 : m_v.numero; }
    void setNumero(qint32 value) { assign(m_v.numero, value); }
    QDate Paiva() const { return IsEmpty() ? QDate() : m_v.paiva; }
    void setPaiva(const QDate& value) { assign(m_v.paiva, value); }
    QString Selite() const { return IsEmpty() ? QString() : m_v.selite; }
    // Keeps the first 255 characters; an empty description is stored as one blank.
    void setSelite(const QString& value);
    Money Debet() const { return IsEmpty() ? Money() : m_v.debet; }
    void setDebet(Money value) { assign(m_v.debet, value); }
    Money Kredit() const { return IsEmpty() ? Money() : m_v.kredit; }
    void setKredit(Money value) { assign(m_v.kredit, value); }
    Money Erotus() const { return IsEmpty() ? Money() : m_v.erotus; }
    void setErotus(Money value) { assign(m_v.erotus, value); }

protected:
    std::optional<TiliTarkasteluValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    QString releaseFailure() const override;
};
