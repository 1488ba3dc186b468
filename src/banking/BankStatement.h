#pragma once

#include "core/Money.h"

#include <QByteArray>
#include <QDate>
#include <QString>
#include <optional>
#include <vector>

// One line of a bank statement: an entry, or one transaction of a batch entry.
struct BankLine {
    QDate bookingDate;
    Money amount; // money in positive, money out negative
    QString currency; // "EUR"
    bool reversal = false; // the entry undoes an earlier one
    QString archiveRef; // the bank's archive reference; unique per account
    QString counterparty; // the payer of money in, the payee of money out
    QString counterpartyAccount; // IBAN or account number, compact
    QString reference; // the structured reference as given (national or RF)
    QString message; // the free message
    // Why the line cannot be stored ("" when it can): another currency, no date.
    QString problem;
};

struct BankStatement {
    QString format; // "camt.053.001.02", "TITO"
    QString iban; // compact, capitals
    std::optional<Money> opening;
    std::optional<Money> closing;
    std::vector<BankLine> lines;
};

// What reading a statement file gave: the statement, or the message of a refusal.
struct BankReadResult {
    std::optional<BankStatement> statement;
    QString error; // Finnish, for the user
    bool fileError = false; // the file could not be read at all (missing, unreadable, too large)
};

namespace BankStatements {

// Files larger than this are refused unread.
constexpr qint64 MaxFileSize = 64LL * 1024 * 1024;

// Reads a camt.053 (versions .001.02 and later) or a TITO statement, told apart by content,
// and checks it against its own balances: opening + lines = closing.
BankReadResult readFile(const QString& path);
BankReadResult read(const QByteArray& content);

// The two formats on their own; neither checks the balances.
BankReadResult readCamt(const QByteArray& content);
BankReadResult readTito(const QByteArray& content);

// "" when opening + lines = closing (or a balance is not given); otherwise the refusal, which
// says by how much they differ.
QString balanceProblem(const BankStatement& statement);

} // namespace BankStatements
