#pragma once

#include "DBC.h"
#include "VientiRecord.h"
#include "VoucherLayout.h"

#include <QDate>
#include <QObject>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>
#include <memory>
#include <vector>

// One voucher over the voucher table of `layout`. cTosite (current year) and cTositeEd
// (previous year) are this record with their own layout and their own numbering and cursor.
class TositeRecord : public QObject {
    Q_OBJECT

public:
    ~TositeRecord() override; // saves a changed voucher, unless IsEmpty

    bool Dirty() const { return m_dirty; }
    bool IsEmpty() const { return m_isEmpty; }
    void setIsEmpty(bool empty) { m_isEmpty = empty; }

    // The voucher's key; 0 while it is not stored. Set only by Load and the first save.
    qint32 ToId() const { return m_toId; }
    qint32 Numero() const { return m_v.numero; }
    void setNumero(qint32 numero);
    // An invalid date is the zero date (stored as NULL).
    QDate Paiva() const { return m_v.paiva; }
    void setPaiva(const QDate& paiva);
    QString Selite() const { return m_v.selite; }
    // Keeps the first 255 characters.
    void setSelite(const QString& selite);
    bool Avaustosite() const { return m_v.avaus; }
    void setAvaustosite(bool on);
    bool Paatostosite() const { return m_v.paatos; }
    void setPaatostosite(bool on);
    bool Automaatti() const { return m_v.automaatti; }
    void setAutomaatti(bool on);

    // Reads the voucher `id`; false (and the object reset) when there is no such row.
    bool Load(qint32 id);
    // Writes the voucher when forced or changed.
    void Save(bool force = false);
    // Deletes the voucher and all its entries in one transaction, and resets the object.
    void Delete();
    // Puts back the values of the last load or save.
    void Undo();

signals:
    // After Numero or Selite has been given a value while the voucher is stored.
    void NameChanged(const QString& selite, qint32 toId);

protected:
    explicit TositeRecord(const VoucherLayout& layout)
        : m_layout(layout)
    {
    }

    // The key of the first voucher matching `where` in number order, or 0 when none.
    qint32 cursorKey(const QString& where, const QVariantList& binds, bool descending) const;
    // Sets Paiva and then Numero of a new voucher: the next number of the sequence (over
    // numbers >= 0 when `onlyUserVouchers`) and the latest date, or `defaultDate` when none.
    qint32 numberAndDate(const QDate& defaultDate, bool onlyUserVouchers);
    // Gives a new entry this voucher's key, the type and the voucher's flags and description.
    void initNewVienti(VientiRecord& vienti, const QString& tyyppi) const;
    // Runs the select of this voucher's stored entries of one type, in the order they were stored.
    bool selectViennit(QSqlQuery& q, const QString& tyyppi) const;

    // The year's own entry and voucher classes share these: a new entry of this voucher (empty
    // while the voucher is), the stored entries of one type, and the voucher read by key (empty
    // for key 0).
    template <typename Vienti> std::unique_ptr<Vienti> newVienti(const QString& tyyppi) const
    {
        auto vienti = std::make_unique<Vienti>();
        if (IsEmpty())
            vienti->setIsEmpty(true);
        else
            initNewVienti(*vienti, tyyppi);
        return vienti;
    }
    template <typename Vienti> std::vector<std::unique_ptr<Vienti>> viennit(const QString& tyyppi) const
    {
        std::vector<std::unique_ptr<Vienti>> result;
        QSqlQuery q(DBC::instance().AvaaDB());
        if (!selectViennit(q, tyyppi))
            return result;
        while (q.next()) {
            auto vienti = std::make_unique<Vienti>();
            vienti->loadFromRow(q);
            result.push_back(std::move(vienti));
        }
        return result;
    }
    template <typename Tosite> static std::unique_ptr<Tosite> loaded(qint32 key)
    {
        auto tosite = std::make_unique<Tosite>();
        if (key == 0)
            tosite->setIsEmpty(true);
        else
            tosite->Load(key);
        return tosite;
    }

    const VoucherLayout& m_layout;

private:
    struct Values {
        qint32 numero = 0;
        QDate paiva;
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

    qint32 m_toId = 0;
    Values m_v;
    Values m_undo;
    bool m_dirty = false;
    bool m_isEmpty = false;
};
