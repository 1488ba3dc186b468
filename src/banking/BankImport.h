#pragma once

#include "banking/BankStatement.h"

#include <QDate>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <vector>

class AccountLookup;

// From a bank statement to vouchers: a proposal for each line, learnt from the lines stored
// before, and the storing of the accepted ones in one transaction.
namespace BankImport {

// Where a proposal's counter-account came from, in the order they are tried.
enum class Source { Reference, CounterpartyAccount, CounterpartyName, Words, Suspense, User };

enum class State {
    New, // can be stored
    Imported, // stored before: never again
    OutsideYear, // the booking date is outside the fiscal year: left out
    Refused, // the line itself cannot be stored (another currency, no date)
};

struct Proposal {
    BankLine line;
    State state = State::New;
    QString note; // why the line is left out
    qint32 counterAccount = 0; // tlID; 0 when there is neither a learnt nor a suspense account
    Source source = Source::Suspense;
    QString description; // the voucher's description
};

struct Plan {
    QString error; // the whole statement is refused for this account ("" when not)
    QString iban;
    qint32 bankAccount = 0; // tlID of the account the statement is imported to
    qint32 suspenseAccount = 0; // tlID, 0 when the books have none
    std::vector<Proposal> proposals;
    int linesIn(State state) const;
};

// The suspense account Vorkam would create: the first free number of 1890, 1899, 1990, 2890 …
struct SuspenseOffer {
    qint32 numero = 0;
    QString nimi;
};
SuspenseOffer suspenseOffer(const QSqlDatabase& db);
// Creates the offered account, adds it to the statement rows of its nearest neighbour (so the
// balance sheet still balances) and stores the setting, in one transaction. Gives the new tlID
// and the rows it was added to ("Yhdistyksen tase: Saamiset"). Throws DatabaseError.
struct CreatedSuspense {
    qint32 tlId = 0;
    QStringList rows;
};
CreatedSuspense createSuspenseAccount(const QSqlDatabase& db, const SuspenseOffer& offer);

// The description of a line: counterparty and message (or reference), cut to the field.
QString description(const BankLine& line);

// Proposes a voucher for each line. The statement is refused when its IBAN is bound to another
// account, or the account to another IBAN. Throws DatabaseError.
Plan propose(const QSqlDatabase& db, const BankStatement& statement, qint32 bankAccount,
    const QDate& yearStart, const QDate& yearEnd);

struct Stored {
    QString error; // why nothing was stored ("" when the set was stored)
    int vouchers = 0;
    qint32 firstNumber = 0;
    qint32 lastNumber = 0;
    int onSuspense = 0; // of them, with the counter-entry on the suspense account
    QStringList suspenseLines; // "12.3.2026 −45,00 Firma Oy" for each of those
};

// Stores the chosen proposals (indexes into plan.proposals; the New ones only) as vouchers
// numbered on from the last, each line's archive reference with its voucher, all in one
// transaction. A proposal without a counter-account, or a line already stored meanwhile,
// refuses the whole set with `error`. Throws DatabaseError; nothing is stored then either.
Stored store(const QSqlDatabase& db, const Plan& plan, const std::vector<size_t>& chosen);

// Some line that can be stored has no learnt account and waits for the suspense account.
bool needsSuspense(const Plan& plan);
// The indexes of the lines that can be stored.
std::vector<size_t> newLines(const Plan& plan);

// The texts the window and the command line share.
// "2.3.2026  120,50  Matti Meikäläinen  viite 12344  → 3000 Kurssimaksut (viitenumero)", or
// the reason the line is left out in place of the account.
QString lineText(const AccountLookup& chart, const Proposal& p);
QString sourceText(Source source);
QString suspenseCreatedText(const SuspenseOffer& offer, const CreatedSuspense& created);
QString storedText(const Stored& stored);

} // namespace BankImport
