#include "accounts/ChartOfAccounts.h"

#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/ProgramSettings.h"
#include "core/RecordText.h"
#include "core/SettingsStore.h"
#include "core/TemplateText.h"
#include "core/Transaction.h"

#include <QSqlQuery>
#include <QVariant>
#include <algorithm>

namespace ChartOfAccounts {

namespace {

const QString PuuVirhe = QStringLiteral("Virhe luotaessa hakemistopuuta tileistä.");

QString puuVirhe(const QString& syy) { return PuuVirhe + u'\n' + syy; }

// Removes the leading rows whose name is missing or begins below "A". Gives "" or the cause
// that stopped the tree.
QString siivoaAlkurivit(const QSqlDatabase& db)
{
    try {
        Transaction transaction(db);
        for (;;) {
            QSqlQuery first = Sql::run(
                db, QStringLiteral("SELECT tlID, tlNimi FROM tl ORDER BY tlNumero, tlNimi LIMIT 1"));
            if (!first.next())
                break;
            const qint32 id = first.value(0).toInt();
            const QVariant nimi = first.value(1);
            first.finish();
            if (!nimi.isNull()) {
                const QString text = nimi.toString();
                if (text.isEmpty()) {
                    // The rows removed so far stay removed, as when the tree stops further on.
                    transaction.commitOrThrow();
                    return QStringLiteral("Tilin nimi on tyhjä, eikä sillä ole ensimmäistä merkkiä.");
                }
                if (text.at(0).unicode() >= 65)
                    break;
            }
            Sql::run(db, QStringLiteral("DELETE FROM tl WHERE tlID = ?"), { id });
        }
        transaction.commitOrThrow();
        return {};
    } catch (const DatabaseError& e) {
        return e.text();
    }
}

} // namespace

std::optional<int> ryhma(qint32 numero)
{
    const qint32 g = numero / 1000;
    if (g * 1000 <= 0)
        return MuutIndex;
    if (g - 1 >= RyhmaCount)
        return std::nullopt;
    return g - 1;
}

QString ryhmaAvain(int index)
{
    return index == MuutIndex ? QStringLiteral("MuutPN")
                              : QString::number((index + 1) * 1000) + QStringLiteral("PN");
}

QString ryhmaTeksti(int index)
{
    return index == MuutIndex ? QStringLiteral("Muut") : u' ' + QString::number((index + 1) * 1000) + u' ';
}

QString tiliAvain(qint32 id) { return QString::number(id) + QStringLiteral("ID"); }

QString tiliTeksti(qint32 numero, const QString& nimi) { return QString::number(numero) + u' ' + nimi; }

std::optional<qint32> tiliAvaimesta(const QString& key)
{
    if (!key.contains(QStringLiteral("ID"), Qt::CaseInsensitive))
        return std::nullopt;
    bool ok = false;
    const qint32 id = key.left(key.size() - 2).toInt(&ok);
    return ok ? std::optional<qint32>(id) : std::nullopt;
}

std::optional<qint32> numeroTekstista(const QString& text)
{
    bool ok = false;
    const qint32 value = text.trimmed().toInt(&ok, 10);
    return ok ? std::optional<qint32>(value) : std::nullopt;
}

Puu lueTilikartta(const QSqlDatabase& db)
{
    Puu puu;
    // Books open for reading only keep their leading rows; the tree just leaves them out.
    const bool readOnly = DatabaseFile::isReadOnly(db);
    if (const QString syy = readOnly ? QString() : siivoaAlkurivit(db); !syy.isEmpty()) {
        puu.virhe = puuVirhe(syy);
        return puu;
    }
    try {
        QSqlQuery q
            = Sql::run(db, QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl ORDER BY tlNumero, tlNimi"));
        bool alussa = readOnly;
        while (q.next()) {
            Rivi rivi;
            rivi.id = q.value(0).toInt();
            rivi.numero = q.value(1).toInt();
            rivi.nimi = q.value(2).toString();
            if (alussa && (q.value(2).isNull() || (!rivi.nimi.isEmpty() && rivi.nimi.at(0).unicode() < 65)))
                continue;
            alussa = false;
            const std::optional<int> r = ryhma(rivi.numero);
            if (!r) {
                puu.virhe = puuVirhe(
                    QStringLiteral("Tilinumerolle %1 ei ole ryhmää: suurin sallittu tilinumero on 10999.")
                        .arg(rivi.numero));
                break;
            }
            rivi.ryhma = *r;
            puu.rivit.append(rivi);
        }
    } catch (const DatabaseError& e) {
        puu.virhe = puuVirhe(e.text());
    }
    return puu;
}

Tarkistus tarkistaTili(const QSqlDatabase& db, const QString& numeroText, const QString& nimi, qint32 omaId)
{
    const std::optional<qint32> numero = numeroTekstista(numeroText);
    if (!numero || QString::number(*numero).size() < 4)
        return { QStringLiteral("Tilinumeron tulee olla neljä numeroa pitkä."), true };
    if (!ryhma(*numero))
        return { QStringLiteral("Tilinumeron tulee olla pienempi kuin 11000."), true };
    if (Sql::scalar(db, QStringLiteral("SELECT COUNT(*) AS Lkm FROM tl WHERE tlNumero = ? AND tlID <> ?"),
            { *numero, omaId })
            .toInt()
        > 0)
        return { QStringLiteral("Tilinumerolla ") + numeroText + QStringLiteral(" löytyy jo tili."), true };
    // A name of blanks only is refused too: such an account would be removed when the tree is
    // next built.
    if (nimi.trimmed().isEmpty())
        return { QStringLiteral("Tilillä tulee olla nimi."), false };
    return {};
}

Tarkistus tarkistaMuutos(const QSqlDatabase& db, qint32 id, const QString& numeroText, const QString& nimi)
{
    // An account kept from earlier with an unusual number can still be renamed: the number is
    // checked only when it has been changed.
    const QVariant tallennettu
        = Sql::scalar(db, QStringLiteral("SELECT tlNumero FROM tl WHERE tlID = ?"), { id });
    const bool numeroSama
        = tallennettu.isValid() && numeroTekstista(numeroText) == std::optional<qint32>(tallennettu.toInt());
    if (!numeroSama)
        return tarkistaTili(db, numeroText, nimi, id);
    if (nimi.trimmed().isEmpty())
        return { QStringLiteral("Tilillä tulee olla nimi."), false };
    return {};
}

qint32 lisaaTili(const QSqlDatabase& db, const QString& numeroText, const QString& nimi,
    const QString& kuvaus, Tarkistus* virhe)
{
    Tarkistus tarkistus = tarkistaTili(db, numeroText, nimi);
    qint32 id = 0;
    if (tarkistus.ok()) {
        // A new account is printed in the ledger, as the accounts of a new book are.
        QSqlQuery q = Sql::run(db,
            QStringLiteral("INSERT INTO tl (tlNumero, tlNimi, tlKuvaus, tlAlkusaldo, tlLoppusaldo, tlPrint) "
                           "VALUES (?, ?, ?, 0, 0, 1)"),
            { *numeroTekstista(numeroText), RecordText::storedName(nimi),
                RecordText::storedDescription(kuvaus) });
        id = q.lastInsertId().toInt();
    }
    if (virhe)
        *virhe = tarkistus;
    return id;
}

QString poistonEste(const QSqlDatabase& db, qint32 id)
{
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT (SELECT COUNT(viID) FROM vi WHERE viArvo <> 0 AND vitlID = ?), "
                       "(SELECT COUNT(viEID) FROM viE WHERE viEArvo <> 0 AND viEtlID = ?)"),
        { id, id });
    q.next();
    if (q.value(0).toInt() > 0 || q.value(1).toInt() > 0)
        return QStringLiteral(
            "Tilillä on vientejä kuluvalla tai edellisellä tilikaudella eikä sitä voida poistaa.");
    return {};
}

