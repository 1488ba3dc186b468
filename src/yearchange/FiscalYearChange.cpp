#include "yearchange/FiscalYearChange.h"

#include "core/DatabaseCopy.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Dates.h"
#include "core/Dialogs.h"
#include "core/Money.h"
#include "core/PageCache.h"
#include "core/ProgramSettings.h"
#include "core/SettingsStore.h"
#include "core/TemplateText.h"
#include "core/Transaction.h"
#include "printing/PrintOptions.h"
#include "statements/BalanceSheet.h"
#include "statements/StatementOptions.h"
#include "statements/Statements.h"
#include "statements/cMalli.h"
#include "vouchers/cTosite.h"
#include "vouchers/cTositeTarkistus.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QSqlQuery>
#include <QVariant>

namespace {

// A refusal inside the transaction that has been told to the user already.
struct Peruttu { };

const QString Selite = QStringLiteral("Tilinavausviennit");

// The copy of the current year into the history, key values included, so that the entries
// keep pointing at their vouchers. toAutomaatti has no place in toE.
const QString KopioiViennit = QStringLiteral(
    "INSERT INTO viE (viEID, viEtlID, viEtoID, viETyyppi, viEArvo, viESelite, viEAvausvienti, "
    "viEPaatosvienti, viEAutomaatti) "
    "SELECT viID, vitlID, vitoID, viTyyppi, viArvo, viSelite, viAvausvienti, viPaatosvienti, viAutomaatti "
    "FROM vi");
const QString KopioiTositteet
    = QStringLiteral("INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAvaustosite, toEPaatostosite) "
                     "SELECT toID, toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite FROM \"to\"");

void tallennaPaiva(DbSettingsStore& store, const QString& avain, const QDate& paiva)
{
    if (!store.write(avain, Dates::format(paiva)))
        throw DatabaseError(QStringLiteral("Asetusta %1 ei voitu tallentaa.").arg(avain));
}

QString kirjoitusEsto(const QSqlDatabase& db)
{
    const QString path = db.databaseName();
    if (DatabaseFile::isReadOnly(db))
        return QStringLiteral("Tietokanta on avattu vain luettavaksi, joten tilikautta ei voi vaihtaa.");
    if (DatabaseFile::isReadOnly(path))
        return QStringLiteral("Tietokantatiedosto on vain luettava, joten tilikautta ei voi vaihtaa.\n%1")
            .arg(QDir::toNativeSeparators(path));
    if (DatabaseFile::folderReadOnly(path))
        return QStringLiteral("Tietokannan kansioon ei voi kirjoittaa, joten tilikautta ei voi vaihtaa.\n%1")
            .arg(QDir::toNativeSeparators(QFileInfo(path).absolutePath()));
    return {};
}

} // namespace

FiscalYearChange::Kaudet FiscalYearChange::nykyiset()
{
    const BookkeepingSettings& s = ProgramSettings::bookkeeping();
    return { s.TilikausiAlku, s.TilikausiLoppu, s.EdTilikausiAlku, s.EdTilikausiLoppu };
}

FiscalYearChange::Kaudet FiscalYearChange::seuraavat(const Kaudet& k)
{
    // QDate::addYears turns 29 February into 28 February in a common year.
    return { k.alku.addYears(1), k.loppu.addYears(1), k.edAlku.addYears(1), k.edLoppu.addYears(1) };
}

std::vector<FiscalYearChange::Tasemalli> FiscalYearChange::tasemallit(const QSqlDatabase& db)
{
    std::vector<Tasemalli> mallit;
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT maID, maNimi FROM ma WHERE maTyyppi = ? ORDER BY maNimi"), { cMalli::Tase });
    while (q.next())
        mallit.push_back({ q.value(0).toInt(), q.value(1).toString() });
    return mallit;
}

QString FiscalYearChange::vaiheTeksti(int vaihe)
{
    switch (vaihe) {
    case 1:
        return QStringLiteral("Lasketaan tilikauden tase.");
    case 2:
        return QStringLiteral("Poistetaan vanhat historiatiedot.");
    case 3:
        return QStringLiteral("Siirretään viennit vertailutietoihin.");
    case 4:
        return QStringLiteral("Poistetaan viennit.");
    case 5:
        return QStringLiteral("Vaihdetaan tilikausien päivämäärät.");
    case 6:
        return QStringLiteral("Kirjataan avausviennit.");
    default:
        return {};
    }
}

QString FiscalYearChange::valitseMalliViesti()
{
    return QStringLiteral("Valitse tasemalli, jonka mukaan kirjataan avausviennit!");
}

QString FiscalYearChange::valmisViesti() { return QStringLiteral("Tilikauden vaihto tehty."); }

FiscalYearChange::FiscalYearChange(const QSqlDatabase& db)
    : m_db(db)
{
}

