#include "accounts/cTili.h"

#include "core/RecordText.h"

#include <QVariant>

cTili::cTili(const QSqlDatabase& db, QObject* parent)
    : QObject(parent)
    , Record(db)
{
    // The undo copy is taken at creation and on every read, not on save: Peru after a save
    // returns to what was read.
    m_undoAtSave = false;
    m_resetOnDelete = false;
}

cTili::~cTili() { saveOnRelease(); }

QString cTili::releaseFailure() const { return QStringLiteral("Tilin tallentaminen ei onnistunut."); }

void cTili::setNimi(const QString& value)
{
    assign(m_v.nimi, RecordText::cut(value, RecordText::NameLength));
    if (id() != 0)
        emit NameChanged(Nimi(), Numero(), id());
}

void cTili::setKuvaus(const QString& value)
{
    assign(m_v.kuvaus, RecordText::cut(value, RecordText::DescriptionLength));
}

void cTili::setNumero(qint32 value)
{
    assign(m_v.numero, value);
    if (id() != 0)
        emit NameChanged(Nimi(), Numero(), id());
}

cAlkusaldot cTili::Alkusaldot() const
{
    cAlkusaldot saldot;
    if (IsEmpty() || key() == 0)
        return saldot;
    // Only entries flagged as opening entries count, on any date and in any voucher; the side
    // comes from the type code and other codes add nothing.
    const auto sums = [this](const QString& table, const QString& prefix) {
        QSqlQuery q = Sql::run(database(),
            QStringLiteral("SELECT COALESCE(SUM(CASE WHEN %2Tyyppi = 'D' THEN %2Arvo END), 0), "
                           "COALESCE(SUM(CASE WHEN %2Tyyppi = 'K' THEN %2Arvo END), 0) "
                           "FROM %1 WHERE %2tlID = ? AND %2Avausvienti <> 0")
                .arg(table, prefix),
            { key() });
        q.next();
        return std::pair { Money::fromRaw(q.value(0).toLongLong()), Money::fromRaw(q.value(1).toLongLong()) };
    };
    const auto [debet, kredit] = sums(QStringLiteral("vi"), QStringLiteral("vi"));
    saldot.setAlkusaldoDebet(debet);
    saldot.setAlkusaldoKredit(kredit);
    const auto [edDebet, edKredit] = sums(QStringLiteral("viE"), QStringLiteral("viE"));
    saldot.setEdAlkusaldoDebet(edDebet);
    saldot.setEdAlkusaldoKredit(edKredit);
    return saldot;
}

std::optional<TiliValues> cTili::selectRow(qint32 id) const
{
    QSqlQuery q = Sql::run(database(),
        QStringLiteral(
            "SELECT tlNimi, tlKuvaus, tlNumero, tlAlkusaldo, tlLoppusaldo, tlPrint FROM tl WHERE tlID = ?"),
        { id });
    if (!q.next())
        return std::nullopt;
    TiliValues v;
    v.nimi = q.value(0).toString();
    v.kuvaus = q.value(1).toString();
    v.numero = q.value(2).toInt();
    v.alkusaldo = Money::fromRaw(q.value(3).toLongLong());
    v.loppusaldo = Money::fromRaw(q.value(4).toLongLong());
    v.print = q.value(5).toLongLong() != 0;
    return v;
}

void cTili::bindValues(QSqlQuery& q) const
{
    // The program never stores an empty name or description.
    q.addBindValue(RecordText::blankIfEmpty(m_v.nimi));
    q.addBindValue(RecordText::blankIfEmpty(m_v.kuvaus));
    q.addBindValue(m_v.numero);
    q.addBindValue(m_v.alkusaldo.raw());
    q.addBindValue(m_v.loppusaldo.raw());
    q.addBindValue(m_v.print ? 1 : 0);
}

qint32 cTili::insertRow()
{
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral("INSERT INTO tl (tlNimi, tlKuvaus, tlNumero, tlAlkusaldo, tlLoppusaldo, tlPrint) "
                       "VALUES (?, ?, ?, ?, ?, ?)"));
    bindValues(q);
    Sql::exec(q);
    return q.lastInsertId().toInt();
}

void cTili::updateRow()
{
    QSqlQuery q = Sql::prepare(database(),
        QStringLiteral(
            "UPDATE tl SET tlNimi = ?, tlKuvaus = ?, tlNumero = ?, tlAlkusaldo = ?, tlLoppusaldo = ?, "
            "tlPrint = ? WHERE tlID = ?"));
    bindValues(q);
    q.addBindValue(key());
    Sql::exec(q);
    if (q.numRowsAffected() == 0)
        throw DatabaseError(QStringLiteral("Tiliä ei löydy tietokannasta."));
}

void cTili::deleteRow() { Sql::run(database(), QStringLiteral("DELETE FROM tl WHERE tlID = ?"), { key() }); }

std::unique_ptr<cTili> cTili::navigate(Step step) const
{
    auto result = std::make_unique<cTili>(database());
    const bool relative = step == Step::Previous || step == Step::Next;
    // A step from an object that stands for no account leads nowhere.
    if (relative && IsEmpty()) {
        result->setIsEmpty(true);
        return result;
    }
    QString sql;
    switch (step) {
    case Step::First:
        sql = QStringLiteral(
            "SELECT tlID FROM tl WHERE tlNumero > 0 ORDER BY tlNumero ASC, tlID ASC LIMIT 1");
        break;
    case Step::Previous:
        // The lower bound is only the current number, so accounts numbered 0 and below are reached.
        sql = QStringLiteral(
            "SELECT tlID FROM tl WHERE tlNumero < ? ORDER BY tlNumero DESC, tlID DESC LIMIT 1");
        break;
    case Step::Next:
        sql = QStringLiteral(
            "SELECT tlID FROM tl WHERE tlNumero > ? ORDER BY tlNumero ASC, tlID ASC LIMIT 1");
        break;
    case Step::Last:
        sql = QStringLiteral(
            "SELECT tlID FROM tl WHERE tlNumero > 0 ORDER BY tlNumero DESC, tlID DESC LIMIT 1");
        break;
    }
    const QVariant found
        = Sql::scalar(database(), sql, relative ? QVariantList { Numero() } : QVariantList());
    if (found.isValid())
        result->Read(found.toInt());
    else
        result->setIsEmpty(true);
    return result;
}

std::unique_ptr<cTili> cTili::GetFirst() const { return navigate(Step::First); }
std::unique_ptr<cTili> cTili::GetPrevious() const { return navigate(Step::Previous); }
std::unique_ptr<cTili> cTili::GetNext() const { return navigate(Step::Next); }
std::unique_ptr<cTili> cTili::GetLast() const { return navigate(Step::Last); }
