#pragma once

#include "core/Record.h"
#include "vouchers/cVientiPohja.h"

#include <QString>
#include <memory>
#include <vector>

struct TositePohjaValues {
    QString nimi;
    QString selite;
    // 1 to 4, or 0 for none.
    int pikavalinta = 0;
    bool operator==(const TositePohjaValues&) const = default;
};

// A voucher template (table tpPohjat): a name, the description a voucher made from it gets,
// and its quick-select number. Its entry patterns are cVientiPohja rows.
class cTositePohja final : public Record<TositePohjaValues> {
public:
    using Viennit = std::vector<std::unique_ptr<cVientiPohja>>;

    explicit cTositePohja(const QSqlDatabase& db)
        : Record(db)
    {
    }
    ~cTositePohja() override; // saves a changed template

    qint32 tpID() const { return key(); }
    QString Nimi() const { return m_v.nimi; }
    // Keeps the first 50 characters.
    void setNimi(const QString& nimi);
    QString Selite() const { return m_v.selite; }
    // Keeps the first 255 characters.
    void setSelite(const QString& selite);
    int Pikavalinta() const { return m_v.pikavalinta; }
    // Numbers outside 1–4 mean none.
    void setPikavalinta(int numero) { assign(m_v.pikavalinta, numero >= 1 && numero <= 4 ? numero : 0); }

    bool Load(qint32 id) { return Read(id); }
    // Deletes the template and all its entry patterns in one transaction.
    void Delete();
    // The stored patterns of one side ("D" or "K"), in the order they were stored.
    Viennit GetViennit(const QString& tyyppi) const;

protected:
    std::optional<TositePohjaValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    QString releaseFailure() const override;
};
