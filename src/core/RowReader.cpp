#include "core/RowReader.h"
#include "core/ErrorText.h"

#include "core/DatabaseError.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <sqlite3.h>

struct RowReader::Sqlite {
    sqlite3* db = nullptr;
    sqlite3_stmt* statement = nullptr;
    ~Sqlite() { sqlite3_finalize(statement); }
    [[noreturn]] void fail() const
    {
        throw DatabaseError(ErrorText::technical(QString::fromUtf8(sqlite3_errmsg(db))));
    }
};

namespace {

// The connection's own SQLite handle, when the driver is Qt's SQLite driver.
sqlite3* sqliteHandle(const QSqlDatabase& db)
{
    const QVariant handle = db.driver() ? db.driver()->handle() : QVariant();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

} // namespace

RowReader::RowReader(const QSqlDatabase& db, const QString& sql, const QVariantList& values)
{
    sqlite3* handle = sqliteHandle(db);
    if (!handle) {
        m_query = std::make_unique<QSqlQuery>(db);
        m_query->setForwardOnly(true);
        if (!m_query->prepare(sql))
            throw DatabaseError(ErrorText::technical(m_query->lastError().text()));
        for (const QVariant& v : values)
            m_query->addBindValue(v);
        if (!m_query->exec())
            throw DatabaseError(ErrorText::technical(m_query->lastError().text()));
        return;
    }
    m_sqlite = std::make_unique<Sqlite>();
    m_sqlite->db = handle;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(handle, text.constData(), int(text.size()), &m_sqlite->statement, nullptr)
        != SQLITE_OK)
        m_sqlite->fail();
    for (int i = 0; i < int(values.size()); ++i) {
        const QVariant& v = values.at(i);
        int rc = SQLITE_OK;
        switch (v.isNull() ? QMetaType::UnknownType : v.typeId()) {
        case QMetaType::UnknownType:
            rc = sqlite3_bind_null(m_sqlite->statement, i + 1);
            break;
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
            rc = sqlite3_bind_int64(m_sqlite->statement, i + 1, v.toLongLong());
            break;
        case QMetaType::Double:
            rc = sqlite3_bind_double(m_sqlite->statement, i + 1, v.toDouble());
            break;
        default: {
            const QByteArray bytes = v.toString().toUtf8();
            rc = sqlite3_bind_text(
                m_sqlite->statement, i + 1, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
            break;
        }
        }
        if (rc != SQLITE_OK)
            m_sqlite->fail();
    }
}

RowReader::~RowReader() = default;

int RowReader::columnCount() const
{
    return m_sqlite ? sqlite3_column_count(m_sqlite->statement) : m_query->record().count();
}

int RowReader::columnIndex(const QString& name) const
{
    if (!m_sqlite)
        return m_query->record().indexOf(name);
    for (int i = 0; i < columnCount(); ++i)
        if (name.compare(QString::fromUtf8(sqlite3_column_name(m_sqlite->statement, i)), Qt::CaseInsensitive)
            == 0)
            return i;
    return -1;
}

bool RowReader::next()
{
    if (!m_sqlite) {
        if (m_query->next())
            return true;
        if (m_query->lastError().isValid())
            throw DatabaseError(ErrorText::technical(m_query->lastError().text()));
        return false;
    }
    const int rc = sqlite3_step(m_sqlite->statement);
    if (rc == SQLITE_ROW)
        return true;
    if (rc != SQLITE_DONE)
        m_sqlite->fail();
    return false;
}

bool RowReader::isNull(int column) const
{
    return m_sqlite ? sqlite3_column_type(m_sqlite->statement, column) == SQLITE_NULL
                    : m_query->value(column).isNull();
}

qint64 RowReader::integer(int column) const
{
    return m_sqlite ? sqlite3_column_int64(m_sqlite->statement, column) : m_query->value(column).toLongLong();
}

double RowReader::real(int column) const
{
    return m_sqlite ? sqlite3_column_double(m_sqlite->statement, column) : m_query->value(column).toDouble();
}

QString RowReader::text(int column) const
{
    if (!m_sqlite)
        return m_query->value(column).toString();
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_sqlite->statement, column));
    return QString::fromUtf8(bytes, sqlite3_column_bytes(m_sqlite->statement, column));
}

QByteArrayView RowReader::bytes(int column) const
{
    if (!m_sqlite) {
        m_buffer = m_query->value(column).toString().toUtf8();
        return m_buffer;
    }
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(m_sqlite->statement, column));
    return QByteArrayView(data, sqlite3_column_bytes(m_sqlite->statement, column));
}
