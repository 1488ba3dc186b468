#pragma once

#include "Money.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <vector>

// The chart of accounts as the voucher window needs it: account number and name by key,
// completion of what the user types in an account cell, and the sums of one account.
// Reads the tl table directly.
class VoucherAccounts final {
public:
    struct Account {
        qint32 id = 0;
        qint32 numero = 0;
        QString nimi;
    };
    struct Sums {
        Money debet;
        Money kredit;
    };

    // Reads every account in number order.
    void load();
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
    static Sums storedSums(qint32 tlId);

private:
    std::vector<Account> m_accounts;
    QHash<qint32, int> m_byId;
    QHash<qint32, int> m_byNumero;
};

// What the user typed in an amount cell, read the Finnish way ("12,50", "1 234,50").
struct AmountInput {
    enum class Result { Ok, NotANumber, Negative, TooManyDecimals, TooLarge };
    Result result = Result::Ok;
    Money value;
    // The message shown for a refused amount; "" when accepted.
    QString message() const;

    // An empty text is 0. The largest amount accepted is 999 999 999,99.
    static AmountInput parse(const QString& text);
};