QStringList FiscalYearChange::esteet(qint32 tasemalli) const
{
    QStringList esteet;
    for (const cTositeTarkistusVirhe& v : cTositeTarkistus(m_db).Tarkista(false))
        esteet.append(v.rivi());
    if (tasemalli == 0)
        return esteet;
    cMalli malli(m_db);
    QSet<qint32> riveilla;
    if (malli.Load(tasemalli)) {
        QSqlQuery rivit
            = Sql::run(m_db, QStringLiteral("SELECT mrTilit FROM mr WHERE mrmaID = ? OR mrmaID = ?"),
                { tasemalli, malli.TulosMaID() });
        while (rivit.next())
            for (const qint32 id : TemplateText::accounts(rivit.value(0).toString()))
                riveilla.insert(id);
    }
    QSqlQuery tilit = Sql::run(m_db,
        QStringLiteral(
            "SELECT tl.tlID, tl.tlNumero, tl.tlNimi FROM tl WHERE EXISTS (SELECT * FROM vi JOIN \"to\" t "
            "ON t.toID = vi.vitoID WHERE vi.vitlID = tl.tlID AND t.toAutomaatti = 0) ORDER BY tl.tlNumero"));
    while (tilit.next())
        if (!riveilla.contains(tilit.value(0).toInt()))
            esteet.append(
                QStringLiteral("Tilillä %1 %2 on vientejä, mutta se ei ole tuloslaskelman eikä taseen "
                               "millään rivillä.")
                    .arg(tilit.value(1).toString(), tilit.value(2).toString().trimmed()));
    return esteet;
}

QString FiscalYearChange::esteetViesti(const QStringList& esteet)
{
    return QStringLiteral("Tilikautta ei vaihdettu, koska kirjanpidossa on korjattavaa:\n\n")
        + esteet.join(u'\n')
        + QStringLiteral("\n\nKorjaa nämä ja vaihda tilikausi sitten. Kirjanpitoa ei muutettu.");
}

bool FiscalYearChange::suorita(std::optional<qint32> tasemalli, bool avausviennit)
{
    Dialogs& dialogs = Dialogs::instance();
    m_varmuuskopio.clear();
    if (!tasemalli) {
        dialogs.information(valitseMalliViesti());
        return false;
    }
    if (!m_db.isOpen()) {
        dialogs.error(QStringLiteral("Tietokanta ei ole auki, joten tilikautta ei voi vaihtaa."));
        return false;
    }
    // The balance sheet's profit line needs the income statement the template names.
    if (avausviennit) {
        qint32 tulosMalli = 0;
        if (!tellIfFails(QStringLiteral("Tasemallia ei voitu lukea."), [&] {
                cMalli malli(m_db);
                if (malli.Load(*tasemalli))
                    tulosMalli = malli.TulosMaID();
            }))
            return false;
        if (tulosMalli == 0) {
            dialogs.information(BalanceSheet::noIncomeStatementMessage());
            return false;
        }
    }
    if (const QString esto = kirjoitusEsto(m_db); !esto.isEmpty()) {
        dialogs.information(esto);
        return false;
    }
    // Books with a slip in them are not carried into a new year.
    QStringList loydetyt;
    if (!tellIfFails(QStringLiteral("Kirjanpitoa ei voitu tarkistaa, joten tilikautta ei vaihdettu."),
            [&] { loydetyt = esteet(avausviennit ? *tasemalli : 0); }))
        return false;
    if (!loydetyt.isEmpty()) {
        dialogs.information(esteetViesti(loydetyt));
        return false;
    }
    const Kaudet uudet = seuraavat(nykyiset());
    if (m_vahvistus && !m_vahvistus(uudet))
        return false;

    const DatabaseCopy::SafetyCopy kopio
        = DatabaseCopy::safetyCopy(m_db, QStringLiteral("tilikaudenvaihtoa"));
    if (!kopio) {
        dialogs.error(QStringLiteral("Kirjanpidosta ei voitu ottaa varmuuskopiota, joten tilikautta ei "
                                     "vaihdettu. Kirjanpitoa ei muutettu.\n")
            + kopio.result.message);
        return false;
    }
    m_varmuuskopio = kopio.path;
    if (m_edistyminen)
        m_edistyminen(
            QStringLiteral("Varmuuskopio ennen tilikauden vaihtoa: ") + QDir::toNativeSeparators(kopio.path),
            0);

    const QString virhe = QStringLiteral("Tilikauden vaihto ei onnistunut. Kirjanpito on ennallaan.");
    try {
        // The whole year is rewritten in one transaction: its pages stay in memory until the
        // commit.
        PageCache cache(m_db, 256);
        Transaction t(m_db);
        vaihe(1, [&] {
            Sql::run(m_db, QStringLiteral("DELETE FROM tula"));
            Sql::run(m_db, QStringLiteral("DELETE FROM tase"));
            if (avausviennit)
                laskeTase(*tasemalli);
        });
        vaihe(2, [&] {
            Sql::run(m_db, QStringLiteral("DELETE FROM viE"));
            Sql::run(m_db, QStringLiteral("DELETE FROM toE"));
        });
        vaihe(3, [&] { siirraHistoriaan(); });
        vaihe(4, [&] {
            Sql::run(m_db, QStringLiteral("DELETE FROM vi"));
            Sql::run(m_db, QStringLiteral("DELETE FROM \"to\""));
        });
        vaihe(5, [&] {
            // Stored with the rest, so that the new year survives a restart and a failure
            // leaves the old dates beside the old books.
            DbSettingsStore store(m_db);
            tallennaPaiva(store, QStringLiteral("TilikausiAlku"), uudet.alku);
            tallennaPaiva(store, QStringLiteral("EdTilikausiAlku"), uudet.edAlku);
            tallennaPaiva(store, QStringLiteral("TilikausiLoppu"), uudet.loppu);
            tallennaPaiva(store, QStringLiteral("EdTilikausiLoppu"), uudet.edLoppu);
        });
        if (avausviennit)
            vaihe(6, [&] { kirjaaAvausviennit(uudet.alku); });
        t.commitOrThrow();
    } catch (const Peruttu&) {
        return false;
    } catch (const DatabaseError& e) {
        dialogs.error(e.message(virhe));
        return false;
    } catch (const std::exception& e) {
        dialogs.error(virhe + u'\n' + QString::fromLocal8Bit(e.what()));
        return false;
    }

    // The session follows the books only once they are written.
    BookkeepingSettings& s = ProgramSettings::bookkeeping();
    s.TilikausiAlku = uudet.alku;
    s.EdTilikausiAlku = uudet.edAlku;
    s.TilikausiLoppu = uudet.loppu;
    s.EdTilikausiLoppu = uudet.edLoppu;
    PrintValues& print = PrintOptions::current();
    print.alkupvm = uudet.alku;
    print.loppupvm = uudet.loppu;
    // The change computed the balance sheet account by account; the statement window's date
    // dialog offers the breakdown from now on, as it was last used.
    if (avausviennit)
        print.tiliErottelu = true;
    return true;
}

