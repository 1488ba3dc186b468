#include "KirjaTulostus.h"

#include "DatabaseError.h"
#include "Dates.h"
#include "PeriodCheck.h"
#include "ProgramSettings.h"
#include "ReportFormulas.h"
#include "Schema.h"
#include "Transaction.h"

#include <QHash>
#include <QSet>
#include <QVariant>

namespace {

using KirjaTulostus::Kirja;
using KirjaTulostus::Laji;

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

// The entries of the ledger's balance pass. The dates are bound: ?1 the start, ?2 the end.
struct Ehdot {
    QString alku; // counted in the balance at the start of the period
    QString jakso; // the rows of the period
};

Ehdot ehdot(Laji laji)
{
    const QString avaus = QStringLiteral("vi.viAvausvienti <> 0");
    const QString paatos = QStringLiteral("vi.viPaatosvienti <> 0");
    const QString tavallinen = QStringLiteral("(vi.viAvausvienti = 0 AND vi.viPaatosvienti = 0)");
    const QString ennen = QStringLiteral("\"to\".toPvm < :alku");
    const QString sisalla = QStringLiteral("(\"to\".toPvm >= :alku AND \"to\".toPvm <= :loppu)");
    switch (laji) {
    case Laji::Avaus:
        return { avaus + QStringLiteral(" AND ") + ennen, avaus + QStringLiteral(" AND ") + sisalla };
    case Laji::Paatos:
        return { QStringLiteral("%1 OR (%2 AND \"to\".toPvm <= :loppu) OR (%3 AND %4)")
                     .arg(avaus, tavallinen, paatos, ennen),
            paatos + QStringLiteral(" AND ") + sisalla };
    case Laji::Tavallinen:
        break;
    }
    return { QStringLiteral("%1 OR (%2 AND %3)").arg(avaus, tavallinen, ennen),
        tavallinen + QStringLiteral(" AND ") + sisalla };
}

// Binds the period to the named places of `sql`, in the order they come.
QSqlQuery run(const QSqlDatabase& db, QString sql, const QDate& alku, const QDate& loppu,
    const QVariantList& first = {})
{
    QVariantList values = first;
    for (qsizetype i = sql.indexOf(u':'); i >= 0; i = sql.indexOf(u':', i)) {
        if (sql.mid(i, 5) == u":alku") {
            sql.replace(i, 5, u'?');
            values.append(Dates::toSql(alku));
        } else if (sql.mid(i, 6) == u":loppu") {
            sql.replace(i, 6, u'?');
            values.append(Dates::toSql(loppu));
        } else {
            ++i;
        }
    }
    return Sql::run(db, sql, values);
}

} // namespace

