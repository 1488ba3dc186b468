#include "accounts/cTiliTarkastelu.h"

#include "core/Dates.h"
#include "core/RecordText.h"

#include <QVariant>

cTiliTarkastelu::cTiliTarkastelu(const QSqlDatabase& db)
    : Record(db)
{
}

cTiliTarkastelu::~cTiliTarkastelu() { saveOnRelease(); }

QString cTiliTarkastelu::releaseFailure() const
{
    return QStringLiteral("Tilitarkastelun riviä ei voitu tallentaa.");
}

void cTiliTarkastelu::setSelite(const QString& value)
{
    assign(m_v.selite, RecordText::cut(value, RecordText::DescriptionLength));
}

std::optional<TiliTarkasteluValues> cTiliTarkastelu::selectRow(qint32 id) const
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral(
            "SELECT Numero, Paiva, Selite, Debet, Kredit, Erotus FROM tlTarkastelut WHERE tltID = ?"),
        { id });
    if (!q.next())
        return std::nullopt;
    return TiliTarkasteluValues { q.value(0).toInt(), Dates::fromSql(q.value(1).toString()),
        q.value(2).toString(), Money::fromRaw(q.value(3).toLongLong()),
        Money::fromRaw(q.value(4).toLongLong()), Money::fromRaw(q.value(5).toLongLong()) };
}

qint32 cTiliTarkastelu::insertRow()
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("INSERT INTO tlTarkastelut (Numero, Paiva, Selite, Debet, Kredit, Erotus) "
                       "VALUES (?, ?, ?, ?, ?, ?)"),
        { m_v.numero, m_v.paiva.isValid() ? QVariant(Dates::toSql(m_v.paiva)) : QVariant(),
            RecordText::blankIfEmpty(m_v.selite), m_v.debet.raw(), m_v.kredit.raw(), m_v.erotus.raw() });
    return q.lastInsertId().toInt();
}

void cTiliTarkastelu::updateRow()
{
    Sql::run(database(),
        QStringLiteral("UPDATE tlTarkastelut SET Numero = ?, Paiva = ?, Selite = ?, Debet = ?, Kredit = ?, "
                       "Erotus = ? WHERE tltID = ?"),
        { m_v.numero, m_v.paiva.isValid() ? QVariant(Dates::toSql(m_v.paiva)) : QVariant(),
            RecordText::blankIfEmpty(m_v.selite), m_v.debet.raw(), m_v.kredit.raw(), m_v.erotus.raw(),
            key() });
}

void cTiliTarkastelu::deleteRow()
{
    Sql::run(database(), QStringLiteral("DELETE FROM tlTarkastelut WHERE tltID = ?"), { key() });
}
