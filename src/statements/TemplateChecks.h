#pragma once

#include "statements/cMalliVirhe.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

// The checks that find what makes a statement wrong without any error while it is computed:
// accounts used twice or not at all, formulas naming rows computed later, unused formulas,
// several profit rows, accounts on groups, formula rows with accounts, wrong balance sides and
// balance sheets that are not standard. Nothing but the balance-side correction changes the
// templates.
namespace TemplateChecks {

// The chosen pair: the income statement and the balance sheet whose accounts are checked
// together. 0 where none is chosen; the account checks then are listed as not run.
struct Pair {
    qint32 tulos = 0;
    qint32 tase = 0;
    bool complete() const { return tulos != 0 && tase != 0; }
};

// Runs every check, over every template or only `only`, and writes the findings into tk
// (emptied first, in one transaction). Throws DatabaseError.
std::vector<cMalliVirhe> run(const QSqlDatabase& db, Pair pair, std::optional<qint32> only = std::nullopt);

// The pair the statement window checks for a selected template: a balance sheet with its
// income statement, an income statement with the first balance sheet that takes its profit.
Pair pairFor(const QSqlDatabase& db, qint32 maId);

// The statement window's report: "Tarkistus suoritettu virheettömästi." or
// "Tarkistus suoritettu." and each finding with "Kohdassa:" and its place on a line of its own.
QString reportText(const std::vector<cMalliVirhe>& findings);
// The check window's list: one line per finding, "message -- Tarkista: place".
QStringList listLines(const std::vector<cMalliVirhe>& findings);

// mKorjausSaldopuoli: after the question, every income-statement row gets "K", balance-sheet
// rows under "Vastattavaa" "K" and under "Vastaavaa" "D". Refuses when no template is chosen.
// The number of rows changed; nullopt when nothing was done. Throws DatabaseError.
std::optional<int> korjaaSaldopuolet(const QSqlDatabase& db, Pair pair);

} // namespace TemplateChecks