namespace KirjaTulostus {

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

Summat paivakirjanSummat(const QSqlDatabase& db, Laji laji, const QDate& alku, const QDate& loppu)
{
    // The vouchers (also those without entries) and the entries by side, each counted in one pass.
    const QString vouchers
        = QStringLiteral("\"to\".toNumero >= 0 AND \"to\".toAutomaatti = 0 AND \"to\".toPvm <= :loppu AND "
                         "\"to\".toPvm >= :alku AND ")
        + tositeLaji(laji);
    Summat s;
    QSqlQuery count = run(db, QStringLiteral("SELECT COUNT(*) FROM \"to\" WHERE ") + vouchers, alku, loppu);
    if (count.next())
        s.tositteita = count.value(0).toLongLong();
    QSqlQuery q = run(db,
        QStringLiteral("SELECT COALESCE(SUM(CASE WHEN vi.viTyyppi = 'D' THEN 1 ELSE 0 END), 0), "
                       "COALESCE(SUM(CASE WHEN vi.viTyyppi = 'K' THEN 1 ELSE 0 END), 0), "
                       "COALESCE(SUM(CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo ELSE 0 END), 0), "
                       "COALESCE(SUM(CASE WHEN vi.viTyyppi = 'K' THEN vi.viArvo ELSE 0 END), 0) "
                       "FROM \"to\" INNER JOIN vi ON vi.vitoID = \"to\".toID WHERE ")
            + vouchers,
        alku, loppu);
    if (q.next()) {
        s.debetVienteja = q.value(0).toLongLong();
        s.kreditVienteja = q.value(1).toLongLong();
        s.debet = Money::fromRaw(q.value(2).toLongLong());
        s.kredit = Money::fromRaw(q.value(3).toLongLong());
    }
    return s;
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
    const Summat s = paivakirjanSummat(db, laji, alku, loppu);
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
    return job;
}

QList<qint32> valmistelePaakirja(const QSqlDatabase& db, Laji laji, const QDate& alku, const QDate& loppu)
{
    const Ehdot e = ehdot(laji);
    Schema::createWorkTables(db);
    Transaction transaction(db);
    Sql::run(db, QStringLiteral("DELETE FROM paakirjaSaldot"));

    // Every entry is read once, grouped by account; the unary plus keeps the planner from
    // walking the entries in account-index order. The same pass counts the entries of the period's
    // passes that no balance can take (no debit or credit type), per account.
    const QString maara = QStringLiteral(
        "CASE WHEN vi.viTyyppi = 'D' THEN vi.viArvo WHEN vi.viTyyppi = 'K' THEN -vi.viArvo ELSE 0 END");
    const QString mukana = QStringLiteral("(%1) OR (%2)").arg(e.alku, e.jakso);
    QSqlQuery q = run(db,
        QStringLiteral(
            "SELECT vi.vitlID, SUM(CASE WHEN %1 THEN %3 ELSE 0 END), SUM(CASE WHEN %2 THEN %3 ELSE 0 "
            "END), SUM(CASE WHEN (%4) AND (vi.viTyyppi IS NULL OR vi.viTyyppi NOT IN ('D', 'K')) THEN 1 "
            "ELSE 0 END), SUM(CASE WHEN %4 THEN 1 ELSE 0 END) FROM vi INNER JOIN \"to\" ON \"to\".toID = "
            "vi.vitoID WHERE \"to\".toNumero >= 0 AND \"to\".toAutomaatti = 0 AND vi.viAutomaatti = 0 "
            "GROUP BY +vi.vitlID")
            .arg(e.alku, e.jakso, maara, mukana),
        alku, loppu);
    struct Saldo {
        qint32 tili;
        qint64 alku;
        qint64 muutos;
        bool virheita;
        bool mukana;
    };
    std::vector<Saldo> saldot;
    while (q.next())
        saldot.push_back({ q.value(0).toInt(), q.value(1).toLongLong(), q.value(2).toLongLong(),
            q.value(3).toLongLong() > 0, q.value(4).toLongLong() > 0 });
    QSet<qint32> tilit;
    q = Sql::run(db, QStringLiteral("SELECT tlID FROM tl"));
    while (q.next())
        tilit.insert(q.value(0).toInt());

    // Every account gets its balance row, also one without entries.
    QHash<qint32, std::pair<qint64, qint64>> alkuJaLoppu;
    QVariantList epaillyt;
    for (const Saldo& saldo : saldot) {
        const bool tunnettu = tilit.contains(saldo.tili);
        if (tunnettu)
            alkuJaLoppu.insert(saldo.tili, { saldo.alku, saldo.alku + saldo.muutos });
        if (saldo.virheita || (!tunnettu && saldo.mukana))
            epaillyt.append(saldo.tili);
    }
    {
        QSqlQuery lisaa = Sql::prepare(db,
            QStringLiteral(
                "INSERT INTO paakirjaSaldot (tlID, Pvm, Alkusaldo, Loppusaldo) VALUES (?, ?, ?, ?)"));
        const QString pvm = Dates::toSql(alku);
        for (const qint32 tili : tilit) {
            const auto [a, l] = alkuJaLoppu.value(tili, { 0, 0 });
            lisaa.addBindValue(tili);
            lisaa.addBindValue(pvm);
            lisaa.addBindValue(a);
            lisaa.addBindValue(l);
            Sql::exec(lisaa);
        }
    }

    // Entries the balances cannot place (no such account, or neither debit nor credit), by
    // voucher number; looked for only among the accounts the pass above found them in.
    QList<qint32> virheelliset;
    if (!epaillyt.isEmpty()) {
        QStringList paikat;
        for (qsizetype i = 0; i < epaillyt.size(); ++i)
            paikat.append(QStringLiteral("?"));
        q = run(db,
            QStringLiteral(
                "SELECT DISTINCT \"to\".toNumero FROM vi INNER JOIN \"to\" ON \"to\".toID = vi.vitoID "
                "WHERE vi.vitlID IN (%1) AND \"to\".toNumero >= 0 AND (%2) AND (vi.viTyyppi IS NULL OR "
                "vi.viTyyppi NOT IN ('D', 'K') OR NOT EXISTS (SELECT 1 FROM tl WHERE tl.tlID = vi.vitlID)) "
                "ORDER BY 1")
                .arg(paikat.join(QStringLiteral(", ")), mukana),
            alku, loppu, epaillyt);
        while (q.next())
            virheelliset.append(q.value(0).toInt());
    }
    transaction.commitOrThrow();
    return virheelliset;
}

QString virheellisetViennit(const QList<qint32>& numerot)
{
    QStringList rivit;
    for (const qint32 n : numerot)
        rivit.append(QStringLiteral("Tarkista tositteen numero %1 viennit.").arg(n));
    return rivit.join(u'\n');
}

ReportJob paakirja(Laji laji, const QDate& alku, const QDate& loppu)
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
    return job;
}

} // namespace KirjaTulostus
