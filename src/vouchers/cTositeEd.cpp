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
    auto vienti = std::make_unique<cVientiEd>();
    if (IsEmpty())
        vienti->setIsEmpty(true);
    else
        initNewVienti(*vienti, tyyppi);
    return vienti;
}

cTositeEd::Viennit cTositeEd::GetViennit(const QString& tyyppi) const
{
    Viennit result;
    QSqlQuery q(DBC::instance().AvaaDB());
    if (!selectViennit(q, tyyppi))
        return result;
    while (q.next()) {
        auto vienti = std::make_unique<cVientiEd>();
        vienti->loadFromRow(q);
        result.push_back(std::move(vienti));
    }
    return result;
}

std::unique_ptr<cTositeEd> cTositeEd::found(qint32 key) const
{
    auto tosite = std::make_unique<cTositeEd>();
    if (key == 0)
        tosite->setIsEmpty(true);
    else
        tosite->Load(key);
    return tosite;
}

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
