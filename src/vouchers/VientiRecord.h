#pragma once

#include "Money.h"
#include "VoucherLayout.h"

#include <QSqlQuery>
#include <QString>

// One entry (posting) of a voucher, over the entry table of `layout`. cVienti (current year)
// and cVientiEd (previous year) are this record with their own layout.
class VientiRecord {
public:
    virtual ~VientiRecord(); // saves a changed entry, unless IsEmpty
    VientiRecord(const VientiRecord&) = delete;
    VientiRecord& operator=(const VientiRecord&) = delete;

    bool Dirty() const { return m_dirty; }
    bool IsEmpty() const { return m_isEmpty; }
    void setIsEmpty(bool empty) { m_isEmpty = empty; }

    // The entry's key; 0 while it is not stored.
    qint32 ViId() const { return m_viId; }
    qint32 tlID() const { return m_v.tlId; }
    void settlID(qint32 id);
    qint32 ToId() const { return m_v.toId; }
    void setToId(qint32 id);
    QString Tyyppi() const { return m_v.tyyppi; }
    // Keeps only the first character; an empty text stays empty.
    void setTyyppi(const QString& tyyppi);
    // Reads as 0 while IsEmpty.
    Money Arvo() const { return m_isEmpty ? Money() : m_v.arvo; }
    void setArvo(Money arvo);
    QString Selite() const { return m_v.selite; }
    // Keeps the first 255 characters.
    void setSelite(const QString& selite);
    bool Avausvienti() const { return m_v.avaus; }
    void setAvausvienti(bool on);
    bool Paatosvienti() const { return m_v.paatos; }
    void setPaatosvienti(bool on);
    bool Automaatti() const { return m_v.automaatti; }
    void setAutomaatti(bool on);

    // Reads the entry `id`; false (and the object reset) when there is no such row.
    bool Load(qint32 id);
    // Writes the entry when forced or changed. An entry with amount 0 and no account is not
    // stored: a stored one is deleted, which is how a cleared row leaves the books.
    void Save(bool force = false);
    void Delete();
    // Puts back the values of the last load or save (for a new entry: the values it was made with).
    void Undo();
    // Makes the present values the ones Undo returns to; used when a new entry has been made.
    void takeUndoCopy() { m_undo = m_v; }

    // Fills the entry from a row selected by selectSql() (used when loading many at once).
    void loadFromRow(const QSqlQuery& q);
    static QString selectSql(const VoucherLayout& layout);

protected:
    explicit VientiRecord(const VoucherLayout& layout)
        : m_layout(layout)
    {
    }

private:
    struct Values {
        qint32 tlId = 0;
        qint32 toId = 0;
        QString tyyppi;
        Money arvo;
        QString selite;
        bool avaus = false;
        bool paatos = false;
        bool automaatti = false;
        bool operator==(const Values&) const = default;
    };
    void reset();
    template <typename T> void assign(T& member, const T& value)
    {
        if (!(member == value)) {
            member = value;
            m_dirty = true;
        }
    }

    const VoucherLayout& m_layout;
    qint32 m_viId = 0;
    Values m_v;
    Values m_undo;
    bool m_dirty = false;
    bool m_isEmpty = false;
};
