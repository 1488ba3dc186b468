#pragma once

#include "core/Money.h"
#include "printing/ReportJob.h"
#include "vouchers/VoucherEditor.h"

#include <QDate>
#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <memory>

// The journal (vouchers in number order with their entries) and the general ledger (entries by
// account, with each account's balance at the start and the end of the period) of one kind of
// voucher over a period, as the voucher window and vorkam_report hand them to the report engine.
namespace JournalPrinting {

enum class Kirja { Paivakirja, Paakirja };
using Laji = VoucherEditor::Laji;

// The report file of a book, kind and orientation ("paikirja.rpt", …).
QString raporttiTiedosto(Kirja kirja, Laji laji, bool vaaka);

// Why the period cannot be printed (outside the fiscal year, or the start after the end), in
// the date dialogs' own words; "" when it can.
QString jaksonVirhe(const QDate& alku, const QDate& loppu);

// The journal's counts and sums over the vouchers of the kind numbered 0 or above and dated in
// the period: vouchers (also those without entries), debit and credit entries and their sums.
struct Summat {
    qint64 tositteita = 0;
    qint64 debetVienteja = 0;
    qint64 kreditVienteja = 0;
    Money debet;
    Money kredit;
    qint64 vienteja() const { return debetVienteja + kreditVienteja; }
    Money erotus() const { return debet - kredit; }
};

// The record-selection formula of a book, kind and period.
QString valintakaava(Kirja kirja, Laji laji, const QDate& alku, const QDate& loppu);

// The journal: its counts and sums, the file by VaakaTulostus, the formulas and the selection,
// and its rows computed in memory, which stand in for the report's query (clear `rows` of the
// job to run the query instead). Throws DatabaseError.
ReportJob paivakirja(const QSqlDatabase& db, Laji laji, const QDate& alku, const QDate& loppu);

// The ledger of a kind over a period, computed from the books in memory: each account's balance
// at the start of the period and at its end, and the rows to print. The balances are those of the
// kind's own sequence: opening entries start from nothing; ordinary entries start from the
// opening entries and the ordinary ones before the period; closing entries start from the
// balance of the year's other entries. The start balance and the rows the ledger shows add up to
// the end balance. The balances also go to this connection's work table paakirjaSaldot, for the
// report's own query; the books are only read.
struct PaakirjanRivit;
struct Paakirja {
    // The numbers of the vouchers whose entries of the period have no account or no debit/credit
    // type, in order.
    QList<qint32> virheelliset;
    std::shared_ptr<const PaakirjanRivit> rivit;
};
// Throws DatabaseError.
Paakirja valmistelePaakirja(const QSqlDatabase& db, Laji laji, const QDate& alku, const QDate& loppu);
// "Tarkista tositteen numero 5 viennit." for each, one per line.
QString virheellisetViennit(const QList<qint32>& numerot);

// The ledger's job: file, formulas, selection and sort fields, and the rows of `valmis`, which
// stand in for the report's query. Without them (a default Paakirja) the query runs over the
// balances of the last valmistelePaakirja of the connection.
ReportJob paakirja(const Paakirja& valmis, Laji laji, const QDate& alku, const QDate& loppu);

} // namespace JournalPrinting
