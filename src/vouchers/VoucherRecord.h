#pragma once

#include "core/Record.h"
#include "vouchers/EntryRecord.h"
#include "vouchers/VoucherLayout.h"

#include <QDate>
#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

struct TositeValues {
    qint32 numero = 0;
    QDate paiva;
    QString selite;
    bool avaus = false;
    bool paatos = false;
    bool automaatti = false;
    bool operator==(const TositeValues&) const = default;
};

// Which voucher a cursor step looks for: the first one, in number order, above or below a
// number, optionally of one kind only.
struct CursorStep {
    enum class Compare { Above, Below };
    Compare compare = Compare::Above;
    qint32 numero = 0;
    bool descending = false;
    struct Kind {
        bool avaus;
        bool paatos;
    };
    std::optional<Kind> kind;
};

// One voucher over the voucher table of `layout`. cTosite (current year) and cTositeEd
// (previous year) are this record with their own layout and their own numbering and cursor.
class VoucherRecord : public QObject, public Record<TositeValues> {
    Q_OBJECT

public:
    ~VoucherRecord() override; // saves a changed voucher, unless IsEmpty

    // The voucher's key; 0 while it is not stored. Set only by Load and the first save.
    qint32 ToId() const { return key(); }
    qint32 Numero() const { return m_v.numero; }
    void setNumero(qint32 numero);
    // An invalid date is the zero date (stored as NULL).
    QDate Paiva() const { return m_v.paiva; }
    void setPaiva(const QDate& paiva) { assign(m_v.paiva, paiva.isValid() ? paiva : QDate()); }
    QString Selite() const { return m_v.selite; }
    // Keeps the first 255 characters.
    void setSelite(const QString& selite);
    bool Avaustosite() const { return m_v.avaus; }
    void setAvaustosite(bool on) { assign(m_v.avaus, on); }
    bool Paatostosite() const { return m_v.paatos; }
    void setPaatostosite(bool on) { assign(m_v.paatos, on); }
    bool Automaatti() const { return m_v.automaatti; }
    void setAutomaatti(bool on) { assign(m_v.automaatti, on); }

    // Reads the voucher `id`; false (and the object reset) when there is no such row.
    bool Load(qint32 id) { return Read(id); }
    // Deletes the voucher and all its entries in one transaction, and resets the object.
    void Delete();

signals:
    // After Numero or Selite has been given a value while the voucher is stored.
    void NameChanged(const QString& selite, qint32 toId);

protected:
    VoucherRecord(const QSqlDatabase& db, const VoucherLayout& layout)
        : Record(db)
        , m_layout(layout)
    {
    }

    std::optional<TositeValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    QString releaseFailure() const override;

    // The key of the voucher a cursor step finds, or 0 when none.
    qint32 cursorKey(const CursorStep& step) const;
    // Sets Paiva and then Numero of a new voucher: the next number of the sequence (over
    // numbers >= 0 when `onlyUserVouchers`) and the latest date, or `defaultDate` when none.
    qint32 numberAndDate(const QDate& defaultDate, bool onlyUserVouchers);
    // Gives a new entry this voucher's key, the type and the voucher's flags and description.
    void initNewVienti(EntryRecord& vienti, const QString& tyyppi) const;

    // The year's own entry and voucher classes share these: a new entry of this voucher (empty
    // while the voucher is), the stored entries of one type in the order they were stored, and
    // a voucher read by key (empty for key 0).
    template <typename Vienti> std::unique_ptr<Vienti> newVienti(const QString& tyyppi) const
    {
        auto vienti = std::make_unique<Vienti>(database());
        if (IsEmpty())
            vienti->setIsEmpty(true);
        else
            initNewVienti(*vienti, tyyppi);
        return vienti;
    }
    template <typename Vienti> std::vector<std::unique_ptr<Vienti>> viennit(const QString& tyyppi) const
    {
        std::vector<std::unique_ptr<Vienti>> result;
        if (IsEmpty() || ToId() == 0)
            return result;
        QSqlQuery q = selectViennit(tyyppi);
        while (q.next()) {
            auto vienti = std::make_unique<Vienti>(database());
            vienti->loadFromRow(q);
            result.push_back(std::move(vienti));
        }
        return result;
    }
    template <typename Tosite> std::unique_ptr<Tosite> loaded(qint32 key) const
    {
        auto tosite = std::make_unique<Tosite>(database());
        if (key == 0)
            tosite->setIsEmpty(true);
        else
            tosite->Load(key);
        return tosite;
    }

    const VoucherLayout& m_layout;

private:
    QSqlQuery selectViennit(const QString& tyyppi) const;
    void bindValues(QSqlQuery& q, bool withKeyBeforeFlag, qint32 newKey) const;
};
