#include "cTositeEd.h"

#include "DBC.h"

#include <QSqlQuery>
#include <QVariant>

qint32 cTositeEd::SetTositeNumeroJaPaiva(const QDate& defaultDate)
{
    return numberAndDate(defaultDate, false);
}

std::unique_ptr<cVientiEd> cTositeEd::AddNewVienti(const QString& tyyppi) const
{
    return newVienti<cVientiEd>(tyyppi);
}

cTositeEd::Viennit cTositeEd::GetViennit(const QString& tyyppi) const { return viennit<cVientiEd>(tyyppi); }

std::unique_ptr<cTositeEd> cTositeEd::found(qint32 key) const { return loaded<cTositeEd>(key); }

std::unique_ptr<cTositeEd> cTositeEd::GetFirst() const
{
    return found(cursorKey(QStringLiteral("toENumero > 0"), {}, false));
}

std::unique_ptr<cTositeEd> cTositeEd::GetPrevious() const
{
    if (IsEmpty())
        return found(0);
    return found(cursorKey(QStringLiteral("toENumero < ?"), { Numero() }, true));
}

std::unique_ptr<cTositeEd> cTositeEd::GetNext() const
{
    if (IsEmpty())
        return found(0);
    return found(cursorKey(QStringLiteral("toENumero > ?"), { Numero() }, false));
}

std::unique_ptr<cTositeEd> cTositeEd::GetLast() const
{
    return found(cursorKey(QStringLiteral("toENumero > 0"), {}, true));
}