QList<Malli> tilinpaatosMallit(const QSqlDatabase& db)
{
    QList<Malli> mallit;
    QSqlQuery q
        = Sql::run(db, QStringLiteral("SELECT maID, maNimi, maTyyppi FROM ma ORDER BY maTyyppi, maNimi"));
    while (q.next())
        mallit.append({ q.value(0).toInt(), q.value(1).toString(), q.value(2).toInt() });
    return mallit;
}

bool tietokantaAsetusPuuttuu()
{
    const QString database = ProgramSettings::installation().Database.trimmed();
    return database.isEmpty() || database.compare(QStringLiteral("unknown"), Qt::CaseInsensitive) == 0;
}

QString Account::caption() const
{
    return nimi.isEmpty() ? QString::number(numero) : QString::number(numero) + u' ' + nimi;
}

std::vector<Account> accounts(const QSqlDatabase& db)
{
    std::vector<Account> list;
    QSqlQuery q
        = Sql::run(db, QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl ORDER BY tlNumero, tlID"));
    while (q.next())
        list.push_back({ q.value(0).toInt(), q.value(1).toInt(), q.value(2).toString().trimmed() });
    return list;
}

namespace {

// Every template row with the accounts it lists, read once, by template and row.
std::vector<std::pair<MalliRivi, std::vector<qint32>>> kaikkiRivit(const QSqlDatabase& db)
{
    std::vector<std::pair<MalliRivi, std::vector<qint32>>> rivit;
    QSqlQuery q = Sql::run(db,
        QStringLiteral(
            "SELECT mr.mrID, ma.maNimi, mr.mrTeksti, mr.mrTilit FROM mr JOIN ma ON ma.maID = mr.mrmaID "
            "ORDER BY ma.maTyyppi, ma.maNimi, mr.mrID"));
    while (q.next())
        rivit.push_back(
            { { q.value(0).toInt(), q.value(1).toString().trimmed(), q.value(2).toString().trimmed() },
                TemplateText::accounts(q.value(3).toString()) });
    return rivit;
}

std::vector<MalliRivi> tilinRivit(
    const std::vector<std::pair<MalliRivi, std::vector<qint32>>>& kaikki, qint32 tlId)
{
    std::vector<MalliRivi> rivit;
    for (const auto& [rivi, tilit] : kaikki)
        if (std::find(tilit.begin(), tilit.end(), tlId) != tilit.end())
            rivit.push_back(rivi);
    return rivit;
}

} // namespace

std::vector<MalliRivi> malliRivit(const QSqlDatabase& db, qint32 tlId)
{
    return tilinRivit(kaikkiRivit(db), tlId);
}

Sijoitus sijoitus(const QSqlDatabase& db, qint32 tlId)
{
    const QVariant numero
        = Sql::scalar(db, QStringLiteral("SELECT tlNumero FROM tl WHERE tlID = ?"), { tlId });
    const std::optional<int> oma = ryhma(numero.toInt());
    if (numero.isNull() || !oma)
        return {};
    // Lower numbers nearest first, then higher ones nearest first.
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT tlID, tlNumero, tlNimi FROM tl WHERE tlID <> ? ORDER BY tlNumero > ?, "
                       "ABS(tlNumero - ?), tlNumero"),
        { tlId, numero, numero });
    const auto kaikki = kaikkiRivit(db);
    while (q.next()) {
        const qint32 naapuri = q.value(1).toInt();
        if (ryhma(naapuri) != oma)
            continue;
        std::vector<MalliRivi> rivit = tilinRivit(kaikki, q.value(0).toInt());
        if (!rivit.empty())
            return { tiliTeksti(naapuri, q.value(2).toString().trimmed()), std::move(rivit) };
    }
    return {};
}

void lisaaRiveille(const QSqlDatabase& db, qint32 tlId, const std::vector<MalliRivi>& rivit)
{
    Transaction transaction(db);
    for (const MalliRivi& r : rivit) {
        std::vector<qint32> tilit = TemplateText::accounts(
            Sql::scalar(db, QStringLiteral("SELECT mrTilit FROM mr WHERE mrID = ?"), { r.id }).toString());
        if (std::find(tilit.begin(), tilit.end(), tlId) != tilit.end())
            continue;
        tilit.push_back(tlId);
        Sql::run(db, QStringLiteral("UPDATE mr SET mrTilit = ? WHERE mrID = ?"),
            { TemplateText::accountList(tilit), r.id });
    }
    transaction.commitOrThrow();
}

QString suspenseKey() { return QStringLiteral("Selvittelytili"); }

qint32 suspenseAccount(const QSqlDatabase& db)
{
    const qint64 id = ProgramSettings::numberValue(DbSettingsStore(db).read(suspenseKey(), QString()));
    if (id <= 0)
        return 0;
    return Sql::scalar(db, QStringLiteral("SELECT tlID FROM tl WHERE tlID = ?"), { id }).toInt();
}

} // namespace ChartOfAccounts
