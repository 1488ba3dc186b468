#include "statements/cMalliRivi.h"

#include "core/RecordText.h"

#include <QHash>
#include <QSet>
#include <QVariant>
#include <functional>

namespace {

const QString Columns = QStringLiteral("mrmaID, mrSaldoPuoli, mrTilit, mrBelongsToGroup, mrGroupOrder, "
                                       "mrTeksti, mrKaava, mrIsLiikevaihto, mrIsEquation, mrIsVoitto, "
                                       "mrtlID, mrviTyyppi");

} // namespace

cMalliRivi::cMalliRivi(const QSqlDatabase& db, QObject* parent)
    : QObject(parent)
    , Record(db)
{
}

cMalliRivi::~cMalliRivi() { saveOnRelease(); }

QString cMalliRivi::releaseFailure() const
{
    return QStringLiteral("Mallin rivin tallentaminen ei onnistunut.");
}

void cMalliRivi::setTeksti(const QString& teksti)
{
    assign(m_v.teksti, RecordText::cut(teksti, RecordText::NameLength));
    emit NameChanged(m_v.teksti, id());
}

void cMalliRivi::setTilit(const QString& tilit)
{
    assign(m_v.tilit, RecordText::cut(tilit, RecordText::DescriptionLength));
}

void cMalliRivi::setKaava(const QString& kaava)
{
    assign(m_v.kaava, RecordText::cut(kaava, RecordText::DescriptionLength));
}

bool cMalliRivi::HasSubGroups() const
{
    // A row not yet stored has no rows below it; asking with key 0 would find the main groups.
    if (IsEmpty() || id() == 0)
        return false;
    return Sql::scalar(database(),
        QStringLiteral("SELECT 1 FROM mr WHERE mrmaID = ? AND mrBelongsToGroup = ? LIMIT 1"),
        { m_v.malliId, id() })
        .isValid();
}

void cMalliRivi::SetDefaultGroupOrder()
{
    const QVariant max = Sql::scalar(database(),
        QStringLiteral("SELECT MAX(mrGroupOrder) FROM mr WHERE mrmaID = ? AND mrBelongsToGroup = ?"),
        { m_v.malliId, m_v.belongsToGroup });
    setGroupOrder((max.isNull() ? 0 : max.toInt()) + 1);
}

std::vector<std::unique_ptr<cMalliRivi>> cMalliRivi::SubRows() const
{
    std::vector<std::unique_ptr<cMalliRivi>> rows;
    if (IsEmpty() || id() == 0)
        return rows;
    // Only rows of the same template: a stray row of another template that names this row as
    // its group is not part of this tree.
    QSqlQuery q = Sql::run(database(),
        QStringLiteral(
            "SELECT mrID FROM mr WHERE mrmaID = ? AND mrBelongsToGroup = ? ORDER BY mrGroupOrder, mrID"),
        { m_v.malliId, id() });
    while (q.next()) {
        auto rivi = std::make_unique<cMalliRivi>(database());
        if (rivi->Load(q.value(0).toInt()))
            rows.push_back(std::move(rivi));
    }
    return rows;
}

void cMalliRivi::Delete()
{
    if (IsEmpty())
        return;
    Transaction t(database());
    if (id() != 0) {
        // The whole template's links are read at once; a row met twice (a cycle in the links)
        // is deleted once, so a damaged tree cannot loop.
        QHash<qint32, QList<qint32>> children;
        QSqlQuery q = Sql::run(database(),
            QStringLiteral("SELECT mrID, mrBelongsToGroup FROM mr WHERE mrmaID = "
                           "(SELECT mrmaID FROM mr WHERE mrID = ?) ORDER BY mrGroupOrder, mrID"),
            { id() });
        while (q.next())
            children[q.value(1).toInt()].append(q.value(0).toInt());
        QSet<qint32> seen { id() };
        QSqlQuery del = Sql::prepare(database(), QStringLiteral("DELETE FROM mr WHERE mrID = ?"));
        const std::function<void(qint32)> deleteBelow = [&](qint32 parent) {
            for (qint32 child : children.value(parent)) {
                if (seen.contains(child))
                    continue;
                seen.insert(child);
                deleteBelow(child);
                del.addBindValue(child);
                Sql::exec(del);
            }
        };
        deleteBelow(id());
    }
    Record::Delete();
    t.commitOrThrow();
}

std::optional<MalliRiviValues> cMalliRivi::selectRow(qint32 id) const
{
    QSqlQuery q
        = Sql::run(database(), QStringLiteral("SELECT %1 FROM mr WHERE mrID = ?").arg(Columns), { id });
    if (!q.next())
        return std::nullopt;
    MalliRiviValues v;
    v.malliId = q.value(0).toInt();
    v.saldoPuoli = q.value(1).toString();
    v.tilit = q.value(2).toString();
    v.belongsToGroup = q.value(3).toInt();
    v.groupOrder = q.value(4).toInt();
    v.teksti = q.value(5).toString();
    v.kaava = q.value(6).toString();
    v.isLiikevaihto = q.value(7).toLongLong() != 0;
    v.isEquation = q.value(8).toLongLong() != 0;
    v.isVoitto = q.value(9).toLongLong() != 0;
    v.tlId = q.value(10).toInt();
    v.viTyyppi = q.value(11).toString();
    return v;
}

void cMalliRivi::bindValues(QSqlQuery& q) const
{
    q.addBindValue(m_v.malliId);
    q.addBindValue(m_v.saldoPuoli);
    q.addBindValue(m_v.tilit);
    q.addBindValue(m_v.belongsToGroup);
    q.addBindValue(m_v.groupOrder);
    // A caption is never stored empty.
    q.addBindValue(RecordText::blankIfEmpty(m_v.teksti));
    q.addBindValue(m_v.kaava);
    q.addBindValue(m_v.isLiikevaihto ? 1 : 0);
    q.addBindValue(m_v.isEquation ? 1 : 0);
    q.addBindValue(m_v.isVoitto ? 1 : 0);
    q.addBindValue(m_v.tlId);
    q.addBindValue(m_v.viTyyppi);
}

qint32 cMalliRivi::insertRow()
{
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral("INSERT INTO mr (%1) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)").arg(Columns));
    bindValues(q);
    Sql::exec(q);
    return q.lastInsertId().toInt();
}

void cMalliRivi::updateRow()
{
    QString assignments = Columns;
    assignments.replace(QStringLiteral(","), QStringLiteral(" = ?,"));
    QSqlQuery q
        = Sql::prepare(database(), QStringLiteral("UPDATE mr SET %1 = ? WHERE mrID = ?").arg(assignments));
    bindValues(q);
    q.addBindValue(id());
    Sql::exec(q);
    if (q.numRowsAffected() == 0)
        throw DatabaseError(QStringLiteral("Mallin riviä ei löydy tietokannasta."));
}

void cMalliRivi::deleteRow()
{
    Sql::run(database(), QStringLiteral("DELETE FROM mr WHERE mrID = ?"), { id() });
}
