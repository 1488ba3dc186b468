#include "core/DatabaseMaintenance.h"

#include "core/DatabaseCopy.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dialogs.h"
#include "core/Transaction.h"

#include <QDir>

namespace {

const QString ViennitPrefix = QStringLiteral("POISTA VIENNIT");
// Apostrophes in descriptions: the entries of such a voucher are left as they are.
const QString Apostrophe = QStringLiteral("%'%");

struct Named {
    const char* text;
    DatabaseMaintenance::Command command;
    const char* message;
};

const Named Commands[] = {
    { "POISTA KAIKKI", DatabaseMaintenance::Command::PoistaKaikki, "Kaikki poistettu." },
    { "POISTA NYKYISET TOSITTEET", DatabaseMaintenance::Command::PoistaNykyisetTositteet,
        "Nykyiset tositteet poistettu." },
    { "POISTA EDELLISET TOSITTEET", DatabaseMaintenance::Command::PoistaEdellisetTositteet,
        "Edelliset tositteet poistettu." },
    { "POISTA TULOSLASKELMAMALLIT", DatabaseMaintenance::Command::PoistaTuloslaskelmamallit,
        "Tuloslaskelmamallit poistettu." },
    { "POISTA TASEMALLIT", DatabaseMaintenance::Command::PoistaTasemallit, "Tasemallit poistettu." },
    { "POISTA TILIT", DatabaseMaintenance::Command::PoistaTilit, "Tilit poistettu." },
    { "TARKISTA SELITTEET", DatabaseMaintenance::Command::TarkistaSelitteet, "Selitetekstit tarkistettu." },
};

void exec(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {})
{
    Sql::run(db, sql, values);
}

void deleteVouchers(const QSqlDatabase& db, bool current)
{
    exec(db, current ? QStringLiteral("DELETE FROM \"to\"") : QStringLiteral("DELETE FROM toE"));
    exec(db, current ? QStringLiteral("DELETE FROM vi") : QStringLiteral("DELETE FROM viE"));
}

// Each template of the kind with its rows.
void deleteTemplates(const QSqlDatabase& db, int kind)
{
    exec(db, QStringLiteral("DELETE FROM mr WHERE mrmaID IN (SELECT maID FROM ma WHERE maTyyppi = ?)"),
        { kind });
    exec(db, QStringLiteral("DELETE FROM ma WHERE maTyyppi = ?"), { kind });
}

// Every voucher's description into its entries, except where the description holds an
// apostrophe: that voucher's entries keep theirs.
QList<qint32> copyDescriptions(const QSqlDatabase& db)
{
    QList<qint32> kept;
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT toNumero FROM \"to\" WHERE COALESCE(toSelite, '') LIKE ? ORDER BY toNumero"),
        { Apostrophe });
    while (q.next())
        kept.append(q.value(0).toInt());
    exec(db,
        QStringLiteral(
            "UPDATE vi SET viSelite = COALESCE((SELECT toSelite FROM \"to\" WHERE \"to\".toID = "
            "vi.vitoID), '') WHERE vitoID IN (SELECT toID FROM \"to\" WHERE COALESCE(toSelite, '') "
            "NOT LIKE ?)"),
        { Apostrophe });
    return kept;
}

QString keptLine(const QList<qint32>& kept)
{
    constexpr int Shown = 20;
    QStringList numbers;
    for (int i = 0; i < kept.size() && i < Shown; ++i)
        numbers.append(QString::number(kept.at(i)));
    if (kept.size() > Shown)
        numbers.append(QStringLiteral("…"));
    if (kept.size() == 1)
        return QStringLiteral("Tositteen %1 selitteessä on heittomerkki ('), joten sen vientien selitteet "
                              "jätettiin ennalleen.")
            .arg(numbers.first());
    return QStringLiteral("Tositteiden %1 selitteissä on heittomerkki ('), joten niiden vientien selitteet "
                          "jätettiin ennalleen.")
        .arg(numbers.join(QStringLiteral(", ")));
}

} // namespace

