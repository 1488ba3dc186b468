#include "vouchers/JournalPrinting.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/KeyTable.h"
#include "core/ProgramSettings.h"
#include "core/RowReader.h"
#include "core/Schema.h"
#include "core/Transaction.h"
#include "printing/PeriodCheck.h"
#include "printing/ReportFormulas.h"

#include <QHash>
#include <QSet>
#include <QVariant>
#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <tuple>

namespace {

using JournalPrinting::Kirja;
using JournalPrinting::Laji;

QString seurannimi()
{
    return QStringLiteral("Seurannimi= ") + ReportFormulas::quoted(ProgramSettings::bookkeeping().Seurannimi);
}

QString jakso(const QDate& alku, const QDate& loppu)
{
    return Dates::format(alku) + QStringLiteral(" - ") + Dates::format(loppu);
}

QString date(const QDate& d)
{
    return QStringLiteral("Date(%1,%2,%3)").arg(d.year()).arg(d.month()).arg(d.day());
}

// The vouchers of a kind in SQL, by their own flags (any value but 0 is yes).
QString tositeLaji(Laji laji)
{
    switch (laji) {
    case Laji::Avaus:
        return QStringLiteral("\"to\".toAvaustosite <> 0");
    case Laji::Paatos:
        return QStringLiteral("\"to\".toPaatostosite <> 0");
    case Laji::Tavallinen:
        break;
    }
    return QStringLiteral("\"to\".toAvaustosite = 0 AND \"to\".toPaatostosite = 0");
}

// Which entries of the kind count in the balance at the start of the period, and which are the
// period's rows: the opening entries start from nothing; the ordinary ones from the opening
// entries and the ordinary ones before the period; the closing ones from every other entry of the
// year. An entry without a date is neither before nor in the period.
struct Ehdot {
    Laji laji;
    int alku;
    int loppu;

    bool ennen(int pvm) const { return pvm != 0 && pvm < alku; }
    bool sisalla(int pvm) const { return pvm != 0 && pvm >= alku && pvm <= loppu; }
    bool alussa(bool avaus, bool paatos, int pvm) const
    {
        const bool tavallinen = !avaus && !paatos;
        switch (laji) {
        case Laji::Avaus:
            return avaus && ennen(pvm);
        case Laji::Paatos:
            return avaus || (tavallinen && pvm != 0 && pvm <= loppu) || (paatos && ennen(pvm));
        case Laji::Tavallinen:
            break;
        }
        return avaus || (tavallinen && ennen(pvm));
    }
    bool jaksolla(bool avaus, bool paatos, int pvm) const
    {
        switch (laji) {
        case Laji::Avaus:
            return avaus && sisalla(pvm);
        case Laji::Paatos:
            return paatos && sisalla(pvm);
        case Laji::Tavallinen:
            break;
        }
        return !avaus && !paatos && sisalla(pvm);
    }
};

} // namespace

namespace JournalPrinting {

// The ledger's rows computed in memory: the accounts, the vouchers of the year and the rows to
// print in print order.
struct PaakirjanRivit {
    struct Tili {
        qint32 id;
        qint64 numero;
        QString nimi;
        bool tulostetaan;
        qint64 alkusaldo = 0;
        qint64 loppusaldo = 0;
    };
    struct Tosite {
        qint64 numero;
        int paiva; // yyyymmdd
        QByteArray pvm; // as stored
        QString selite;
    };
    struct Rivi {
        int tili; // index into tilit
        int tosite; // index into tositteet; -1 for the account's balance row
        qint64 viId;
        char puoli; // 'D', 'K' or 0
        qint64 arvo;
    };
    QByteArray alku; // the period's start as stored, the balance rows' date
    std::vector<Tili> tilit;
    std::vector<Tosite> tositteet;
    std::vector<Rivi> rivit;
};

// The journal's rows computed in memory: the vouchers of the period in number order, each with
// its entries (or one row saying it has none).
struct PaivakirjanRivit {
    struct Tosite {
        qint64 id;
        qint64 numero;
        QByteArray pvm;
        QString selite;
    };
    struct Rivi {
        int tosite; // index into tositteet
        qint64 viId; // 0: the voucher has no entries
        int tyyppi; // the entry type's place in `tyypit` (0: none), which orders as the text does
        int tili; // index into tilit; -1: no such account
        qint64 arvo;
    };
    std::vector<Tosite> tositteet;
    std::vector<Rivi> rivit;
    std::vector<QByteArray> tyypit; // sorted, "" first standing for none
    std::vector<std::optional<QString>> tilit; // "1910 Pankkitili"; nullopt for an account without a number
    Summat summat;
};

} // namespace JournalPrinting

