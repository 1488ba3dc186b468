#include "vouchers/cVientiPohja.h"

#include <QVariant>

cVientiPohja::~cVientiPohja() { saveOnRelease(); }

QString cVientiPohja::releaseFailure() const
{
    return QStringLiteral("Tositepohjan viennin tallentaminen ei onnistunut.");
}

std::optional<VientiPohjaValues> cVientiPohja::selectRow(qint32 id) const
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("SELECT viptlID, viptpID, vipTyyppi, vipArvo FROM vipPohjat WHERE vipID = ?"), { id });
    if (!q.next())
        return std::nullopt;
    VientiPohjaValues v;
    v.tlId = q.value(0).toInt();
    v.tpId = q.value(1).toInt();
    v.tyyppi = q.value(2).toString();
    v.arvo = Money::fromRaw(q.value(3).toLongLong());
    return v;
}

qint32 cVientiPohja::insertRow()
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("INSERT INTO vipPohjat (viptlID, viptpID, vipTyyppi, vipArvo) VALUES (?, ?, ?, ?)"),
        { m_v.tlId, m_v.tpId, m_v.tyyppi, m_v.arvo.raw() });
    return q.lastInsertId().toInt();
}

void cVientiPohja::updateRow()
{
    Sql::run(database(),
        QStringLiteral(
            "UPDATE vipPohjat SET viptlID = ?, viptpID = ?, vipTyyppi = ?, vipArvo = ? WHERE vipID = ?"),
        { m_v.tlId, m_v.tpId, m_v.tyyppi, m_v.arvo.raw(), key() });
}

// The pattern goes by its own key; a template's delete takes all of its patterns at once.
void cVientiPohja::deleteRow()
{
    Sql::run(database(), QStringLiteral("DELETE FROM vipPohjat WHERE vipID = ?"), { key() });
}
