#include "VoucherAccounts.h"

#include "DBC.h"
#include "VoucherDatabaseError.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

void VoucherAccounts::load()
{
    m_accounts.clear();
    m_byId.clear();
    m_byNumero.clear();
    QSqlQuery q(DBC::instance().AvaaDB());
    q.setForwardOnly(true);
    if (!q.prepare(QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl ORDER BY tlNumero, tlID")))
        throw VoucherDatabaseError(q.lastError().text());
    VoucherDatabaseError::exec(q);
    while (q.next()) {
        m_accounts.push_back({ q.value(0).toInt(), q.value(1).toInt(), q.value(2).toString().trimmed() });
        const int index = int(m_accounts.size()) - 1;
        m_byId.insert(m_accounts.back().id, index);
        if (!m_byNumero.contains(m_accounts.back().numero))
            m_byNumero.insert(m_accounts.back().numero, index);
    }
}

QString VoucherAccounts::text(qint32 id) const
{
    const auto it = m_byId.constFind(id);
    if (id == 0 || it == m_byId.cend())
        return QString();
    const Account& a = m_accounts[size_t(*it)];
    return a.nimi.isEmpty() ? QString::number(a.numero) : QString::number(a.numero) + u' ' + a.nimi;
}

QStringList VoucherAccounts::texts() const
{
    QStringList list;
    list.reserve(qsizetype(m_accounts.size()));
    for (const Account& a : m_accounts)
        list.append(text(a.id));
    return list;
}

qint32 VoucherAccounts::resolve(const QString& typed) const
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

VoucherAccounts::Sums VoucherAccounts::storedSums(qint32 tlId)
{
    Sums sums;
    QSqlQuery q(DBC::instance().AvaaDB());
    // EXISTS looks each entry's voucher up by its key; IN (SELECT …) would first gather every
    // voucher of the year, which costs more than the account's own entries.
    if (!q.prepare(QStringLiteral("SELECT viTyyppi, SUM(viArvo) FROM vi WHERE vitlID = ? "
                                  "AND EXISTS (SELECT 1 FROM \"to\" WHERE toID = vitoID) GROUP BY viTyyppi")))
        throw VoucherDatabaseError(q.lastError().text());
    q.addBindValue(tlId);
    VoucherDatabaseError::exec(q);
    while (q.next()) {
        const Money sum = Money::fromRaw(q.value(1).toLongLong());
        if (q.value(0).toString() == u"D")
            sums.debet += sum;
        else if (q.value(0).toString() == u"K")
            sums.kredit += sum;
    }
    return sums;
}

QString AmountInput::message() const
{
    switch (result) {
    case Result::Ok:
        return QString();
    case Result::NotANumber:
        return QStringLiteral("Summa ei ole luku. Viennin summaksi tulee 0.");
    case Result::Negative:
        return QStringLiteral("Summa ei voi olla negatiivinen. Kirjaa vienti vastakkaiselle puolelle.");
    case Result::TooManyDecimals:
        return QStringLiteral("Summassa voi olla enintään kaksi desimaalia.");
    case Result::TooLarge:
        return QStringLiteral("Summa on liian suuri.");
    }
    return QString();
}

AmountInput AmountInput::parse(const QString& text)
{
    static const Money largest = Money::fromCents(99999999999);
    AmountInput in;
    const QString t = text.trimmed();
    if (t.isEmpty())
        return in;
    const std::optional<Money> parsed = Money::parse(t);
    if (!parsed) {
        static const QRegularExpression digits(QStringLiteral("^-?[0-9\\s\\x{a0}]+([,.][0-9]*)?\\s*€?$"));
        in.result = digits.match(t).hasMatch() ? Result::TooLarge : Result::NotANumber;
        return in;
    }
    if (parsed->isNegative())
        in.result = Result::Negative;
    else if (*parsed > largest)
        in.result = Result::TooLarge;
    else if (parsed->roundedToCents() != *parsed)
        in.result = Result::TooManyDecimals;
    else
        in.value = *parsed;
    return in;
}