namespace {

using JournalPrinting::PaakirjanRivit;
using JournalPrinting::PaivakirjanRivit;

// Rows computed in memory (a `Rows` with a vector `rivit`), read one by one by the report engine
// under the column names of the report's query.
template <class Rows> class MemoryRows : public RowSource {
public:
    MemoryRows(std::shared_ptr<const Rows> rows, std::vector<const char*> columns)
        : m_rivit(std::move(rows))
        , m_columns(std::move(columns))
    {
    }
    int columnIndex(const QString& name) const override
    {
        for (int i = 0; i < int(m_columns.size()); ++i)
            if (name.compare(QLatin1String(m_columns[size_t(i)]), Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }
    bool next() override { return ++m_rivi < qsizetype(m_rivit->rivit.size()); }
    double real(int column) const override { return double(integer(column)); }

protected:
    const auto& rivi() const { return m_rivit->rivit[size_t(m_rivi)]; }
    // A cell's text as UTF-8, kept until the next cell is asked for.
    QByteArrayView utf8(int column) const
    {
        m_text = text(column).toUtf8();
        return m_text;
    }

    std::shared_ptr<const Rows> m_rivit;

private:
    std::vector<const char*> m_columns;
    qsizetype m_rivi = -1;
    mutable QByteArray m_text;
};

// The journal's rows for the report engine, with the columns of the journal's query.
class PaivakirjanLahde final : public MemoryRows<PaivakirjanRivit> {
public:
    explicit PaivakirjanLahde(std::shared_ptr<const PaivakirjanRivit> rivit)
        : MemoryRows(std::move(rivit), { "ToId", "Numero", "Pvm", "Selite", "Tili", "Debet", "Kredit" })
    {
    }
    bool isNull(int column) const override
    {
        const PaivakirjanRivit::Rivi& r = rivi();
        switch (Sarake(column)) {
        case Pvm:
            return tosite().pvm.isNull();
        case Tili:
            return r.viId != 0 && r.tili >= 0 && !m_rivit->tilit[size_t(r.tili)];
        case Debet:
            return r.viId == 0 || m_rivit->tyypit[size_t(r.tyyppi)] != "D";
        case Kredit:
            return r.viId == 0 || m_rivit->tyypit[size_t(r.tyyppi)] != "K";
        default:
            return false;
        }
    }
    qint64 integer(int column) const override
    {
        switch (Sarake(column)) {
        case ToId:
            return tosite().id;
        case Numero:
            return tosite().numero;
        case Debet:
        case Kredit:
            return rivi().arvo;
        default:
            return 0;
        }
    }
    QString text(int column) const override
    {
        const PaivakirjanRivit::Rivi& r = rivi();
        switch (Sarake(column)) {
        case Selite:
            return tosite().selite;
        case Pvm:
            return QString::fromUtf8(tosite().pvm);
        case Tili:
            if (r.viId == 0)
                return QStringLiteral("Tositteella ei ole vientejä.");
            if (r.tili < 0)
                return QStringLiteral("Tiliä ei ole (tili poistettu)");
            return m_rivit->tilit[size_t(r.tili)].value_or(QString());
        default:
            return QString::number(integer(column));
        }
    }
    QByteArrayView bytes(int column) const override
    {
        if (Sarake(column) == Pvm)
            return tosite().pvm;
        return utf8(column);
    }

private:
    enum Sarake { ToId, Numero, Pvm, Selite, Tili, Debet, Kredit };

    const PaivakirjanRivit::Tosite& tosite() const { return m_rivit->tositteet[size_t(rivi().tosite)]; }
};

// The ledger's rows for the report engine, with the columns of the ledger's query.
class PaakirjanLahde final : public MemoryRows<PaakirjanRivit> {
public:
    explicit PaakirjanLahde(std::shared_ptr<const PaakirjanRivit> rivit)
        : MemoryRows(std::move(rivit),
            { "TiliId", "Tili", "Nimi", "Loppusaldo", "Numero", "Pvm", "Selite", "Debet", "Kredit",
                "Alkusaldo", "VientiId" })
    {
    }
    bool isNull(int column) const override
    {
        const PaakirjanRivit::Rivi& r = rivi();
        const bool kantaja = r.tosite < 0;
        switch (Sarake(column)) {
        case Loppusaldo:
        case Alkusaldo:
            return !kantaja;
        case Numero:
        case VientiId:
            return kantaja;
        case Debet:
            return r.puoli != 'D';
        case Kredit:
            return r.puoli != 'K';
        case Pvm:
            return !kantaja && tosite().pvm.isNull();
        default:
            return false;
        }
    }
    qint64 integer(int column) const override
    {
        const PaakirjanRivit::Rivi& r = rivi();
        switch (Sarake(column)) {
        case TiliId:
            return tili().id;
        case Tili:
            return tili().numero;
        case Loppusaldo:
            return tili().loppusaldo;
        case Alkusaldo:
            return tili().alkusaldo;
        case Numero:
            return r.tosite < 0 ? 0 : tosite().numero;
        case Debet:
        case Kredit:
            return r.arvo;
        case VientiId:
            return r.viId;
        default:
            return 0;
        }
    }
    QString text(int column) const override
    {
        switch (Sarake(column)) {
        case Nimi:
            return tili().nimi;
        case Selite:
            return rivi().tosite < 0 ? QStringLiteral("Alkusaldo") : tosite().selite;
        case Pvm:
            return QString::fromUtf8(bytes(column));
        default:
            return QString::number(integer(column));
        }
    }
    QByteArrayView bytes(int column) const override
    {
        if (Sarake(column) == Pvm)
            return rivi().tosite < 0 ? QByteArrayView(m_rivit->alku) : QByteArrayView(tosite().pvm);
        return utf8(column);
    }

private:
    enum Sarake { TiliId, Tili, Nimi, Loppusaldo, Numero, Pvm, Selite, Debet, Kredit, Alkusaldo, VientiId };

    const PaakirjanRivit::Tili& tili() const { return m_rivit->tilit[size_t(rivi().tili)]; }
    const PaakirjanRivit::Tosite& tosite() const { return m_rivit->tositteet[size_t(rivi().tosite)]; }
};

} // namespace

namespace JournalPrinting {

QString raporttiTiedosto(Kirja kirja, Laji laji, bool vaaka)
{
    if (kirja == Kirja::Paakirja)
        return vaaka ? QStringLiteral("paakivab.rpt") : QStringLiteral("paakirjb.rpt");
    // The letters are the files' own; they do not follow the kinds' names.
    switch (laji) {
    case Laji::Avaus:
        return vaaka ? QStringLiteral("paikivab.rpt") : QStringLiteral("paikirjb.rpt");
    case Laji::Paatos:
        return vaaka ? QStringLiteral("paikivae.rpt") : QStringLiteral("paikirje.rpt");
    case Laji::Tavallinen:
        break;
    }
    return vaaka ? QStringLiteral("paikivaa.rpt") : QStringLiteral("paikirja.rpt");
}

QString jaksonVirhe(const QDate& alku, const QDate& loppu)
{
    const PeriodCheck::Result a = PeriodCheck::alku(Dates::format(alku));
    if (!a.ok())
        return a.message;
    const PeriodCheck::Result l = PeriodCheck::loppu(Dates::format(loppu));
    if (!l.ok())
        return l.message;
    return PeriodCheck::jakso(alku, loppu);
}

std::shared_ptr<const PaivakirjanRivit> paivakirjanRivit(
    const QSqlDatabase& db, Laji laji, const QDate& alku, const QDate& loppu)
{
    using Rivi = PaivakirjanRivit::Rivi;
    auto rivit = std::make_shared<PaivakirjanRivit>();
    PaivakirjanRivit& r = *rivit;
    // The vouchers of the kind numbered 0 or above and dated in the period, in three plain scans
    // joined and sorted here, as in the ledger.
    KeyTable<int> tositteet; // toID → index + 1
    {
        RowReader q(db,
            QStringLiteral(
                "SELECT toID, toNumero, toPvm, COALESCE(toSelite, '') FROM \"to\" WHERE toNumero >= 0 "
                "AND toAutomaatti = 0 AND ")
                + tositeLaji(laji));
        const QByteArray a = Dates::toSql(alku).toUtf8();
        const QByteArray l = Dates::toSql(loppu).toUtf8();
        while (q.next()) {
            // The dates compared as the query compares them, as text.
            const QByteArrayView pvm = q.bytes(2);
            if (q.isNull(2) || pvm < a || pvm > l)
                continue;
            tositteet.set(q.integer(0), int(r.tositteet.size()) + 1);
            r.tositteet.push_back(
                { q.integer(0), q.integer(1), QByteArray(pvm.data(), pvm.size()), q.text(3) });
        }
    }
    r.summat.tositteita = qint64(r.tositteet.size());
    QHash<qint32, int> tilit;
    {
        RowReader q(db, QStringLiteral("SELECT tlID, tlNumero, COALESCE(tlNimi, '') FROM tl"));
        while (q.next()) {
            tilit.insert(qint32(q.integer(0)), int(r.tilit.size()));
            r.tilit.push_back(q.isNull(1)
                    ? std::nullopt
                    : std::optional<QString>(QString::number(q.integer(1)) + u' ' + q.text(2)));
        }
    }
    std::vector<bool> vienteja(r.tositteet.size(), false);
    QHash<QByteArray, int> tyypit; // each entry type met, by its order of meeting (from 1)
    {
        RowReader q(db, QStringLiteral("SELECT viID, vitoID, vitlID, viTyyppi, viArvo FROM vi"));
        while (q.next()) {
            const int tosite = tositteet.value(q.integer(1)) - 1;
            if (tosite < 0)
                continue;
            vienteja[size_t(tosite)] = true;
            const QByteArrayView tyyppi = q.bytes(3);
            int tunnus = 0;
            if (!q.isNull(3)) {
                const QByteArray avain(tyyppi.data(), tyyppi.size());
                tunnus = tyypit.value(avain, 0);
                if (tunnus == 0) {
                    tunnus = int(tyypit.size()) + 1;
                    tyypit.insert(avain, tunnus);
                }
            }
            const qint64 arvo = q.integer(4);
            if (tunnus != 0 && tyyppi == "D") {
                ++r.summat.debetVienteja;
                r.summat.debet += Money::fromRaw(arvo);
            } else if (tunnus != 0 && tyyppi == "K") {
                ++r.summat.kreditVienteja;
                r.summat.kredit += Money::fromRaw(arvo);
            }
            const auto tili = tilit.constFind(qint32(q.integer(2)));
            r.rivit.push_back({ tosite, q.integer(0), tunnus, tili == tilit.constEnd() ? -1 : *tili, arvo });
        }
    }
    // The types in the order the query sorts them (none first, then as text).
    r.tyypit.push_back(QByteArray());
    for (auto it = tyypit.cbegin(); it != tyypit.cend(); ++it)
        r.tyypit.push_back(it.key());
    std::sort(r.tyypit.begin() + 1, r.tyypit.end());
    std::vector<int> paikka(tyypit.size() + 1, 0);
    for (size_t i = 1; i < r.tyypit.size(); ++i)
        paikka[size_t(tyypit.value(r.tyypit[i]))] = int(i);
    for (Rivi& rivi : r.rivit)
        rivi.tyyppi = paikka[size_t(rivi.tyyppi)];
    // A voucher without entries still shows, with a row saying so.
    for (size_t i = 0; i < vienteja.size(); ++i)
        if (!vienteja[i])
            r.rivit.push_back({ int(i), 0, 0, -1, 0 });
    std::sort(r.rivit.begin(), r.rivit.end(), [&r](const Rivi& a, const Rivi& b) {
        const PaivakirjanRivit::Tosite& ta = r.tositteet[size_t(a.tosite)];
        const PaivakirjanRivit::Tosite& tb = r.tositteet[size_t(b.tosite)];
        return std::tuple(ta.numero, ta.id, a.tyyppi, a.viId)
            < std::tuple(tb.numero, tb.id, b.tyyppi, b.viId);
    });
    return rivit;
}

QString valintakaava(Kirja kirja, Laji laji, const QDate& alku, const QDate& loppu)
{
    const QString paivat = QStringLiteral("{to.toPvm} <= ") + date(loppu)
        + QStringLiteral(" AND {to.toPvm} >= ") + date(alku) + u')';
    if (kirja == Kirja::Paivakirja) {
        QString kaava = u'(' + paivat;
        switch (laji) {
        case Laji::Avaus:
            return kaava + QStringLiteral(" AND {to.toNumero} >= 0 AND {to.toAvaustosite} = True");
        case Laji::Paatos:
            return kaava + QStringLiteral(" AND {to.toNumero} >= 0 AND {to.toPaatostosite} = True");
        case Laji::Tavallinen:
            break;
        }
        return kaava
            + QStringLiteral(
                " AND {to.toNumero} >= 0 AND {to.toAvaustosite} = False AND {to.toPaatostosite} = False");
    }
    switch (laji) {
    case Laji::Avaus:
        return QStringLiteral("{tl.tlPrint} = True AND ({vi.viAvausvienti} = True AND (") + paivat
            + QStringLiteral(" OR ({tl.tlID} > 0 AND {to.toNumero} < 0) AND {to.toAvaustosite} = True)");
    case Laji::Paatos:
        return QStringLiteral("{tl.tlPrint} = True AND ({vi.viPaatosvienti} = True AND (") + paivat
            + QStringLiteral(" OR ({tl.tlID} > 0 AND {to.toNumero} < 0) AND {to.toPaatostosite} = True)");
    case Laji::Tavallinen:
        break;
    }
    return QStringLiteral(
               "{tl.tlPrint} = True AND (({vi.viAvausvienti} = False AND {vi.viPaatosvienti} = False) AND (")
        + paivat + QStringLiteral(" OR ({tl.tlID} > 0 AND {to.toNumero} < 0))");
}

ReportJob paivakirja(const QSqlDatabase& db, Laji laji, const QDate& alku, const QDate& loppu)
{
    const std::shared_ptr<const PaivakirjanRivit> rivit = paivakirjanRivit(db, laji, alku, loppu);
    const Summat& s = rivit->summat;
    const QString otsake = laji == Laji::Avaus ? QStringLiteral("Päiväkirja - Avausviennit -- ")
        : laji == Laji::Paatos                 ? QStringLiteral("Päiväkirja - Tilinpäätösviennit -- ")
                                               : QStringLiteral("Päiväkirja -- ");
    ReportJob job;
    job.reportFile = raporttiTiedosto(Kirja::Paivakirja, laji, ProgramSettings::bookkeeping().VaakaTulostus);
    const auto kaava = [](const char* nimi, const QString& arvo) {
        return QLatin1String(nimi) + QStringLiteral("= ") + ReportFormulas::quoted(arvo);
    };
    job.formulas = { seurannimi(), kaava("Otsake", otsake + jakso(alku, loppu)),
        kaava("DebetVienteja", QString::number(s.debetVienteja)),
        kaava("KreditVienteja", QString::number(s.kreditVienteja)), kaava("KreditSumma", s.kredit.toString()),
        kaava("DebetSumma", s.debet.toString()), kaava("Tositteita", QString::number(s.tositteita)),
        kaava("Vienteja", QString::number(s.vienteja())), kaava("ErotusSummista", s.erotus().toString()) };
    job.selectionFormula = valintakaava(Kirja::Paivakirja, laji, alku, loppu);
    job.periodStart = alku;
    job.periodEnd = loppu;
    job.rows = [rivit](const QSqlDatabase&) { return std::make_unique<PaivakirjanLahde>(rivit); };
    return job;
}

Paakirja valmistelePaakirja(const QSqlDatabase& db, Laji laji, const QDate& alku, const QDate& loppu)
{
    using Tili = PaakirjanRivit::Tili;
    using Tosite = PaakirjanRivit::Tosite;
    using Rivi = PaakirjanRivit::Rivi;
    // The year is read in three plain scans and joined, summed and sorted here: the engine's own
    // joins and sort of every entry cost several times more.
    auto rivit = std::make_shared<PaakirjanRivit>();
    PaakirjanRivit& r = *rivit;
    r.alku = Dates::toSql(alku).toUtf8();
    QHash<qint32, int> tilit; // tlID → index
    {
        RowReader q(db, QStringLiteral("SELECT tlID, tlNumero, COALESCE(tlNimi, ''), tlPrint FROM tl"));
        while (q.next()) {
            tilit.insert(qint32(q.integer(0)), int(r.tilit.size()));
            r.tilit.push_back(
                { qint32(q.integer(0)), q.integer(1), q.text(2), !q.isNull(3) && q.integer(3) != 0 });
        }
    }
    KeyTable<int> tositteet; // toID → index + 1
    {
        RowReader q(db,
            QStringLiteral(
                "SELECT toID, toNumero, toPvm, COALESCE(toSelite, '') FROM \"to\" WHERE toNumero >= 0 "
                "AND toAutomaatti = 0"));
        while (q.next()) {
            tositteet.set(q.integer(0), int(r.tositteet.size()) + 1);
            const QByteArrayView pvm = q.bytes(2);
            r.tositteet.push_back(
                { q.integer(1), Dates::dayNumber(pvm), QByteArray(pvm.data(), pvm.size()), q.text(3) });
        }
    }
    const Ehdot e { laji, Dates::dayNumber(alku), Dates::dayNumber(loppu) };
    std::vector<qint64> alkusaldot(r.tilit.size(), 0);
    std::vector<qint64> muutokset(r.tilit.size(), 0);
    QSet<qint32> virheelliset;
    {
        RowReader q(db,
            QStringLiteral(
                "SELECT viID, vitoID, vitlID, viTyyppi, viArvo, viAvausvienti, viPaatosvienti FROM vi "
                "WHERE viAutomaatti = 0"));
        while (q.next()) {
            const int tosite = tositteet.value(q.integer(1)) - 1;
            if (tosite < 0)
                continue;
            const Tosite& t = r.tositteet[size_t(tosite)];
            const bool avaus = q.integer(5) != 0;
            const bool paatos = q.integer(6) != 0;
            const bool alussa = e.alussa(avaus, paatos, t.paiva);
            const bool jaksolla = e.jaksolla(avaus, paatos, t.paiva);
            if (!alussa && !jaksolla)
                continue;
            const QByteArrayView tyyppi = q.bytes(3);
            const char puoli = tyyppi == "D" ? 'D' : tyyppi == "K" ? 'K' : 0;
            const auto tili = tilit.constFind(qint32(q.integer(2)));
            // Entries no balance can take (no such account, or neither debit nor credit).
            if (puoli == 0 || tili == tilit.constEnd())
                virheelliset.insert(qint32(t.numero));
            if (tili == tilit.constEnd())
                continue;
            const qint64 arvo = q.integer(4);
            const qint64 maara = puoli == 'D' ? arvo : puoli == 'K' ? -arvo : 0;
            if (alussa)
                alkusaldot[size_t(*tili)] += maara;
            if (jaksolla) {
                muutokset[size_t(*tili)] += maara;
                if (r.tilit[size_t(*tili)].tulostetaan)
                    r.rivit.push_back({ *tili, tosite, q.integer(0), puoli, arvo });
            }
        }
    }
    // Every account marked for printing gets its balance row, also one without entries; it
    // comes first in its account, as a voucher without a number.
    for (size_t i = 0; i < r.tilit.size(); ++i) {
        r.tilit[i].alkusaldo = alkusaldot[i];
        r.tilit[i].loppusaldo = alkusaldot[i] + muutokset[i];
        if (r.tilit[i].tulostetaan)
            r.rivit.push_back({ int(i), -1, 0, 0, 0 });
    }
    std::sort(r.rivit.begin(), r.rivit.end(), [&r](const Rivi& a, const Rivi& b) {
        const Tili& ta = r.tilit[size_t(a.tili)];
        const Tili& tb = r.tilit[size_t(b.tili)];
        const auto avain = [&r](const Tili& t, const Rivi& x) {
            const bool kantaja = x.tosite < 0;
            return std::tuple(t.numero,
                kantaja ? std::numeric_limits<qint64>::min() : r.tositteet[size_t(x.tosite)].numero, t.id,
                kantaja ? std::numeric_limits<qint64>::min() : x.viId);
        };
        return avain(ta, a) < avain(tb, b);
    });

    // The same balances for the report's own query, which the rows above stand in for.
    Schema::createWorkTables(db);
    Transaction transaction(db);
    Sql::run(db, QStringLiteral("DELETE FROM paakirjaSaldot"));
    QSqlQuery lisaa = Sql::prepare(db,
        QStringLiteral("INSERT INTO paakirjaSaldot (tlID, Pvm, Alkusaldo, Loppusaldo) VALUES (?, ?, ?, ?)"));
    for (const Tili& t : r.tilit) {
        lisaa.addBindValue(t.id);
        lisaa.addBindValue(Dates::toSql(alku));
        lisaa.addBindValue(t.alkusaldo);
        lisaa.addBindValue(t.loppusaldo);
        Sql::exec(lisaa);
    }
    transaction.commitOrThrow();

    Paakirja valmis;
    valmis.virheelliset = QList<qint32>(virheelliset.begin(), virheelliset.end());
    std::sort(valmis.virheelliset.begin(), valmis.virheelliset.end());
    valmis.rivit = std::move(rivit);
    return valmis;
}

QString virheellisetViennit(const QList<qint32>& numerot)
{
    QStringList rivit;
    for (const qint32 n : numerot)
        rivit.append(QStringLiteral("Tarkista tositteen numero %1 viennit.").arg(n));
    return rivit.join(u'\n');
}

ReportJob paakirja(const Paakirja& valmis, Laji laji, const QDate& alku, const QDate& loppu)
{
    const QString otsake = laji == Laji::Avaus ? QStringLiteral("Pääkirja - Avausviennit -- ")
        : laji == Laji::Paatos                 ? QStringLiteral("Pääkirja - Tilinpäätösviennit -- ")
                                               : QStringLiteral("Pääkirja -- ");
    ReportJob job;
    job.reportFile = raporttiTiedosto(Kirja::Paakirja, laji, ProgramSettings::bookkeeping().VaakaTulostus);
    job.formulas
        = { seurannimi(), QStringLiteral("Otsake= ") + ReportFormulas::quoted(otsake + jakso(alku, loppu)) };
    job.selectionFormula = valintakaava(Kirja::Paakirja, laji, alku, loppu);
    job.sortFields = { QStringLiteral("+{tl.tlNumero}"), QStringLiteral("+{to.toNumero}") };
    job.periodStart = alku;
    job.periodEnd = loppu;
    if (valmis.rivit) {
        const std::shared_ptr<const PaakirjanRivit> rivit = valmis.rivit;
        job.rows = [rivit](const QSqlDatabase&) { return std::make_unique<PaakirjanLahde>(rivit); };
    }
    return job;
}

} // namespace JournalPrinting
