#include "cTosite.h"

#include "DBC.h"
#include "VoucherDatabaseError.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <limits>

qint32 cTosite::SetTositeNumeroJaPaiva(const QDate& defaultDate, bool avaustosite)
{
    Q_UNUSED(avaustosite) // one sequence for every kind, by design
    return numberAndDate(defaultDate, true);
}

std::unique_ptr<cVienti> cTosite::AddNewVienti(const QString& tyyppi) const
{
    return newVienti<cVienti>(tyyppi);
}

cTosite::Viennit cTosite::GetViennit(const QString& tyyppi) const { return viennit<cVienti>(tyyppi); }

std::unique_ptr<cTosite> cTosite::found(qint32 key) const { return loaded<cTosite>(key); }

std::unique_ptr<cTosite> cTosite::step(const QString& numberCondition, const QVariant& numero,
    bool avaustosite, bool paatostosite, bool descending) const
{
    const QString where
        = QStringLiteral("toNumero %1 ? AND (toAvaustosite <> 0) = ? AND (toPaatostosite <> 0) = ?")
              .arg(numberCondition);
    return found(cursorKey(where, { numero, avaustosite ? 1 : 0, paatostosite ? 1 : 0 }, descending));
}

std::unique_ptr<cTosite> cTosite::GetFirst(bool avaustosite, bool paatostosite) const
{
    return step(QStringLiteral(">"), 0, avaustosite, paatostosite, false);
}

std::unique_ptr<cTosite> cTosite::GetPrevious(bool avaustosite, bool paatostosite) const
{
    if (IsEmpty())
        return found(0);
    return step(QStringLiteral("<"), Numero(), avaustosite, paatostosite, true);
}

std::unique_ptr<cTosite> cTosite::GetNext(bool avaustosite, bool paatostosite) const
{
    if (IsEmpty())
        return found(0);
    return step(QStringLiteral(">"), Numero(), avaustosite, paatostosite, false);
}

std::unique_ptr<cTosite> cTosite::GetLast(bool avaustosite, bool paatostosite) const
{
    return step(QStringLiteral(">"), 0, avaustosite, paatostosite, true);
}

qint16 cTosite::MaxLkmViennitPerTosite()
{
    // Entries of vouchers that no longer exist do not count.
    QSqlQuery q(DBC::instance().AvaaDB());
    if (!q.prepare(QStringLiteral("SELECT MAX(n) FROM (SELECT COUNT(viID) AS n FROM vi "
                                  "WHERE viTyyppi IN ('D', 'K') AND vitoID IN (SELECT toID FROM \"to\") "
                                  "GROUP BY vitoID, viTyyppi)")))
        throw VoucherDatabaseError(q.lastError().text());
    VoucherDatabaseError::exec(q);
    const qint64 most = q.next() ? q.value(0).toLongLong() : 0;
    return qint16(std::min<qint64>(most, std::numeric_limits<qint16>::max()));
}
