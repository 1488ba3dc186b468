#include "vouchers/cTositeEd.h"

qint32 cTositeEd::SetTositeNumeroJaPaiva(const QDate& defaultDate)
{
    return numberAndDate(defaultDate, false);
}

std::unique_ptr<cVientiEd> cTositeEd::AddNewVienti(const QString& tyyppi) const
{
    return newVienti<cVientiEd>(tyyppi);
}

cTositeEd::Viennit cTositeEd::GetViennit(const QString& tyyppi) const { return viennit<cVientiEd>(tyyppi); }

std::unique_ptr<cTositeEd> cTositeEd::GetFirst() const
{
    return loaded<cTositeEd>(cursorKey({ CursorStep::Compare::Above, 0, false, std::nullopt }));
}

std::unique_ptr<cTositeEd> cTositeEd::GetPrevious() const
{
    if (IsEmpty())
        return loaded<cTositeEd>(0);
    return loaded<cTositeEd>(cursorKey({ CursorStep::Compare::Below, Numero(), true, std::nullopt }));
}

std::unique_ptr<cTositeEd> cTositeEd::GetNext() const
{
    if (IsEmpty())
        return loaded<cTositeEd>(0);
    return loaded<cTositeEd>(cursorKey({ CursorStep::Compare::Above, Numero(), false, std::nullopt }));
}

std::unique_ptr<cTositeEd> cTositeEd::GetLast() const
{
    return loaded<cTositeEd>(cursorKey({ CursorStep::Compare::Above, 0, true, std::nullopt }));
}
