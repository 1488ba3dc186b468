#include "statements/cMalli.h"

#include "core/RecordText.h"

#include <QVariant>

cMalli::cMalli(const QSqlDatabase& db, QObject* parent)
    : QObject(parent)
    , Record(db)
{
}

cMalli::~cMalli() { saveOnRelease(); }

QString cMalli::releaseFailure() const { return QStringLiteral("Mallin tallentaminen ei onnistunut."); }

void cMalli::setNimi(const QString& nimi)
{
    assign(m_v.nimi, RecordText::storedName(nimi));
    emit NameChanged(m_v.tyyppi, m_v.nimi, id());
}

bool cMalli::Delete()
{
    if (IsEmpty() || id() == 0 || m_v.suojattu)
        return false;
    Transaction t(database());
    Record::Delete();
    t.commitOrThrow();
    return true;
}

std::unique_ptr<cMalliRivi> cMalli::AddModelRow() const
{
    auto rivi = std::make_unique<cMalliRivi>(database());
    rivi->setMalliId(id());
    return rivi;
}

std::vector<std::unique_ptr<cMalliRivi>> cMalli::MainGroups() const
{
    std::vector<std::unique_ptr<cMalliRivi>> rows;
    if (IsEmpty() || id() == 0)
        return rows;
    QSqlQuery q = Sql::run(database(),
        QStringLiteral(
            "SELECT mrID FROM mr WHERE mrmaID = ? AND mrBelongsToGroup = 0 ORDER BY mrGroupOrder, mrID"),
        { id() });
    while (q.next()) {
        auto rivi = std::make_unique<cMalliRivi>(database());
        if (rivi->Load(q.value(0).toInt()))
            rows.push_back(std::move(rivi));
    }
    return rows;
}

std::optional<MalliValues> cMalli::selectRow(qint32 id) const
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("SELECT maNimi, maTyyppi, maSuojattu, maTulosMaID FROM ma WHERE maID = ?"), { id });
    if (!q.next())
        return std::nullopt;
    MalliValues v;
    v.nimi = q.value(0).toString();
    v.tyyppi = qint16(q.value(1).toInt());
    v.suojattu = q.value(2).toLongLong() != 0;
    v.tulosMaId = q.value(3).toInt();
    return v;
}

void cMalli::bindValues(QSqlQuery& q) const
{
    q.addBindValue(RecordText::storedName(m_v.nimi));
    q.addBindValue(m_v.tyyppi);
    q.addBindValue(m_v.suojattu ? 1 : 0);
    q.addBindValue(m_v.tulosMaId);
}

qint32 cMalli::insertRow()
{
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral("INSERT INTO ma (maNimi, maTyyppi, maSuojattu, maTulosMaID) VALUES (?, ?, ?, ?)"));
    bindValues(q);
    Sql::exec(q);
    return q.lastInsertId().toInt();
}

void cMalli::updateRow()
{
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral(
            "UPDATE ma SET maNimi = ?, maTyyppi = ?, maSuojattu = ?, maTulosMaID = ? WHERE maID = ?"));
    bindValues(q);
    q.addBindValue(id());
    Sql::exec(q);
    if (q.numRowsAffected() == 0)
        throw DatabaseError(QStringLiteral("Mallia ei löydy tietokannasta."));
}

void cMalli::deleteRow()
{
    // The template first, then its rows, as the template list shows it gone at once.
    Sql::run(database(), QStringLiteral("DELETE FROM ma WHERE maID = ?"), { id() });
    Sql::run(database(), QStringLiteral("DELETE FROM mr WHERE mrmaID = ?"), { id() });
}
