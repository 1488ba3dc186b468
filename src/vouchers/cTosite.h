#pragma once

#include "vouchers/VoucherRecord.h"
#include "vouchers/cVienti.h"

#include <memory>
#include <vector>

// One voucher of the current fiscal year (table "to"), with the cursor that steps through the
// vouchers of one kind in number order. Ordinary, opening and closing vouchers are browsed as
// three separate sequences but share one number sequence. Vouchers numbered below 0 carry
// ledger balance rows and are never seen by numbering or the cursor.
class cTosite final : public VoucherRecord {
    Q_OBJECT

public:
    using Viennit = std::vector<std::unique_ptr<cVienti>>;

    explicit cTosite(const QSqlDatabase& db)
        : VoucherRecord(db, VoucherLayout::current())
    {
    }

    // Gives a new voucher the next number of the shared sequence and the latest voucher date
    // (`defaultDate` when there are no vouchers). Writes nothing; returns the number.
    // `avaustosite` does not change the numbering: all kinds share one sequence.
    qint32 SetTositeNumeroJaPaiva(const QDate& defaultDate, bool avaustosite);

    // A new, unsaved entry of this voucher; IsEmpty when the voucher is.
    std::unique_ptr<cVienti> AddNewVienti(const QString& tyyppi) const;
    // The stored entries of one type ("D" or "K"), in the order they were stored.
    Viennit GetViennit(const QString& tyyppi) const;

    // Each returns a new voucher of the kind given (opening, closing), IsEmpty when there is none.
    std::unique_ptr<cTosite> GetFirst(bool avaustosite, bool paatostosite) const;
    std::unique_ptr<cTosite> GetPrevious(bool avaustosite, bool paatostosite) const;
    std::unique_ptr<cTosite> GetNext(bool avaustosite, bool paatostosite) const;
    std::unique_ptr<cTosite> GetLast(bool avaustosite, bool paatostosite) const;
    // The last voucher of a kind counting number 0 too (the opening voucher is numbered 0):
    // the one a window of that kind opens on.
    std::unique_ptr<cTosite> GetLastFromZero(bool avaustosite, bool paatostosite) const;

    // The greatest number of debit or of credit entries in any one voucher: how many entry rows
    // the longest voucher needs.
    static qint16 MaxLkmViennitPerTosite(const QSqlDatabase& db);

    // The vouchers of one kind (numbers 0 and above) in number order: key, number and description.
    struct Rivi {
        qint32 toId = 0;
        qint32 numero = 0;
        QString selite;
    };
    static std::vector<Rivi> Luettelo(const QSqlDatabase& db, bool avaustosite, bool paatostosite);
    // The largest voucher number of every kind, or nullopt when there are no vouchers.
    static std::optional<qint32> SuurinNumero(const QSqlDatabase& db);

private:
    std::unique_ptr<cTosite> step(CursorStep::Compare compare, qint32 numero, bool avaustosite,
        bool paatostosite, bool descending) const;
};
