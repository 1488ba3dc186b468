#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <optional>
#include <vector>

// The rules of the chart of accounts that its windows share: the grouping by thousands, the
// reading of the chart for the tree, adding an account and the delete rule.
namespace ChartOfAccounts {

// Group nodes: index 0–8 for the groups 1000–9000, index 9 for "Muut".
constexpr int RyhmaCount = 10;
constexpr int MuutIndex = 9;

// The group of an account number: 1000–1999 in index 0 … 9000–9999 in index 8; numbers below
// 1000 (also 0 and negative) and 10000–10999 in "Muut". Numbers of 11000 and more have no
// group: nullopt.
std::optional<int> ryhma(qint32 numero);

// Node keys and texts of the tree.
QString ryhmaAvain(int index); // "3000PN", "MuutPN"
QString ryhmaTeksti(int index); // " 3000 ", "Muut"
QString tiliAvain(qint32 id); // "57ID"
QString tiliTeksti(qint32 numero, const QString& nimi); // "1910 Pankkitili"
// The account id of a node key, nullopt for a group node.
std::optional<qint32> tiliAvaimesta(const QString& key);

// An account number as the user typed it: a whole number, blanks around it allowed.
std::optional<qint32> numeroTekstista(const QString& text);

// One account as every list of accounts shows it.
struct Account {
    qint32 id = 0;
    qint32 numero = 0;
    QString nimi; // trimmed
    // "1910 Pankkitili"; the number alone when the name is blank.
    QString caption() const;
};

// The whole chart in account-number order, equal numbers by key: the one reading of the chart
// that every list of accounts uses. Throws DatabaseError.
std::vector<Account> accounts(const QSqlDatabase& db);

struct Rivi {
    qint32 id = 0;
    qint32 numero = 0;
    QString nimi;
    int ryhma = MuutIndex;
};

struct Puu {
    QList<Rivi> rivit;
    // "" when the whole chart was read; otherwise the tree message. The rows read before the
    // failure are kept.
    QString virhe;
};

// Reads the chart in number and name order for the tree. First removes the leading rows whose
// name is missing or begins with a character below "A" (a blank, a digit, punctuation), up to
// the first row whose name begins with "A" or above; rows like that further down are kept.
// A leading empty name, and a number of 11000 or more, end the reading with the message
// "Virhe luotaessa hakemistopuuta tileistä." and a line with the cause.
Puu lueTilikartta(const QSqlDatabase& db);

// The outcome of a check: "" when it passed, otherwise the message and whether the number
// field is at fault.
struct Tarkistus {
    QString viesti;
    bool numerossa = false;
    bool ok() const { return viesti.isEmpty(); }
};

// The checks of a new or renumbered account, in order: the number is a number of at least
// four digits (leading zeros do not count), it fits the tree (below 11000), no other account
// than `omaId` has it, and the name is not blank.
Tarkistus tarkistaTili(
    const QSqlDatabase& db, const QString& numeroText, const QString& nimi, qint32 omaId = 0);

// The checks of a changed account `id` before it is saved: the number as tarkistaTili checks
// it, but only when it differs from the stored one; the name is not blank.
Tarkistus tarkistaMuutos(const QSqlDatabase& db, qint32 id, const QString& numeroText, const QString& nimi);

// Adds an account after tarkistaTili; an empty description is stored as a blank. Gives the
// new tlID, or 0 with `virhe` set when the checks refused. Database errors throw DatabaseError,
// here and in the checks.
qint32 lisaaTili(const QSqlDatabase& db, const QString& numeroText, const QString& nimi,
    const QString& kuvaus, Tarkistus* virhe);

// A row of a statement template that lists accounts.
struct MalliRivi {
    qint32 id = 0; // mrID
    QString malli; // the template's name
    QString rivi; // the row's text
};

// The template rows whose account list holds account `tlId`, by template and row. Throws
// DatabaseError.
std::vector<MalliRivi> malliRivit(const QSqlDatabase& db, qint32 tlId);

// Where a new account most likely belongs: the rows of the account nearest to it in number
// within its group (the closest lower number first, then the closest higher) that is on some
// row, with that account's caption. No rows when no account of the group is on one.
struct Sijoitus {
    QString naapuri; // "1910 Pankkitili"
    std::vector<MalliRivi> rivit;
};
Sijoitus sijoitus(const QSqlDatabase& db, qint32 tlId);

// Adds account `tlId` to the account lists of `rivit`, in one transaction. Throws DatabaseError.
void lisaaRiveille(const QSqlDatabase& db, qint32 tlId, const std::vector<MalliRivi>& rivit);

// The delete rule: an account with entries of a non-zero amount in this or the previous
// fiscal year cannot be deleted. Gives "" when it can, otherwise the message.
QString poistonEste(const QSqlDatabase& db, qint32 id);

// A statement template: 1 an income statement, 2 a balance sheet.
struct Malli {
    qint32 id = 0;
    QString nimi;
    int tyyppi = 0;
};
// Every template by type and name.
QList<Malli> tilinpaatosMallit(const QSqlDatabase& db);

// The bookkeeping setting that holds the suspense account's tlID: where bank statement lines
// without a learnt account are booked until the treasurer clears them.
QString suspenseKey();
// The suspense account's tlID; 0 when the setting is missing or names no account.
qint32 suspenseAccount(const QSqlDatabase& db);

// The database setting is missing or reads "unknown".
bool tietokantaAsetusPuuttuu();

} // namespace ChartOfAccounts
