#include "accounts/AccountLookup.h"

#include "core/DatabaseError.h"

#include <QRegularExpression>
#include <QSqlQuery>
#include <QVariant>

void AccountLookup::load(const QSqlDatabase& db)
{
    m_byId.clear();
    m_byNumero.clear();
    m_accounts = ChartOfAccounts::accounts(db);
    for (int index = 0; index < int(m_accounts.size()); ++index) {
        const Account& a = m_accounts[size_t(index)];
        m_byId.insert(a.id, index);
        // The first account of a number is the one a typed number finds.
        if (!m_byNumero.contains(a.numero))
            m_byNumero.insert(a.numero, index);
    }
}

QString AccountLookup::text(qint32 id) const
{
    const auto it = m_byId.constFind(id);
    if (id == 0 || it == m_byId.cend())
        return QString();
    return m_accounts[size_t(*it)].caption();
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
