#include "vouchers/EntryRecord.h"

#include "core/RecordText.h"

#include <QVariant>

EntryRecord::~EntryRecord() { saveOnRelease(); }

void EntryRecord::setSelite(const QString& selite)
{
    assign(m_v.selite, RecordText::cut(selite, RecordText::DescriptionLength));
}

QString EntryRecord::releaseFailure() const { return QStringLiteral("Viennin tallentaminen ei onnistunut."); }

QString EntryRecord::selectSql(const VoucherLayout& l)
{
    return QStringLiteral("SELECT %1, %2, %3, %4, %5, %6, %7, %8, %9 FROM %10")
        .arg(l.viID, l.vitlID, l.vitoID, l.viTyyppi, l.viArvo, l.viSelite, l.viAvausvienti, l.viPaatosvienti,
            l.viAutomaatti)
        .arg(l.vi);
}

namespace {

VientiValues valuesOf(const QSqlQuery& q)
{
    VientiValues v;
    v.tlId = q.value(1).toInt();
    v.toId = q.value(2).toInt();
    v.tyyppi = q.value(3).toString();
    v.arvo = Money::fromRaw(q.value(4).toLongLong());
    v.selite = q.value(5).toString();
    v.avaus = q.value(6).toInt() != 0;
    v.paatos = q.value(7).toInt() != 0;
    v.automaatti = q.value(8).toInt() != 0;
    return v;
}

} // namespace

void EntryRecord::loadFromRow(const QSqlQuery& q) { setLoaded(q.value(0).toInt(), valuesOf(q)); }

std::optional<VientiValues> EntryRecord::selectRow(qint32 id) const
{
    QSqlQuery q = Sql::run(
        database(), selectSql(m_layout) + QStringLiteral(" WHERE %1 = ?").arg(m_layout.viID), { id });
    if (!q.next())
        return std::nullopt;
    return valuesOf(q);
}

void EntryRecord::bindValues(QSqlQuery& q) const
{
    q.addBindValue(m_v.tlId);
    q.addBindValue(m_v.toId);
    q.addBindValue(m_v.tyyppi);
    q.addBindValue(m_v.arvo.raw());
    q.addBindValue(RecordText::blankIfEmpty(m_v.selite));
    q.addBindValue(m_v.avaus ? 1 : 0);
    q.addBindValue(m_v.paatos ? 1 : 0);
    q.addBindValue(m_v.automaatti ? 1 : 0);
}

qint32 EntryRecord::insertRow()
{
    const VoucherLayout& l = m_layout;
    const QString columns = QStringList { l.vitlID, l.vitoID, l.viTyyppi, l.viArvo, l.viSelite,
        l.viAvausvienti, l.viPaatosvienti, l.viAutomaatti }
                                .join(QStringLiteral(", "));
    if (!l.programKeys) {
        QSqlQuery q = Sql::prepare(database(),
            QStringLiteral("INSERT INTO %1 (%2) VALUES (?, ?, ?, ?, ?, ?, ?, ?)").arg(l.vi, columns));
        bindValues(q);
        Sql::exec(q);
        return q.lastInsertId().toInt();
    }
    const QVariant max = Sql::scalar(database(), QStringLiteral("SELECT MAX(%1) FROM %2").arg(l.viID, l.vi));
    const qint32 newKey = max.isNull() ? 1 : max.toInt() + 1;
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral("INSERT INTO %1 (%2, %3) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)")
            .arg(l.vi, columns, l.viID));
    bindValues(q);
    q.addBindValue(newKey);
    Sql::exec(q);
    return newKey;
}

void EntryRecord::updateRow()
{
    const VoucherLayout& l = m_layout;
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral("UPDATE %1 SET %2 = ?, %3 = ?, %4 = ?, %5 = ?, %6 = ?, %7 = ?, %8 = ?, %9 = ?")
                .arg(l.vi, l.vitlID, l.vitoID, l.viTyyppi, l.viArvo, l.viSelite, l.viAvausvienti,
                    l.viPaatosvienti, l.viAutomaatti)
            + QStringLiteral(" WHERE %1 = ?").arg(l.viID));
    bindValues(q);
    q.addBindValue(key());
    Sql::exec(q);
}

void EntryRecord::deleteRow()
{
    Sql::run(
        database(), QStringLiteral("DELETE FROM %1 WHERE %2 = ?").arg(m_layout.vi, m_layout.viID), { key() });
}
