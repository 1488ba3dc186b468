#include "vouchers/cTositePohja.h"

#include "core/RecordText.h"

#include <QVariant>

cTositePohja::~cTositePohja() { saveOnRelease(); }

QString cTositePohja::releaseFailure() const
{
    return QStringLiteral("Tositepohjan tallentaminen ei onnistunut.");
}

void cTositePohja::setNimi(const QString& nimi)
{
    assign(m_v.nimi, RecordText::cut(nimi, RecordText::NameLength));
}

void cTositePohja::setSelite(const QString& selite)
{
    assign(m_v.selite, RecordText::cut(selite, RecordText::DescriptionLength));
}

namespace {

QVariant pikavalintaValue(int numero)
{
    return numero > 0 ? QVariant(numero) : QVariant(QMetaType(QMetaType::Int));
}

} // namespace

std::optional<TositePohjaValues> cTositePohja::selectRow(qint32 id) const
{
    QSqlQuery q = Sql::run(
        database(), QStringLiteral("SELECT Nimi, Selite, Pikavalinta FROM tpPohjat WHERE tpID = ?"), { id });
    if (!q.next())
        return std::nullopt;
    TositePohjaValues v;
    v.nimi = q.value(0).toString();
    v.selite = q.value(1).toString();
    const int n = q.value(2).toInt();
    v.pikavalinta = n >= 1 && n <= 4 ? n : 0;
    return v;
}

qint32 cTositePohja::insertRow()
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("INSERT INTO tpPohjat (Nimi, Selite, Pikavalinta) VALUES (?, ?, ?)"),
        { RecordText::blankIfEmpty(m_v.nimi), RecordText::blankIfEmpty(m_v.selite),
            pikavalintaValue(m_v.pikavalinta) });
    return q.lastInsertId().toInt();
}

void cTositePohja::updateRow()
{
    Sql::run(database(),
        QStringLiteral("UPDATE tpPohjat SET Nimi = ?, Selite = ?, Pikavalinta = ? WHERE tpID = ?"),
        { RecordText::blankIfEmpty(m_v.nimi), RecordText::blankIfEmpty(m_v.selite),
            pikavalintaValue(m_v.pikavalinta), key() });
}

void cTositePohja::deleteRow()
{
    Sql::run(database(), QStringLiteral("DELETE FROM tpPohjat WHERE tpID = ?"), { key() });
    Sql::run(database(), QStringLiteral("DELETE FROM vipPohjat WHERE viptpID = ?"), { key() });
}

void cTositePohja::Delete()
{
    if (IsEmpty())
        return;
    Transaction t(database());
    Record::Delete();
    t.commitOrThrow();
}

cTositePohja::Viennit cTositePohja::GetViennit(const QString& tyyppi) const
{
    Viennit viennit;
    if (IsEmpty() || key() == 0)
        return viennit;
    QSqlQuery q = Sql::run(database(),
        QStringLiteral("SELECT vipID FROM vipPohjat WHERE viptpID = ? AND vipTyyppi = ? ORDER BY vipID"),
        { key(), tyyppi });
    while (q.next()) {
        auto v = std::make_unique<cVientiPohja>(database());
        v->Load(q.value(0).toInt());
        viennit.push_back(std::move(v));
    }
    return viennit;
}
