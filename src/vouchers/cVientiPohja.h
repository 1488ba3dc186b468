#pragma once

#include "core/Money.h"
#include "core/Record.h"

#include <QString>

struct VientiPohjaValues {
    qint32 tlId = 0;
    qint32 tpId = 0;
    QString tyyppi;
    Money arvo;
    bool operator==(const VientiPohjaValues&) const = default;
};

// One entry pattern of a voucher template (table vipPohjat): account, side and amount.
class cVientiPohja final : public Record<VientiPohjaValues> {
public:
    explicit cVientiPohja(const QSqlDatabase& db)
        : Record(db)
    {
    }
    ~cVientiPohja() override; // saves a changed pattern

    qint32 vipID() const { return key(); }
    qint32 viptlID() const { return m_v.tlId; }
    void setviptlID(qint32 id) { assign(m_v.tlId, id); }
    qint32 viptpID() const { return m_v.tpId; }
    void setviptpID(qint32 id) { assign(m_v.tpId, id); }
    QString vipTyyppi() const { return m_v.tyyppi; }
    void setvipTyyppi(const QString& tyyppi) { assign(m_v.tyyppi, tyyppi.left(1)); }
    Money vipArvo() const { return m_v.arvo; }
    void setvipArvo(Money arvo) { assign(m_v.arvo, arvo); }

    bool Load(qint32 id) { return Read(id); }
    // A blank row (no account, amount 0) is what an empty row of the window holds.
    bool tyhja() const { return m_v.tlId == 0 && m_v.arvo.isZero(); }

protected:
    std::optional<VientiPohjaValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    // A row cleared in the window leaves the template.
    bool shouldStore() const override { return !tyhja(); }
    QString releaseFailure() const override;
};