void FiscalYearChange::vaihe(int vaihe, const std::function<void()>& tyo)
{
    const QString teksti = vaiheTeksti(vaihe);
    if (m_edistyminen)
        m_edistyminen(teksti, vaihe - 1);
    tyo();
    if (m_edistyminen)
        m_edistyminen(teksti, vaihe);
}

void FiscalYearChange::laskeTase(qint32 tasemalli)
{
    const Kaudet kaudet = nykyiset();
    StatementOptions o = StatementOptions::forPeriod(tasemalli, kaudet.alku, kaudet.loppu);
    // One tase line per account, with the account and the side its balance lies on.
    o.perAccount = true;
    if (m_edistyminen)
        o.progress = [this](int, int) { m_edistyminen(vaiheTeksti(1), 0); };
    // The profit entries and the statement go into this change's transaction as a savepoint.
    if (!Statements::compute(m_db, o))
        throw Peruttu {};
}

void FiscalYearChange::siirraHistoriaan()
{
    // Entries first, then their vouchers.
    Sql::run(m_db, KopioiViennit);
    Sql::run(m_db, KopioiTositteet);
}

void FiscalYearChange::kirjaaAvausviennit(const QDate& paiva)
{
    QSqlQuery q = Sql::run(m_db,
        QStringLiteral("SELECT tasetlID, taseLoppusaldo, tasePrintGroup FROM tase "
                       "WHERE tasetlID > 0 AND taseIsGroupRow = 0 ORDER BY taseID"));
    if (!q.next())
        return;
    cTosite tosite(m_db);
    tosite.setNumero(0);
    tosite.setPaiva(paiva);
    tosite.setSelite(Selite);
    tosite.setAvaustosite(true);
    tosite.setAutomaatti(false);
    tosite.Save(true);
    Money debetit, kreditit;
    do {
        const Money saldo = Money::fromRaw(q.value(1).toLongLong());
        if (saldo == Money())
            continue;
        // A positive balance lies on its group's side: debit for the assets, credit elsewhere.
        const bool vastaavaa = q.value(2).toInt() == 1;
        const bool debet = vastaavaa == (saldo > Money());
        auto vienti = tosite.AddNewVienti(debet ? QStringLiteral("D") : QStringLiteral("K"));
        vienti->settlID(q.value(0).toInt());
        vienti->setArvo(saldo > Money() ? saldo : -saldo);
        (debet ? debetit : kreditit) += saldo > Money() ? saldo : -saldo;
        vienti->setAvausvienti(true);
        vienti->setAutomaatti(false);
        vienti->setSelite(QString());
        vienti->Save(true);
    } while (q.next());
    // Opening entries that do not balance would unbalance the new year from its first day.
    if (debetit != kreditit)
        throw DatabaseError(
            QStringLiteral("Avausviennit eivät täsmää (debet %1, kredit %2), joten tilikautta ei "
                           "vaihdettu. Tarkista, että kaikki tilit ovat taseessa.")
                .arg(debetit.toString(), kreditit.toString()));
}
