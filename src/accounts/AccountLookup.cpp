#include "AccountLookup.h"

#include "DatabaseError.h"

#include <QRegularExpression>
#include <QSqlQuery>
#include <QVariant>

void AccountLookup::load(const QSqlDatabase& db)
{
    m_accounts.clear();
    m_byId.clear();
    m_byNumero.clear();
    QSqlQuery q
        = Sql::run(db, QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl ORDER BY tlNumero, tlID"));
    while (q.next()) {
        m_accounts.push_back({ q.value(0).toInt(), q.value(1).toInt(), q.value(2).toString().trimmed() });
        const int index = int(m_accounts.size()) - 1;
        m_byId.insert(m_accounts.back().id, index);
        if (!m_byNumero.contains(m_accounts.back().numero))
            m_byNumero.insert(m_accounts.back().numero, index);
    }
}

QString AccountLookup::text(qint32 id) const
{
    const auto it = m_byId.constFind(id);
    if (id == 0 || it == m_byId.cend())
        return QString();
    const Account& a = m_accounts[size_t(*it)];
    return a.nimi.isEmpty() ? QString::number(a.numero) : QString::number(a.numero) + u' ' + a.nimi;
}

QStringList AccountLookup::texts() const
{
    QStringList list;
    list.reserve(qsizetype(m_accounts.size()));
    for (const Account& a : m_accounts)
        list.append(text(a.id));
    return list;
}

qint32 AccountLookup::resolve(const QString& typed) const
{
    const QString t = typed.trimmed();
    if (t.isEmpty())
        return 0;
    static const QRegularExpression leadingNumber(QStringLiteral("^(-?\\d+)(\\s|$)"));
    const auto m = leadingNumber.match(t);
    if (m.hasMatch()) {
        bool ok = false;
        const qint32 numero = m.captured(1).toInt(&ok);
        const auto it = m_byNumero.constFind(numero);
        if (ok && it != m_byNumero.cend())
            return m_accounts[size_t(*it)].id;
    }
    for (const Account& a : m_accounts)
        if (a.nimi.startsWith(t, Qt::CaseInsensitive))
            return a.id;
    return 0;
}

namespace {

AccountLookup::Sums sumsOf(QSqlQuery q)
{
    AccountLookup::Sums sums;
    while (q.next()) {
        const Money sum = Money::fromRaw(q.value(1).toLongLong());
        if (q.value(0).toString() == u"D")
            sums.debet += sum;
        else if (q.value(0).toString() == u"K")
            sums.kredit += sum;
    }
    return sums;
}

} // namespace

AccountLookup::Sums AccountLookup::storedSums(const QSqlDatabase& db, qint32 tlId)
{
    // EXISTS looks each entry's voucher up by its key; IN (SELECT …) would first gather every
    // voucher of the year, which costs more than the account's own entries.
    return sumsOf(Sql::run(db,
        QStringLiteral("SELECT viTyyppi, SUM(viArvo) FROM vi WHERE vitlID = ? "
                       "AND EXISTS (SELECT 1 FROM \"to\" WHERE toID = vitoID) GROUP BY viTyyppi"),
        { tlId }));
}

AccountLookup::Sums AccountLookup::voucherSums(const QSqlDatabase& db, qint32 tlId, qint32 toId)
{
    return sumsOf(Sql::run(db,
        QStringLiteral(
            "SELECT viTyyppi, SUM(viArvo) FROM vi WHERE vitoID = ? AND vitlID = ? GROUP BY viTyyppi"),
        { toId, tlId }));
}
