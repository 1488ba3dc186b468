#pragma once

#include "core/Money.h"
#include "core/Record.h"
#include "vouchers/VoucherLayout.h"

#include <QSqlQuery>
#include <QString>

struct VientiValues {
    qint32 tlId = 0;
    qint32 toId = 0;
    QString tyyppi;
    Money arvo;
    QString selite;
    bool avaus = false;
    bool paatos = false;
    bool automaatti = false;
    bool operator==(const VientiValues&) const = default;
};

// One entry (posting) of a voucher, over the entry table of `layout`. cVienti (current year)
// and cVientiEd (previous year) are this record with their own layout.
class EntryRecord : public Record<VientiValues> {
public:
    ~EntryRecord() override; // saves a changed entry, unless IsEmpty

    // The entry's key; 0 while it is not stored.
    qint32 ViId() const { return key(); }
    qint32 tlID() const { return m_v.tlId; }
    void settlID(qint32 id) { assign(m_v.tlId, id); }
    qint32 ToId() const { return m_v.toId; }
    void setToId(qint32 id) { assign(m_v.toId, id); }
    QString Tyyppi() const { return m_v.tyyppi; }
    // Keeps only the first character; an empty text stays empty.
    void setTyyppi(const QString& tyyppi) { assign(m_v.tyyppi, tyyppi.left(1)); }
    // Reads as 0 while IsEmpty.
    Money Arvo() const { return IsEmpty() ? Money() : m_v.arvo; }
    void setArvo(Money arvo) { assign(m_v.arvo, arvo); }
    QString Selite() const { return m_v.selite; }
    // Keeps the first 255 characters.
    void setSelite(const QString& selite);
    bool Avausvienti() const { return m_v.avaus; }
    void setAvausvienti(bool on) { assign(m_v.avaus, on); }
    bool Paatosvienti() const { return m_v.paatos; }
    void setPaatosvienti(bool on) { assign(m_v.paatos, on); }
    bool Automaatti() const { return m_v.automaatti; }
    void setAutomaatti(bool on) { assign(m_v.automaatti, on); }

    // Loads the entry `id`; false (and the object reset) when there is no such row.
    bool Load(qint32 id) { return Read(id); }

    // Fills the entry from a row selected by selectSql() (used when loading many at once).
    void loadFromRow(const QSqlQuery& q);
    static QString selectSql(const VoucherLayout& layout);

protected:
    EntryRecord(const QSqlDatabase& db, const VoucherLayout& layout)
        : Record(db)
        , m_layout(layout)
    {
    }

    std::optional<VientiValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    // An entry with amount 0 and no account is not stored: a stored one is deleted, which is
    // how a cleared row leaves the books.
    bool shouldStore() const override { return !(m_v.arvo.isZero() && m_v.tlId == 0); }
    QString releaseFailure() const override;

private:
    void bindValues(QSqlQuery& q) const;

    const VoucherLayout& m_layout;
};
