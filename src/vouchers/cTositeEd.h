#pragma once

#include "vouchers/VoucherRecord.h"
#include "vouchers/cVientiEd.h"

#include <memory>
#include <vector>

// One voucher of the previous fiscal year (table toE). New keys are the largest key + 1, given
// by the program; numbering looks at every number; opening, closing and ordinary vouchers of
// the previous year are browsed as one sequence.
class cTositeEd final : public VoucherRecord {
    Q_OBJECT

public:
    using Viennit = std::vector<std::unique_ptr<cVientiEd>>;

    explicit cTositeEd(const QSqlDatabase& db)
        : VoucherRecord(db, VoucherLayout::previous())
    {
    }

    qint32 SetTositeNumeroJaPaiva(const QDate& defaultDate);
    std::unique_ptr<cVientiEd> AddNewVienti(const QString& tyyppi) const;
    Viennit GetViennit(const QString& tyyppi) const;

    std::unique_ptr<cTositeEd> GetFirst() const;
    std::unique_ptr<cTositeEd> GetPrevious() const;
    std::unique_ptr<cTositeEd> GetNext() const;
    std::unique_ptr<cTositeEd> GetLast() const;
};
