#pragma once

#include "core/Record.h"

#include <QObject>
#include <QString>
#include <memory>
#include <vector>

struct MalliRiviValues {
    qint32 malliId = 0;
    QString saldoPuoli;
    QString tilit;
    qint32 belongsToGroup = 0;
    qint32 groupOrder = 0;
    QString teksti;
    QString kaava;
    bool isLiikevaihto = false;
    bool isEquation = false;
    bool isVoitto = false;
    qint32 tlId = 0;
    QString viTyyppi;
    bool operator==(const MalliRiviValues&) const = default;
};

// One row of a statement template: a row of the mr table. Rows form a tree under their
// template through BelongsToGroup (0: a main group); siblings are ordered by GroupOrder. A
// changed row saves itself when it is released. Database errors throw DatabaseError.
class cMalliRivi final : public QObject, public Record<MalliRiviValues> {
    Q_OBJECT

public:
    explicit cMalliRivi(const QSqlDatabase& db, QObject* parent = nullptr);
    ~cMalliRivi() override;

    // mrID; 0 while the row is not stored.
    qint32 id() const { return key(); }

    bool Load(qint32 id) { return Read(id); }
    // Deletes the row and every row below it, however deep, children before their parent, in
    // one transaction. Rows of other templates are never touched.
    void Delete();

    qint32 MalliId() const { return m_v.malliId; }
    void setMalliId(qint32 id) { assign(m_v.malliId, id); }
    // Cut to 50 characters; every assignment raises NameChanged.
    QString Teksti() const { return m_v.teksti; }
    void setTeksti(const QString& teksti);
    // "D" or "K"; only the first character is kept.
    QString SaldoPuoli() const { return m_v.saldoPuoli; }
    void setSaldoPuoli(const QString& puoli) { assign(m_v.saldoPuoli, puoli.left(1)); }
    qint32 BelongsToGroup() const { return m_v.belongsToGroup; }
    void setBelongsToGroup(qint32 parentId) { assign(m_v.belongsToGroup, parentId); }
    qint32 GroupOrder() const { return m_v.groupOrder; }
    void setGroupOrder(qint32 order) { assign(m_v.groupOrder, order); }
    // The accounts as comma-terminated tlID keys ("12,15,31,"); cut to 255 characters.
    QString Tilit() const { return m_v.tilit; }
    void setTilit(const QString& tilit);
    // The formula as comma-terminated terms ("+41,-57,"); cut to 255 characters.
    QString Kaava() const { return m_v.kaava; }
    void setKaava(const QString& kaava);
    bool IsLiikevaihto() const { return m_v.isLiikevaihto; }
    void setIsLiikevaihto(bool on) { assign(m_v.isLiikevaihto, on); }
    bool IsEquation() const { return m_v.isEquation; }
    void setIsEquation(bool on) { assign(m_v.isEquation, on); }
    bool IsVoitto() const { return m_v.isVoitto; }
    void setIsVoitto(bool on) { assign(m_v.isVoitto, on); }
    // An account and an entry side attached to the row; kept and copied as stored.
    qint32 mrtlID() const { return m_v.tlId; }
    void setmrtlID(qint32 id) { assign(m_v.tlId, id); }
    QString viTyyppi() const { return m_v.viTyyppi; }
    void setviTyyppi(const QString& tyyppi) { assign(m_v.viTyyppi, tyyppi.left(1)); }

    // Whether any row of the same template has this row as its group.
    bool HasSubGroups() const;
    // Places the row after the last of its siblings: the largest GroupOrder under the same
    // group of the same template, plus 1 (1 for the first row of a group).
    void SetDefaultGroupOrder();
    // The rows directly below this one in GroupOrder order.
    std::vector<std::unique_ptr<cMalliRivi>> SubRows() const;

signals:
    void NameChanged(const QString& teksti, qint32 id);

protected:
    std::optional<MalliRiviValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    QString releaseFailure() const override;

private:
    void bindValues(QSqlQuery& q) const;
};
