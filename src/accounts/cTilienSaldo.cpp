#include "accounts/cTilienSaldo.h"

#include "core/RecordText.h"

#include <QVariant>

cTilienSaldo::cTilienSaldo(const QSqlDatabase& db)
    : Record(db)
{
}

cTilienSaldo::~cTilienSaldo() { saveOnRelease(); }

QString cTilienSaldo::releaseFailure() const { return QStringLiteral("Tilin saldoa ei voitu tallentaa."); }

void cTilienSaldo::setTili(const QString& value)
{
    assign(m_v.tili, RecordText::cut(value, RecordText::DescriptionLength));
}

std::optional<TilienSaldoValues> cTilienSaldo::selectRow(qint32 id) const
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("SELECT Tili, Debet, Kredit, Erotus FROM tlSaldot WHERE tlsID = ?"), { id });
    if (!q.next())
        return std::nullopt;
    return TilienSaldoValues { q.value(0).toString(), Money::fromRaw(q.value(1).toLongLong()),
        Money::fromRaw(q.value(2).toLongLong()), Money::fromRaw(q.value(3).toLongLong()) };
}

qint32 cTilienSaldo::insertRow()
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("INSERT INTO tlSaldot (Tili, Debet, Kredit, Erotus) VALUES (?, ?, ?, ?)"),
        { m_v.tili, m_v.debet.raw(), m_v.kredit.raw(), m_v.erotus.raw() });
    return q.lastInsertId().toInt();
}

void cTilienSaldo::updateRow()
{
    Sql::run(database(),
        QStringLiteral("UPDATE tlSaldot SET Tili = ?, Debet = ?, Kredit = ?, Erotus = ? WHERE tlsID = ?"),
        { m_v.tili, m_v.debet.raw(), m_v.kredit.raw(), m_v.erotus.raw(), key() });
}

void cTilienSaldo::deleteRow()
{
    Sql::run(database(), QStringLiteral("DELETE FROM tlSaldot WHERE tlsID = ?"), { key() });
}