namespace DatabaseMaintenance {

Parsed parse(const QString& answer)
{
    const QString upper = answer.toUpper();
    for (const Named& named : Commands)
        if (upper == QLatin1String(named.text))
            return { named.command, {} };
    if (upper.size() > 15 && upper.left(14) == ViennitPrefix)
        return { Command::PoistaViennit, answer.mid(14) };
    return {};
}

QString message(const Parsed& parsed)
{
    if (parsed.command == Command::PoistaViennit)
        return QStringLiteral("Viennit tililtä ") + parsed.number + QStringLiteral(" poistettu.");
    for (const Named& named : Commands)
        if (named.command == parsed.command)
            return QString::fromUtf8(named.message);
    return {};
}

qint32 accountOf(const QSqlDatabase& db, const QString& number)
{
    bool ok = false;
    const qint32 value = number.trimmed().toInt(&ok);
    if (!ok)
        return 0;
    return Sql::scalar(db, QStringLiteral("SELECT tlID FROM tl WHERE tlNumero = ? ORDER BY tlID"), { value })
        .toInt();
}

Outcome execute(const QSqlDatabase& db, const Parsed& parsed)
{
    Outcome outcome;
    Transaction transaction(db);
    switch (parsed.command) {
    case Command::None:
        return outcome;
    case Command::PoistaKaikki:
        deleteVouchers(db, true);
        deleteVouchers(db, false);
        deleteTemplates(db, 1);
        deleteTemplates(db, 2);
        exec(db, QStringLiteral("DELETE FROM tl"));
        break;
    case Command::PoistaNykyisetTositteet:
        deleteVouchers(db, true);
        break;
    case Command::PoistaEdellisetTositteet:
        deleteVouchers(db, false);
        break;
    case Command::PoistaTuloslaskelmamallit:
        deleteTemplates(db, 1);
        break;
    case Command::PoistaTasemallit:
        deleteTemplates(db, 2);
        break;
    case Command::PoistaTilit:
        // The entries stay; the voucher check reports them as entries without an account.
        exec(db, QStringLiteral("DELETE FROM tl"));
        break;
    case Command::TarkistaSelitteet:
        outcome.keptVouchers = copyDescriptions(db);
        break;
    case Command::PoistaViennit:
        if (const qint32 account = accountOf(db, parsed.number)) {
            exec(db, QStringLiteral("DELETE FROM vi WHERE vitlID = ?"), { account });
            exec(db, QStringLiteral("DELETE FROM viE WHERE viEtlID = ?"), { account });
        }
        break;
    }
    transaction.commitOrThrow();
    return outcome;
}

void run(const QSqlDatabase& db, const std::function<bool()>& beforeChange)
{
    Dialogs& dialogs = Dialogs::instance();
    const std::optional<QString> answer = dialogs.input(QStringLiteral("Anna Vorkam komento"), QString());
    if (!answer || answer->isEmpty())
        return;
    const Parsed parsed = parse(*answer);
    if (parsed.command == Command::None) {
        dialogs.information(
            QStringLiteral("Komentoa ei löydy, tarkista komento.\nAntamasi komento: ") + *answer);
        return;
    }
    if (!db.isOpen()) {
        dialogs.error(QStringLiteral("Tietokanta ei ole auki, joten komentoa ei voi suorittaa."));
        return;
    }
    if (DatabaseFile::isReadOnly(db)) {
        dialogs.information(QStringLiteral("Tietokanta on avattu vain luettavaksi, joten komentoa ei voi "
                                           "suorittaa."));
        return;
    }

    // An account number that names no account deletes nothing: there is nothing to keep a copy of.
    bool changes = true;
    if (parsed.command == Command::PoistaViennit
        && !tellIfFails(
            QStringLiteral("Tiliä ei voitu hakea."), [&] { changes = accountOf(db, parsed.number) != 0; }))
        return;
    if (!changes) {
        dialogs.information(message(parsed));
        return;
    }
    if (beforeChange && !beforeChange())
        return;

    const QString command = parsed.command == Command::PoistaViennit
        ? ViennitPrefix + u' ' + parsed.number.trimmed()
        : answer->toUpper();
    const DatabaseCopy::SafetyCopy copy = DatabaseCopy::safetyCopy(db, command);
    if (!copy) {
        dialogs.error(QStringLiteral("Tietokannasta ei voitu ottaa varmuuskopiota, joten komentoa ei "
                                     "suoritettu. Tietokantaa ei muutettu.\n")
            + copy.result.message);
        return;
    }
    Outcome outcome;
    if (!tellIfFails(QStringLiteral("Komento ei onnistunut. Tietokantaa ei muutettu."),
            [&] { outcome = execute(db, parsed); }))
        return;
    QString text = message(parsed) + QStringLiteral("\nVarmuuskopio ennen muutosta: ")
        + QDir::toNativeSeparators(copy.path);
    if (!outcome.keptVouchers.isEmpty())
        text += u'\n' + keptLine(outcome.keptVouchers);
    dialogs.information(text);
}

} // namespace DatabaseMaintenance
