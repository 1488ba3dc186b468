#include "core/PageRecovery.h"

#include "core/ScopedConnection.h"
#include "core/Transaction.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <cstring>
#include <optional>
#include <sqlite3.h>

namespace PageRecovery {

namespace {

// One CREATE statement of a table, an index or a view that names the object its schema row
// names. A trigger, a virtual table or text with more after the statement is not run.
bool recognised(const QString& type, const QString& name, const QString& sql)
{
    static const QRegularExpression create(
        QStringLiteral("^\\s*CREATE\\s+(TABLE|UNIQUE\\s+INDEX|INDEX|VIEW)\\s+(?:IF\\s+NOT\\s+EXISTS\\s+)?"
                       "(?:\"((?:[^\"]|\"\")*)\"|\\[([^\\]]*)\\]|`([^`]*)`|(\\w+))"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = create.match(sql);
    if (!m.hasMatch())
        return false;
    const QString kind = m.captured(1).toUpper();
    const bool kindMatches = type == u"table" ? kind == u"TABLE"
        : type == u"index"                    ? kind.endsWith(u"INDEX")
                                              : type == u"view" && kind == u"VIEW";
    QString named = m.captured(2).replace(QStringLiteral("\"\""), QStringLiteral("\""));
    for (int i = 3; i <= 5 && named.isEmpty(); ++i)
        named = m.captured(i);
    if (!kindMatches || named.compare(name, Qt::CaseInsensitive) != 0)
        return false;
    const QByteArray text = sql.toUtf8();
    for (qsizetype at = text.indexOf(';'); at >= 0; at = text.indexOf(';', at + 1))
        if (sqlite3_complete(text.left(at + 1).constData()))
            return text.mid(at + 1).trimmed().isEmpty();
    return true;
}

constexpr quint8 InteriorTable = 0x05;
constexpr quint8 LeafTable = 0x0D;

// The file's pages, every access checked against the file's bounds.
class Pages {
public:
    explicit Pages(const QByteArray& bytes)
        : m_bytes(bytes)
    {
        if (bytes.size() < 100)
            return;
        const auto* d = reinterpret_cast<const quint8*>(bytes.constData());
        int size = (d[16] << 8) | d[17];
        if (size == 1)
            size = 65536;
        // Three bytes of every file header have fixed values: when they are wrong, the header is
        // garbled and its page size and reserved space cannot be trusted. Vorkam's books use the
        // engine's defaults.
        const bool headerWhole = d[21] == 64 && d[22] == 32 && d[23] == 32;
        if (!headerWhole || size < 512 || size > 65536 || (size & (size - 1)) != 0)
            size = 4096;
        m_pageSize = size;
        const int reserved = headerWhole ? d[20] : 0;
        m_usable = size - (reserved < size - 480 ? reserved : 0);
        m_count = int(bytes.size() / size);
    }

    int pageSize() const { return m_pageSize; }
    int usable() const { return m_usable; }
    int count() const { return m_count; }
    bool valid(quint32 page) const { return page >= 1 && page <= quint32(m_count); }
    // The bytes of `page`, or nullptr.
    const quint8* page(quint32 number) const
    {
        if (!valid(number))
            return nullptr;
        return reinterpret_cast<const quint8*>(m_bytes.constData()) + qsizetype(number - 1) * m_pageSize;
    }
    // Where the b-tree header of `page` starts: page 1 carries the file header first.
    static int headerOffset(quint32 number) { return number == 1 ? 100 : 0; }

    quint32 firstFreelistTrunk() const
    {
        const auto* d = reinterpret_cast<const quint8*>(m_bytes.constData());
        return m_bytes.size() >= 40 && d[21] == 64 ? u32(32) : 0;
    }

    quint32 u32(qsizetype at) const
    {
        const auto* d = reinterpret_cast<const quint8*>(m_bytes.constData());
        return (quint32(d[at]) << 24) | (quint32(d[at + 1]) << 16) | (quint32(d[at + 2]) << 8) | d[at + 3];
    }

private:
    const QByteArray& m_bytes;
    int m_pageSize = 0;
    int m_usable = 0;
    int m_count = 0;
};

quint32 be32(const quint8* p)
{
    return (quint32(p[0]) << 24) | (quint32(p[1]) << 16) | (quint32(p[2]) << 8) | p[3];
}
int be16(const quint8* p) { return (p[0] << 8) | p[1]; }

// A varint at p[at], not reading at or past `end`.
std::optional<qint64> varint(const quint8* p, int& at, int end)
{
    quint64 v = 0;
    for (int i = 0; i < 9; ++i) {
        if (at >= end)
            return std::nullopt;
        const quint8 b = p[at++];
        if (i == 8) {
            v = (v << 8) | b;
            return qint64(v);
        }
        v = (v << 7) | (b & 0x7F);
        if (!(b & 0x80))
            return qint64(v);
    }
    return std::nullopt;
}

// The values of a record; nullopt when its header or content does not fit.
std::optional<QVariantList> decodeRecord(const QByteArray& payload)
{
    const auto* p = reinterpret_cast<const quint8*>(payload.constData());
    const int size = int(payload.size());
    int at = 0;
    const std::optional<qint64> headerSize = varint(p, at, size);
    if (!headerSize || *headerSize < at || *headerSize > size)
        return std::nullopt;
    std::vector<qint64> types;
    while (at < *headerSize) {
        const std::optional<qint64> t = varint(p, at, int(*headerSize));
        if (!t || *t < 0 || *t == 10 || *t == 11)
            return std::nullopt;
        types.push_back(*t);
    }
    int data = int(*headerSize);
    QVariantList values;
    for (qint64 t : types) {
        qint64 length = 0;
        if (t >= 1 && t <= 4)
            length = t;
        else if (t == 5)
            length = 6;
        else if (t == 6 || t == 7)
            length = 8;
        else if (t >= 12)
            length = (t - 12 - (t & 1)) / 2;
        if (length > size - data)
            return std::nullopt;
        const quint8* v = p + data;
        if (t == 0) {
            values.append(QVariant());
        } else if (t == 8 || t == 9) {
            values.append(qint64(t - 8));
        } else if (t <= 6) {
            qint64 n = (v[0] & 0x80) ? -1 : 0;
            for (qint64 i = 0; i < length; ++i)
                n = qint64((quint64(n) << 8) | v[i]);
            values.append(n);
        } else if (t == 7) {
            quint64 bits = 0;
            for (int i = 0; i < 8; ++i)
                bits = (bits << 8) | v[i];
            double d;
            static_assert(sizeof d == sizeof bits);
            std::memcpy(&d, &bits, sizeof d);
            values.append(d);
        } else if (t & 1) {
            values.append(QString::fromUtf8(reinterpret_cast<const char*>(v), int(length)));
        } else {
            values.append(QByteArray(reinterpret_cast<const char*>(v), int(length)));
        }
        data += int(length);
    }
    return values;
}

class Reader {
public:
    explicit Reader(const QByteArray& bytes)
        : m_pages(bytes)
    {
    }

    Result run()
    {
        Result result;
        result.pageSize = m_pages.pageSize();
        result.pagesInFile = m_pages.count();
        if (m_pages.count() == 0)
            return result;
        markFreelist();
        readSchema(result);
        for (Table& table : result.tables) {
            std::vector<Row> rows;
            walk(table.rootPage, rows, table.brokenLinks);
            QSet<qint64> seen;
            for (Row& row : rows) {
                // A row with more values than the table has columns is not this table's.
                if (row.values.size() > table.columnCount || seen.contains(row.rowid))
                    continue;
                seen.insert(row.rowid);
                table.rows.push_back(std::move(row));
            }
        }
        placeOrphans(result);
        result.pagesRead = int(m_claimed.size());
        return result;
    }

private:
    void markFreelist()
    {
        // Free pages hold deleted rows: they must never come back.
        quint32 trunk = m_pages.firstFreelistTrunk();
        QSet<quint32> trunks;
        while (m_pages.valid(trunk) && !trunks.contains(trunk)) {
            trunks.insert(trunk);
            m_free.insert(trunk);
            const quint8* p = m_pages.page(trunk);
            const quint32 leaves = be32(p + 4);
            for (quint32 i = 0; i < leaves && 8 + 4 * i + 4 <= quint32(m_pages.usable()); ++i)
                m_free.insert(be32(p + 8 + 4 * i));
            trunk = be32(p);
        }
    }

    // The payload of the cell at `at` of a leaf page, with its overflow chain.
    std::optional<Row> leafCell(const quint8* page, int at, int end)
    {
        const std::optional<qint64> payloadSize = varint(page, at, end);
        const std::optional<qint64> rowid = varint(page, at, end);
        if (!payloadSize || !rowid || *payloadSize < 0 || *payloadSize > 1'000'000'000)
            return std::nullopt;
        const qint64 u = m_pages.usable();
        const qint64 x = u - 35;
        qint64 local = *payloadSize;
        if (*payloadSize > x) {
            const qint64 m = ((u - 12) * 32 / 255) - 23;
            const qint64 k = m + ((*payloadSize - m) % (u - 4));
            local = k <= x ? k : m;
        }
        if (at + local > end)
            return std::nullopt;
        QByteArray payload(reinterpret_cast<const char*>(page + at), int(local));
        if (local < *payloadSize) {
            if (at + local + 4 > end)
                return std::nullopt;
            quint32 next = be32(page + at + local);
            while (payload.size() < *payloadSize) {
                if (!m_pages.valid(next) || m_claimed.contains(next) || m_free.contains(next))
                    return std::nullopt;
                m_claimed.insert(next);
                const quint8* o = m_pages.page(next);
                const qint64 take = std::min<qint64>(u - 4, *payloadSize - payload.size());
                payload.append(reinterpret_cast<const char*>(o + 4), int(take));
                next = be32(o);
            }
        }
        std::optional<QVariantList> values = decodeRecord(payload);
        if (!values)
            return std::nullopt;
        return Row { *rowid, std::move(*values) };
    }

    // The cells of a table leaf page that can be read.
    std::vector<Row> leafRows(quint32 number)
    {
        std::vector<Row> rows;
        const quint8* page = m_pages.page(number);
        const int h = Pages::headerOffset(number);
        const int cells = be16(page + h + 3);
        const int end = m_pages.usable();
        for (int i = 0; i < cells; ++i) {
            const int pointerAt = h + 8 + 2 * i;
            if (pointerAt + 2 > end)
                break;
            const int cell = be16(page + pointerAt);
            if (cell < h + 8 || cell >= end)
                continue;
            if (std::optional<Row> row = leafCell(page, cell, end))
                rows.push_back(std::move(*row));
        }
        return rows;
    }

    quint8 pageType(quint32 number) const
    {
        const quint8* page = m_pages.page(number);
        return page ? page[Pages::headerOffset(number)] : 0;
    }

    // Every row reachable from `root`; children that cannot be read count as broken links.
    void walk(quint32 root, std::vector<Row>& rows, int& broken)
    {
        std::vector<quint32> stack { root };
        while (!stack.empty()) {
            const quint32 number = stack.back();
            stack.pop_back();
            if (!m_pages.valid(number) || m_claimed.contains(number) || m_free.contains(number)) {
                ++broken;
                continue;
            }
            const quint8 type = pageType(number);
            if (type == LeafTable) {
                m_claimed.insert(number);
                for (Row& row : leafRows(number))
                    rows.push_back(std::move(row));
            } else if (type == InteriorTable) {
                m_claimed.insert(number);
                const quint8* page = m_pages.page(number);
                const int h = Pages::headerOffset(number);
                const int cells = be16(page + h + 3);
                const int end = m_pages.usable();
                // Right-most child last on the stack's far side: children are read in key order.
                stack.push_back(be32(page + h + 8));
                for (int i = cells - 1; i >= 0; --i) {
                    const int pointerAt = h + 12 + 2 * i;
                    if (pointerAt + 2 > end)
                        continue;
                    const int cell = be16(page + pointerAt);
                    if (cell < h + 12 || cell + 4 > end) {
                        ++broken;
                        continue;
                    }
                    stack.push_back(be32(page + cell));
                }
            } else {
                ++broken;
            }
        }
    }

    void readSchema(Result& result)
    {
        std::vector<Row> rows;
        int broken = 0;
        walk(1, rows, broken);
        result.schemaRead = !rows.empty();
        for (const Row& row : rows) {
            if (row.values.size() < 5)
                continue;
            const QString type = row.values.at(0).toString();
            const QString name = row.values.at(1).toString();
            const QString sql = row.values.at(4).toString();
            if (sql.isEmpty())
                continue;
            if (name.startsWith(QLatin1String("sqlite_")) && type != u"table")
                continue;
            if (!recognised(type, name, sql)) {
                result.skipped.append(type + u' ' + name);
                continue;
            }
            if (type == u"table") {
                const quint32 root = quint32(row.values.at(3).toLongLong());
                const int columns = columnCount(sql);
                if (columns > 0)
                    result.tables.push_back(Table { name, sql, root, columns, {}, 0 });
            } else {
                result.otherSql.append(sql);
            }
        }
    }

    // The number of columns a CREATE TABLE statement makes, asked from the engine itself.
    static int columnCount(const QString& sql)
    {
        ScopedConnection memory(QStringLiteral(":memory:"));
        if (!memory.isOpen())
            return 0;
        QSqlQuery q(memory.db());
        QString create = sql;
        // sqlite_sequence cannot be made by hand; its shape is known.
        if (create.contains(QLatin1String("sqlite_sequence")))
            create = QStringLiteral("CREATE TABLE s(name, seq)");
        int columns = 0;
        if (q.exec(create) && q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"))
            && q.next()) {
            QSqlQuery info(memory.db());
            if (info.exec(QStringLiteral("PRAGMA table_info(\"%1\")").arg(q.value(0).toString())))
                while (info.next())
                    ++columns;
        }
        return columns;
    }

    void placeOrphans(Result& result)
    {
        QHash<const Table*, QSet<qint64>> keys;
        for (const Table& table : result.tables)
            for (const Row& row : table.rows)
                keys[&table].insert(row.rowid);
        for (quint32 number = 2; number <= quint32(m_pages.count()); ++number) {
            if (m_claimed.contains(number) || m_free.contains(number) || pageType(number) != LeafTable)
                continue;
            m_claimed.insert(number);
            for (Row& row : leafRows(number)) {
                // Only a table whose tree lost pages can own a page no tree reaches, and only
                // when one such table fits the row.
                std::vector<Table*> fits;
                for (Table& table : result.tables)
                    if (table.brokenLinks > 0 && row.values.size() <= table.columnCount)
                        fits.push_back(&table);
                if (fits.size() > 1) {
                    std::vector<Table*> exact;
                    for (Table* t : fits)
                        if (t->columnCount == row.values.size())
                            exact.push_back(t);
                    fits = exact;
                }
                if (fits.size() != 1) {
                    result.unplaced.push_back(std::move(row));
                    continue;
                }
                Table& owner = *fits.front();
                if (!keys[&owner].contains(row.rowid)) {
                    keys[&owner].insert(row.rowid);
                    owner.rows.push_back(std::move(row));
                }
            }
        }
    }

    Pages m_pages;
    QSet<quint32> m_claimed;
    QSet<quint32> m_free;
};

QString quoted(const QString& name)
{
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

bool exec(QSqlQuery& q, const QString& sql, QString* error)
{
    if (q.exec(sql))
        return true;
    *error = q.lastError().text();
    return false;
}

bool writeTable(QSqlDatabase& db, const Table& table, QString* error)
{
    QSqlQuery q(db);
    if (!exec(q, table.sql, error))
        return false;
    QStringList names;
    int keyColumn = -1;
    if (!exec(q, QStringLiteral("PRAGMA table_info(%1)").arg(quoted(table.name)), error))
        return false;
    while (q.next()) {
        names.append(q.value(1).toString());
        if (q.value(5).toInt() == 1
            && q.value(2).toString().compare(QLatin1String("INTEGER"), Qt::CaseInsensitive) == 0)
            keyColumn = names.size() - 1;
    }
    QSqlQuery insert(db);
    int preparedFor = -1;
    for (const Row& row : table.rows) {
        const int n = int(row.values.size());
        if (n != preparedFor) {
            QStringList columns = names.mid(0, n);
            QStringList marks(n, QStringLiteral("?"));
            if (keyColumn < 0 || keyColumn >= n) {
                columns.prepend(QStringLiteral("rowid"));
                marks.append(QStringLiteral("?"));
            }
            for (QString& c : columns)
                c = quoted(c);
            if (!insert.prepare(QStringLiteral("INSERT OR IGNORE INTO %1 (%2) VALUES (%3)")
                                    .arg(quoted(table.name), columns.join(u','), marks.join(u',')))) {
                *error = insert.lastError().text();
                return false;
            }
            preparedFor = n;
        }
        if (keyColumn < 0 || keyColumn >= n)
            insert.addBindValue(row.rowid);
        for (int i = 0; i < n; ++i)
            insert.addBindValue(i == keyColumn ? QVariant(row.rowid) : row.values.at(i));
        // A row the engine refuses (a value of the wrong kind for a strict column) is left out.
        insert.exec();
    }
    return true;
}

} // namespace

Result read(const QByteArray& bytes) { return Reader(bytes).run(); }

bool write(const Result& result, const QString& target, const QString& unplacedTable, QString* error)
{
    ScopedConnection connection(target);
    QSqlDatabase& db = connection.db();
    if (!connection.isOpen()) {
        *error = db.lastError().text();
        return false;
    }
    bool ok = false;
    try {
        Transaction t(db);
        ok = true;
        const Table* sequence = nullptr;
        for (const Table& table : result.tables) {
            if (table.name == u"sqlite_sequence")
                sequence = &table;
            else if (!table.name.startsWith(QLatin1String("sqlite_")))
                ok = ok && writeTable(db, table, error);
        }
        QSqlQuery q(db);
        // Keys once given are never given again, whatever rows were lost.
        if (ok && sequence) {
            for (const Row& row : sequence->rows) {
                if (row.values.size() < 2)
                    continue;
                q.prepare(QStringLiteral("UPDATE sqlite_sequence SET seq = MAX(seq, ?) WHERE name = ?"));
                q.addBindValue(row.values.at(1));
                q.addBindValue(row.values.at(0));
                q.exec();
                if (q.numRowsAffected() == 0) {
                    q.prepare(QStringLiteral("INSERT INTO sqlite_sequence (name, seq) SELECT ?, ? WHERE "
                                             "EXISTS (SELECT 1 FROM sqlite_master WHERE name = ?)"));
                    q.addBindValue(row.values.at(0));
                    q.addBindValue(row.values.at(1));
                    q.addBindValue(row.values.at(0));
                    q.exec();
                }
            }
        }
        if (ok && !result.unplaced.empty()) {
            int width = 0;
            for (const Row& row : result.unplaced)
                width = std::max(width, int(row.values.size()));
            QStringList columns { QStringLiteral("rivi INTEGER") };
            for (int i = 1; i <= width; ++i)
                columns.append(QStringLiteral("arvo%1").arg(i));
            ok = exec(q,
                QStringLiteral("CREATE TABLE %1 (%2)").arg(quoted(unplacedTable), columns.join(u',')), error);
            for (const Row& row : result.unplaced) {
                if (!ok)
                    break;
                QStringList marks(int(row.values.size()) + 1, QStringLiteral("?"));
                QStringList names { QStringLiteral("rivi") };
                for (int i = 1; i <= row.values.size(); ++i)
                    names.append(QStringLiteral("arvo%1").arg(i));
                q.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                              .arg(quoted(unplacedTable), names.join(u','), marks.join(u',')));
                q.addBindValue(row.rowid);
                for (const QVariant& v : row.values)
                    q.addBindValue(v);
                q.exec();
            }
        }
        // Indexes and views follow the data; one that cannot be made is made again by
        // the next start's upgrade.
        for (const QString& sql : result.otherSql)
            if (ok)
                q.exec(sql);
        if (ok)
            t.commitOrThrow();
    } catch (const std::exception& e) {
        *error = QString::fromUtf8(e.what());
        ok = false;
    }
    return ok;
}

} // namespace PageRecovery
