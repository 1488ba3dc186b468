#include "vouchers/VoucherSearch.h"

#include "core/DatabaseError.h"
#include "core/Dates.h"
#include "core/Money.h"

#include <QSet>
#include <QSqlQuery>
#include <QVariant>

namespace {

const QString Columns = QStringLiteral("t.toID, t.toNumero, t.toPvm, t.toSelite");

VoucherSearch::Osuma osuma(const QSqlQuery& q)
{
    return { q.value(0).toInt(), q.value(1).toInt(), Dates::fromSql(q.value(2).toString()),
        q.value(3).toString() };
}

// A LIKE pattern that lets through every description that may hold `text`: the engine folds
// only the ASCII letters, so any other character matches any one character here and the
// final word is QString's. The wildcards and the escape character are taken literally.
QString likePattern(const QString& text)
{
    QString pattern = QStringLiteral("%");
    for (const QChar c : text) {
        if (c == u'%' || c == u'_' || c == u'\\') {
            pattern += u'\\';
            pattern += c;
        } else if (c.isLowSurrogate()) {
            continue; // the high half already stood for the whole character
        } else if (c.unicode() >= 0x80) {
            pattern += u'_';
        } else {
            pattern += c;
        }
    }
    return pattern + u'%';
}

} // namespace

QString VoucherSearch::Osuma::rivi() const
{
    return QStringLiteral("%1 - %2 - %3").arg(numero).arg(Dates::format(paiva), selite);
}

QString VoucherSearch::Tulos::yhteenveto() const
{
    if (osumat.empty())
        return QStringLiteral("Ei löytynyt.");
    if (osumat.size() == 1)
        return QStringLiteral("Löytyi 1 tosite.");
    return QStringLiteral("Löytyi %1 tositetta.").arg(osumat.size());
}

VoucherSearch::Tulos VoucherSearch::hae(const QSqlDatabase& db, const QString& arvo, const QString& selite)
{
    Tulos tulos;
    if (arvo.isEmpty() && selite.isEmpty()) {
        tulos.virhe = QStringLiteral("Anna ensin hakuehdot.");
        return tulos;
    }
    std::optional<Money> summa;
    if (!arvo.isEmpty()) {
        summa = Money::parse(arvo);
        if (!summa) {
            tulos.virhe = QStringLiteral("Viennin arvon tulee olla numeerinen.");
            return tulos;
        }
    }
    if (summa)
        arvolla(db, summa->raw(), tulos.osumat);
    if (!selite.isEmpty())
        selitteella(db, selite, tulos.osumat);
    // A voucher is found once, however many of its entries or conditions match.
    QSet<qint32> nahty;
    std::erase_if(tulos.osumat, [&](const Osuma& o) {
        if (nahty.contains(o.toId))
            return true;
        nahty.insert(o.toId);
        return false;
    });
    return tulos;
}

void VoucherSearch::arvolla(const QSqlDatabase& db, qint64 raw, std::vector<Osuma>& osumat)
{
    // One line per entry of the amount, in the order the entries were stored.
    QSqlQuery q = Sql::run(db,
        QStringLiteral("SELECT %1 FROM vi JOIN \"to\" t ON t.toID = vi.vitoID WHERE vi.viArvo = ? AND "
                       "t.toNumero >= 0 AND t.toAutomaatti = 0 ORDER BY vi.viID")
            .arg(Columns),
        { raw });
    while (q.next())
        osumat.push_back(osuma(q));
}

void VoucherSearch::selitteella(const QSqlDatabase& db, const QString& teksti, std::vector<Osuma>& osumat)
{
    QSqlQuery q = Sql::run(db,
        QStringLiteral(
            "SELECT %1 FROM \"to\" t WHERE t.toNumero >= 0 AND t.toAutomaatti = 0 AND t.toSelite LIKE ? "
            "ESCAPE '\\' "
            "ORDER BY t.toID")
            .arg(Columns),
        { likePattern(teksti) });
    while (q.next()) {
        if (q.value(3).toString().contains(teksti, Qt::CaseInsensitive))
            osumat.push_back(osuma(q));
    }
}
