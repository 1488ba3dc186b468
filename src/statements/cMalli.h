#pragma once

#include "core/Record.h"
#include "statements/cMalliRivi.h"

#include <QObject>
#include <QString>
#include <memory>
#include <vector>

struct MalliValues {
    QString nimi;
    qint16 tyyppi = 0;
    bool suojattu = false;
    qint32 tulosMaId = 0;
    bool operator==(const MalliValues&) const = default;
};

// One statement template: a row of the ma table. Its rows are cMalliRivi objects. A changed
// template saves itself when it is released. Database errors throw DatabaseError.
class cMalli final : public QObject, public Record<MalliValues> {
    Q_OBJECT

public:
    static constexpr qint16 Tuloslaskelma = 1;
    static constexpr qint16 Tase = 2;

    explicit cMalli(const QSqlDatabase& db, QObject* parent = nullptr);
    ~cMalli() override;

    // maID; 0 while the template is not stored.
    qint32 id() const { return key(); }

    bool Load(qint32 id) { return Read(id); }
    // Deletes the template row and then all its rows, in one transaction. A protected template
    // and one not stored are left alone: false.
    bool Delete();

    // Cut to 50 characters, and a single blank for an empty text: a template always has a
    // name. Every assignment raises NameChanged.
    QString Nimi() const { return m_v.nimi; }
    void setNimi(const QString& nimi);
    // Tuloslaskelma (1) or Tase (2).
    qint16 Tyyppi() const { return m_v.tyyppi; }
    void setTyyppi(qint16 tyyppi) { assign(m_v.tyyppi, tyyppi); }
    bool Suojattu() const { return m_v.suojattu; }
    void setSuojattu(bool on) { assign(m_v.suojattu, on); }
    // For a balance sheet: the income statement whose profit row gives the period's profit.
    qint32 TulosMaID() const { return m_v.tulosMaId; }
    void setTulosMaID(qint32 id) { assign(m_v.tulosMaId, id); }

    // A new, unsaved row of this template.
    std::unique_ptr<cMalliRivi> AddModelRow() const;
    // The main groups (rows directly under the template) in GroupOrder order.
    std::vector<std::unique_ptr<cMalliRivi>> MainGroups() const;

signals:
    void NameChanged(qint16 tyyppi, const QString& nimi, qint32 id);

protected:
    std::optional<MalliValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    QString releaseFailure() const override;

private:
    void bindValues(QSqlQuery& q) const;
};
