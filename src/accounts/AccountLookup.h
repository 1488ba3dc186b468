#pragma once

#include "accounts/ChartOfAccounts.h"
#include "core/Money.h"

#include <QHash>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

// The chart of accounts as the voucher window needs it: account number and name by key,
// completion of what the user types in an account cell, and the sums of one account.
class AccountLookup final {
public:
    using Account = ChartOfAccounts::Account;
    struct Sums {
        Money debet;
        Money kredit;
        Sums operator+(const Sums& o) const { return { debet + o.debet, kredit + o.kredit }; }
        Sums operator-(const Sums& o) const { return { debet - o.debet, kredit - o.kredit }; }
    };

    // Reads every account in number order.
    void load(const QSqlDatabase& db);
    const std::vector<Account>& accounts() const { return m_accounts; }
    // "1910 Pankkitili", or "" for an unknown key or 0.
    QString text(qint32 id) const;
    // Every account as text(), in number order, for completion lists.
    QStringList texts() const;
    // The account the user means: an exact account number, a number followed by anything
    // ("1910 Pankkitili"), or the start of a name (case-insensitive, the lowest number wins).
    // 0 when nothing matches.
    qint32 resolve(const QString& typed) const;

    // Debit and credit sums of the entries of `tlId` in every stored voucher.
    static Sums storedSums(const QSqlDatabase& db, qint32 tlId);
    // The same in the stored voucher `toId` only.
    static Sums voucherSums(const QSqlDatabase& db, qint32 tlId, qint32 toId);

private:
    std::vector<Account> m_accounts;
    QHash<qint32, int> m_byId;
    QHash<qint32, int> m_byNumero;
};
