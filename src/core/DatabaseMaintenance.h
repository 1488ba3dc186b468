#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>

// The typed maintenance commands of "Tietokanta / Muokkaa tietokantaa", which empty parts of
// the books so that a copied database can be started afresh.
namespace DatabaseMaintenance {

enum class Command {
    None,
    PoistaKaikki,
    PoistaNykyisetTositteet,
    PoistaEdellisetTositteet,
    PoistaTuloslaskelmamallit,
    PoistaTasemallit,
    PoistaTilit,
    TarkistaSelitteet,
    PoistaViennit,
};

struct Parsed {
    Command command = Command::None;
    // For PoistaViennit: the answer from its 15th character on, the separating blank included.
    QString number;
};

// The answer compared in upper case with the commands, as a whole; "POISTA VIENNIT" followed by
// an account number when the answer is longer than 15 characters.
Parsed parse(const QString& answer);

// The message a command shows when it has run.
QString message(const Parsed& parsed);

// What a command did beyond its message.
struct Outcome {
    // Vouchers whose description holds an apostrophe: their entries keep their descriptions.
    QList<qint32> keptVouchers;
};

// The tlID of the account that POISTA VIENNIT names, 0 when there is none.
qint32 accountOf(const QSqlDatabase& db, const QString& number);

// Runs a recognised command in one transaction; throws DatabaseError and leaves the books as
// they were when a statement fails.
Outcome execute(const QSqlDatabase& db, const Parsed& parsed);

// The whole menu command: the input box, a safety copy of the books before anything changes,
// the command and its message. `beforeChange` runs once the command is known and will change
// the books (the main window closes its working windows there); false stops it.
void run(const QSqlDatabase& db, const std::function<bool()>& beforeChange = {});

} // namespace DatabaseMaintenance
