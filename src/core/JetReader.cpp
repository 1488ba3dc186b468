#include "core/JetReader.h"

#include "core/ErrorText.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringDecoder>

#include <mdbtools.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <unistd.h>
#include <utility>

namespace {

constexpr quint32 ReplyMagic = 0x564a4554; // "VJET"
// The reading program's exit status when libmdb ended it itself.
constexpr int ReaderStopped = 3;

quint16 u16(const unsigned char* p) { return quint16(p[0] | (p[1] << 8)); }
quint32 u32(const unsigned char* p)
{
    return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
}

// The first page of a Jet file is scrambled from offset 0x18 with RC4 under a fixed key.
void rc4(const unsigned char* key, int keyLength, unsigned char* data, int length)
{
    unsigned char s[256];
    for (int i = 0; i < 256; ++i)
        s[i] = static_cast<unsigned char>(i);
    for (int i = 0, j = 0; i < 256; ++i) {
        j = (j + s[i] + key[i % keyLength]) & 0xff;
        std::swap(s[i], s[j]);
    }
    for (int n = 0, i = 0, j = 0; n < length; ++n) {
        i = (i + 1) & 0xff;
        j = (j + s[i]) & 0xff;
        std::swap(s[i], s[j]);
        data[n] ^= s[(s[i] + s[j]) & 0xff];
    }
}

QString columnTypeName(int type)
{
    switch (type) {
    case MDB_COMPLEX:
        return QStringLiteral("liite tai moniarvoinen kenttä");
    default:
        return QStringLiteral("tyyppi %1").arg(type);
    }
}

struct CatalogTable {
    QString name;
    quint32 definitionPage = 0;
};

// The reading itself, run in vorkam_jetread. Every number taken from the file is checked
// before it is used as an offset, a count or a page number.
class PageReader final {
public:
    PageReader(MdbHandle* mdb, qint64 pages, int codePage)
        : m_mdb(mdb)
        , m_pages(pages)
        , m_pageSize(int(mdb->fmt->pg_size))
    {
        m_books.jetVersion = mdb->f->jet_version == MDB_VER_JET3 ? 3 : 4;
        m_books.codePage = codePage;
    }

    JetReader::Problem problem() const { return m_problem; }
    const QString& detail() const { return m_detail; }
    const JetBooks& books() const { return m_books; }

    bool read(const QStringList& wanted)
    {
        QList<CatalogTable> tables;
        if (!readCatalog(tables))
            return false;
        QStringList seen;
        for (const CatalogTable& t : tables) {
            const auto known = std::find_if(wanted.begin(), wanted.end(),
                [&t](const QString& w) { return w.compare(t.name, Qt::CaseInsensitive) == 0; });
            if (!wanted.isEmpty() && known == wanted.end()) {
                m_books.unknownTables.append(t.name);
                continue;
            }
            const QString name = wanted.isEmpty() ? t.name : *known;
            if (seen.contains(name, Qt::CaseInsensitive))
                return fail(JetReader::Problem::Damaged,
                    QStringLiteral("taulu %1 on tiedoston luettelossa kahdesti").arg(t.name));
            seen.append(name);
            JetTable table;
            table.name = name;
            if (!readTable(t.definitionPage, table))
                return false;
            m_books.tables.append(table);
        }
        return true;
    }

private:
    bool fail(JetReader::Problem problem, const QString& detail)
    {
        m_problem = problem;
        m_detail = detail;
        return false;
    }

    bool pageInFile(quint32 page) const { return page > 0 && qint64(page) < m_pages; }

    // Loads `page` into libmdb's page buffer.
    bool loadPage(quint32 page)
    {
        if (!pageInFile(page))
            return fail(JetReader::Problem::Truncated,
                QStringLiteral("sivu %1 on tiedoston lopun jälkeen").arg(page));
        if (mdb_read_pg(m_mdb, page) != m_pageSize)
            return fail(JetReader::Problem::Truncated, QStringLiteral("sivua %1 ei voi lukea").arg(page));
        return true;
    }

    // The table definition on `page`, its columns read, or null with the problem set. Its
    // header is checked before libmdb walks the column list.
    MdbTableDef* openTable(quint32 page, const QString& name, MdbCatalogEntry* entry)
    {
        if (!loadPage(page))
            return nullptr;
        const unsigned char* pg = m_mdb->pg_buf;
        const MdbFormatConstants* fmt = m_mdb->fmt;
        const int columns = u16(pg + fmt->tab_num_cols_offset);
        const int variable = u16(pg + fmt->tab_num_cols_offset - 2);
        const quint32 indexes = u32(pg + fmt->tab_num_ridxs_offset);
        if (pg[0] != 0x02 || columns == 0 || columns > 255 || variable > columns || indexes > 1000) {
            fail(JetReader::Problem::Damaged, QStringLiteral("taulun %1 määrittely on vioittunut").arg(name));
            return nullptr;
        }
        *entry = MdbCatalogEntry {};
        entry->mdb = m_mdb;
        qstrncpy(entry->object_name, name.toUtf8().constData(), sizeof(entry->object_name));
        entry->object_type = MDB_TABLE;
        entry->table_pg = page;
        MdbTableDef* table = mdb_read_table(entry);
        if (!table) {
            fail(JetReader::Problem::Damaged, QStringLiteral("taulun %1 määrittely on vioittunut").arg(name));
            return nullptr;
        }
        if (!mdb_read_columns(table) || table->num_cols != unsigned(columns)) {
            mdb_free_tabledef(table);
            fail(JetReader::Problem::Damaged,
                QStringLiteral("taulun %1 kenttien määrittely on vioittunut").arg(name));
            return nullptr;
        }
        return table;
    }

    // The start and size of row `row` of the page in the buffer, and its flags.
    bool rowBounds(int row, int* start, int* size, quint16* flags)
    {
        const unsigned char* pg = m_mdb->pg_buf;
        const int rco = m_mdb->fmt->row_count_offset;
        const int rows = u16(pg + rco);
        if (row >= rows || rco + 2 + 2 * rows > m_pageSize)
            return false;
        const quint16 raw = u16(pg + rco + 2 + 2 * row);
        const int begin = raw & 0x1fff;
        const int end = row == 0 ? m_pageSize : (u16(pg + rco + 2 * row) & 0x1fff);
        *flags = raw & 0xc000;
        *start = begin;
        *size = end - begin;
        return begin >= rco + 2 + 2 * rows && begin < end && end <= m_pageSize;
    }

    // Every live row of the table whose definition is on `definitionPage`, as page << 8 | row.
    // Deleted rows are left out; a row that Jet moved to another page is found through the
    // pointer left in its place.
    bool rowLocations(MdbTableDef* table, quint32 definitionPage, std::set<quint64>* locations)
    {
        std::set<quint64> pointers;
        guint32 page = 0;
        for (;;) {
            const gint32 next = mdb_map_find_next(m_mdb, table->usage_map, unsigned(table->map_sz), page);
            if (next == 0)
                break;
            if (next < 0 || guint32(next) <= page)
                return fail(JetReader::Problem::Damaged,
                    QStringLiteral("taulun %1 sivukartta on vioittunut").arg(QString::fromUtf8(table->name)));
            page = guint32(next);
            if (!loadPage(page))
                return false;
            const unsigned char* pg = m_mdb->pg_buf;
            if (pg[0] != 0x01 || u32(pg + 4) != definitionPage)
                continue; // not a data page of this table; a missing row is caught by the count
            const int rows = u16(pg + m_mdb->fmt->row_count_offset);
            for (int r = 0; r < rows; ++r) {
                int start = 0, size = 0;
                quint16 flags = 0;
                const bool inPlace = rowBounds(r, &start, &size, &flags);
                if (flags & 0x8000)
                    continue; // deleted
                if (!inPlace)
                    return fail(JetReader::Problem::Damaged,
                        QStringLiteral("sivun %1 rivit ovat sekaisin").arg(page));
                if (flags & 0x4000) {
                    if (size < 4)
                        return fail(JetReader::Problem::Damaged,
                            QStringLiteral("sivun %1 rivit ovat sekaisin").arg(page));
                    pointers.insert(u32(m_mdb->pg_buf + start));
                } else {
                    locations->insert(quint64(page) << 8 | quint64(r));
                }
            }
        }
        for (quint64 pointer : pointers) {
            // A moved row may have been moved again; a few hops are all Jet makes.
            for (int hop = 0;; ++hop) {
                const quint32 target = quint32(pointer >> 8);
                const int row = int(pointer & 0xff);
                int start = 0, size = 0;
                quint16 flags = 0;
                if (hop == 8 || !loadPage(target) || m_mdb->pg_buf[0] != 0x01
                    || u32(m_mdb->pg_buf + 4) != definitionPage || !rowBounds(row, &start, &size, &flags))
                    return fail(JetReader::Problem::Damaged,
                        QStringLiteral("taulun %1 siirretty rivi ei löydy")
                            .arg(QString::fromUtf8(table->name)));
                if (!(flags & 0x4000)) {
                    locations->insert(pointer);
                    break;
                }
                if (size < 4)
                    return fail(JetReader::Problem::Damaged,
                        QStringLiteral("sivun %1 rivit ovat sekaisin").arg(target));
                pointer = u32(m_mdb->pg_buf + start);
            }
        }
        return true;
    }

    // A memo or OLE value: inline in the row, on one long-value page, or on a chain of them.
    bool longValue(const unsigned char* header, int size, QByteArray* value)
    {
        if (size < MDB_MEMO_OVERHEAD)
            return false;
        const quint32 word = u32(header);
        const qint64 length = word & 0x3fffffff;
        if (word & 0x80000000) {
            *value = QByteArray(
                reinterpret_cast<const char*>(header) + MDB_MEMO_OVERHEAD, size - MDB_MEMO_OVERHEAD);
            return true;
        }
        const bool single = word & 0x40000000;
        if ((word & 0xc0000000) == 0 && length == 0) {
            value->clear();
            return true;
        }
        quint32 pointer = u32(header + 4);
        value->clear();
        for (qint64 pages = 0; pointer != 0; ++pages) {
            if (pages > m_pages || !pageInFile(pointer >> 8))
                return false;
            void* buffer = nullptr;
            int start = 0;
            size_t chunk = 0;
            if (mdb_find_pg_row(m_mdb, int(pointer), &buffer, &start, &chunk) != 0 || start < 0
                || chunk > size_t(m_pageSize) || size_t(start) + chunk > size_t(m_pageSize))
                return false;
            const char* bytes = static_cast<const char*>(buffer) + start;
            if (single) {
                value->append(bytes, qsizetype(chunk));
                break;
            }
            if (chunk < 4)
                return false;
            pointer = u32(reinterpret_cast<const unsigned char*>(bytes));
            value->append(bytes + 4, qsizetype(chunk - 4));
            if (value->size() > length)
                return false;
        }
        if (value->size() > length)
            value->truncate(length);
        return value->size() == length;
    }

    bool text(const QByteArray& bytes, QString* value)
    {
        if (m_books.jetVersion == 3) {
            *value = JetValues::codePageText(bytes, m_books.codePage);
            return true;
        }
        return JetValues::jet4Text(bytes, value);
    }

    // One value of a cracked row; false when the bytes do not make a value of the column's type.
    bool value(const MdbColumn* column, const MdbField& field, QVariant* out)
    {
        const unsigned char* p = static_cast<const unsigned char*>(field.value);
        const int size = field.siz;
        const auto fixed = [&](int expected) { return size == expected; };
        switch (column->col_type) {
        case MDB_BYTE:
            if (!fixed(1))
                return false;
            *out = qint64(p[0]);
            return true;
        case MDB_INT:
            if (!fixed(2))
                return false;
            *out = qint64(qint16(u16(p)));
            return true;
        case MDB_LONGINT:
            if (!fixed(4))
                return false;
            *out = qint64(qint32(u32(p)));
            return true;
        case MDB_MONEY:
            if (!fixed(8))
                return false;
            *out = JetValues::int64(p);
            return true;
        case MDB_FLOAT: {
            if (!fixed(4))
                return false;
            float f = 0;
            std::memcpy(&f, p, 4);
            *out = double(f);
            return std::isfinite(f);
        }
        case MDB_DOUBLE: {
            if (!fixed(8))
                return false;
            double d = 0;
            std::memcpy(&d, p, 8);
            *out = d;
            return std::isfinite(d);
        }
        case MDB_DATETIME: {
            if (!fixed(8))
                return false;
            double days = 0;
            std::memcpy(&days, p, 8);
            QDate d;
            bool hasTime = false;
            if (!JetValues::date(days, &d, &hasTime))
                return false;
            if (hasTime)
                ++m_timesDropped;
            *out = d.toString(Qt::ISODate);
            return true;
        }
        case MDB_TEXT: {
            QString s;
            if (!text(QByteArray(reinterpret_cast<const char*>(p), size), &s))
                return false;
            *out = s;
            return true;
        }
        case MDB_MEMO: {
            QByteArray bytes;
            QString s;
            if (!longValue(p, size, &bytes) || !text(bytes, &s))
                return false;
            *out = s;
            return true;
        }
        case MDB_BINARY:
            *out = QByteArray(reinterpret_cast<const char*>(p), size);
            return true;
        case MDB_OLE: {
            QByteArray bytes;
            if (!longValue(p, size, &bytes))
                return false;
            *out = bytes;
            return true;
        }
        case MDB_REPID: {
            if (!fixed(16))
                return false;
            char* s = mdb_uuid_to_string(m_mdb->pg_buf, int(p - m_mdb->pg_buf));
            *out = QString::fromLatin1(s);
            g_free(s);
            return true;
        }
        case MDB_NUMERIC: {
            if (!fixed(17) || column->col_scale > 28 || column->col_prec > 28)
                return false;
            char* s
                = mdb_numeric_to_string(m_mdb, int(p - m_mdb->pg_buf), column->col_scale, column->col_prec);
            *out = QString::fromLatin1(s);
            g_free(s);
            return true;
        }
        default:
            return false;
        }
    }

    static JetColumn::Kind kindOf(int type)
    {
        switch (type) {
        case MDB_BOOL:
            return JetColumn::Kind::YesNo;
        case MDB_BYTE:
        case MDB_INT:
        case MDB_LONGINT:
            return JetColumn::Kind::Integer;
        case MDB_MONEY:
            return JetColumn::Kind::Money;
        case MDB_FLOAT:
        case MDB_DOUBLE:
            return JetColumn::Kind::Real;
        case MDB_DATETIME:
            return JetColumn::Kind::Date;
        case MDB_NUMERIC:
            return JetColumn::Kind::Decimal;
        case MDB_BINARY:
        case MDB_OLE:
            return JetColumn::Kind::Binary;
        default:
            return JetColumn::Kind::Text;
        }
    }

    static bool knownType(int type)
    {
        switch (type) {
        case MDB_BOOL:
        case MDB_BYTE:
        case MDB_INT:
        case MDB_LONGINT:
        case MDB_MONEY:
        case MDB_FLOAT:
        case MDB_DOUBLE:
        case MDB_DATETIME:
        case MDB_BINARY:
        case MDB_TEXT:
        case MDB_OLE:
        case MDB_MEMO:
        case MDB_REPID:
        case MDB_NUMERIC:
            return true;
        default:
            return false;
        }
    }

    // Calls `visit` with the values of every live row of the table; fields not in `only`
    // (when given) are left null.
    template <typename Visit>
    bool readRows(MdbTableDef* table, quint32 definitionPage, const QString& name, Visit visit,
        const QList<int>& only = {})
    {
        std::set<quint64> locations;
        if (!rowLocations(table, definitionPage, &locations))
            return false;
        MdbField fields[256];
        for (quint64 location : locations) {
            int start = 0, size = 0;
            quint16 flags = 0;
            if (!loadPage(quint32(location >> 8)) || !rowBounds(int(location & 0xff), &start, &size, &flags))
                return fail(JetReader::Problem::Damaged,
                    QStringLiteral("taulun %1 rivi sivulla %2 on vioittunut").arg(name).arg(location >> 8));
            const int present = mdb_crack_row(table, start, size_t(size), fields);
            if (present < 0)
                return fail(JetReader::Problem::Damaged,
                    QStringLiteral("taulun %1 rivi sivulla %2 on vioittunut").arg(name).arg(location >> 8));
            QVariantList row;
            row.reserve(int(table->num_cols));
            for (unsigned i = 0; i < table->num_cols; ++i) {
                const MdbColumn* column = static_cast<const MdbColumn*>(g_ptr_array_index(table->columns, i));
                const MdbField& field = fields[i];
                // Fields added after the row was written are not in it: they read as empty.
                const bool inRow = column->col_num < present;
                if (column->col_type == MDB_BOOL) {
                    row.append(qint64(inRow && !field.is_null ? 1 : 0));
                    continue;
                }
                if (!inRow || field.is_null || (!only.isEmpty() && !only.contains(int(i)))) {
                    row.append(QVariant());
                    continue;
                }
                const unsigned char* p = static_cast<const unsigned char*>(field.value);
                QVariant v;
                if (!p || p < m_mdb->pg_buf + start || field.siz < 0
                    || p + field.siz > m_mdb->pg_buf + start + size || !value(column, field, &v))
                    return fail(JetReader::Problem::Damaged,
                        QStringLiteral("taulun %1 kentän %2 arvo sivulla %3 on vioittunut")
                            .arg(name, QString::fromUtf8(column->name))
                            .arg(location >> 8));
                row.append(v);
            }
            if (!visit(row))
                return false;
        }
        // A file not closed cleanly may tell no row count at all; any other difference means
        // pages are missing or garbled.
        if (table->num_rows != 0 && table->num_rows != locations.size())
            return fail(JetReader::Problem::Damaged,
                QStringLiteral("taulusta %1 löytyi %2 riviä, mutta sen määrittelyn mukaan rivejä on %3")
                    .arg(name)
                    .arg(locations.size())
                    .arg(table->num_rows));
        return true;
    }

    bool readCatalog(QList<CatalogTable>& tables)
    {
        MdbCatalogEntry entry;
        MdbTableDef* catalog = openTable(2, QStringLiteral("MSysObjects"), &entry);
        if (!catalog) {
            if (m_problem != JetReader::Problem::Truncated)
                fail(JetReader::Problem::Damaged, QStringLiteral("tiedoston taululuettelo on vioittunut"));
            return false;
        }
        int id = -1, name = -1, type = -1, flags = -1;
        for (unsigned i = 0; i < catalog->num_cols; ++i) {
            const MdbColumn* c = static_cast<const MdbColumn*>(g_ptr_array_index(catalog->columns, i));
            const QString n = QString::fromUtf8(c->name);
            if (n == u"Id" && c->col_type == MDB_LONGINT)
                id = int(i);
            else if (n == u"Name" && c->col_type == MDB_TEXT)
                name = int(i);
            else if (n == u"Type" && c->col_type == MDB_INT)
                type = int(i);
            else if (n == u"Flags" && c->col_type == MDB_LONGINT)
                flags = int(i);
        }
        bool ok = id >= 0 && name >= 0 && type >= 0 && flags >= 0;
        if (!ok)
            fail(JetReader::Problem::Damaged, QStringLiteral("tiedoston taululuettelo on vioittunut"));
        ok = ok
            && readRows(catalog, 2, QStringLiteral("MSysObjects"),
                [&](const QVariantList& row) {
                    const qint64 objectType = row.at(type).toLongLong() & 0x7f;
                    const quint32 objectFlags = quint32(row.at(flags).toLongLong());
                    const QString objectName = row.at(name).toString();
                    // User tables only: system tables carry a flag, and temporary ones start with "~".
                    if (objectType != MDB_TABLE || (objectFlags & 0x80000002u) || objectName.startsWith(u'~')
                        || objectName.startsWith(QLatin1String("MSys"), Qt::CaseInsensitive))
                        return true;
                    const quint32 page = quint32(row.at(id).toLongLong()) & 0x00ffffff;
                    if (!pageInFile(page))
                        return fail(JetReader::Problem::Truncated,
                            QStringLiteral("taulun %1 määrittely on tiedoston lopun jälkeen")
                                .arg(objectName));
                    tables.append({ objectName, page });
                    return true;
                },
                { id, name, type, flags });
        mdb_free_tabledef(catalog);
        return ok;
    }

    bool readTable(quint32 definitionPage, JetTable& out)
    {
        MdbCatalogEntry entry;
        MdbTableDef* table = openTable(definitionPage, out.name, &entry);
        if (!table)
            return false;
        // The last automatic number sits beside the row count in the definition.
        out.declaredRows = table->num_rows;
        if (loadPage(definitionPage))
            out.lastCounter = qint32(u32(m_mdb->pg_buf + m_mdb->fmt->tab_num_rows_offset + 4));
        bool ok = m_problem == JetReader::Problem::None;
        for (unsigned i = 0; ok && i < table->num_cols; ++i) {
            const MdbColumn* c = static_cast<const MdbColumn*>(g_ptr_array_index(table->columns, i));
            const QString columnName = QString::fromUtf8(c->name);
            if (!knownType(c->col_type)) {
                ok = fail(JetReader::Problem::Unsupported,
                    QStringLiteral("taulun %1 kentän %2 tyyppiä (%3) Vorkam ei osaa siirtää")
                        .arg(out.name, columnName, columnTypeName(c->col_type)));
                break;
            }
            out.columns.append({ columnName, kindOf(c->col_type), c->is_long_auto != 0 });
        }
        m_timesDropped = 0;
        ok = ok && readRows(table, definitionPage, out.name, [&out](const QVariantList& row) {
            out.rows.append(row);
            return true;
        });
        m_books.timesDropped += m_timesDropped;
        mdb_free_tabledef(table);
        return ok;
    }

    MdbHandle* m_mdb;
    qint64 m_pages;
    int m_pageSize;
    JetBooks m_books;
    JetReader::Problem m_problem = JetReader::Problem::None;
    QString m_detail;
    int m_timesDropped = 0; // in the table being read
};

bool writeAll(int fd, const QByteArray& bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += n;
    }
    return true;
}

} // namespace

namespace JetValues {

bool jet4Text(const QByteArray& bytes, QString* text)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype n = bytes.size();
    text->clear();
    if (n >= 2 && p[0] == 0xff && p[1] == 0xfe) {
        bool compressed = true;
        for (qsizetype i = 2; i < n;) {
            if (p[i] == 0) {
                compressed = !compressed;
                ++i;
            } else if (compressed) {
                text->append(QChar(char16_t(p[i])));
                ++i;
            } else {
                if (i + 1 >= n)
                    return false;
                text->append(QChar(char16_t(p[i] | (p[i + 1] << 8))));
                i += 2;
            }
        }
        return true;
    }
    if (n % 2 != 0)
        return false;
    text->reserve(n / 2);
    for (qsizetype i = 0; i < n; i += 2)
        text->append(QChar(char16_t(p[i] | (p[i + 1] << 8))));
    return true;
}

QString codePageText(const QByteArray& bytes, int codePage)
{
    const int page = codePage > 0 ? codePage : 1252;
    const QByteArray name = (page >= 1250 && page <= 1258) || page == 874
        ? QByteArray("windows-") + QByteArray::number(page)
        : QByteArray("cp") + QByteArray::number(page);
    QStringDecoder decoder(name.constData());
    if (!decoder.isValid())
        decoder = QStringDecoder("windows-1252");
    return decoder.decode(bytes);
}

bool date(double days, QDate* date, bool* hasTime)
{
    // Years 100–9999, the range of Jet's dates.
    if (!std::isfinite(days) || days < -657434.0 || days >= 2958466.0)
        return false;
    const double whole = std::trunc(days);
    qint64 seconds = std::llround(std::fabs(days - whole) * 86400.0);
    QDate d = QDate(1899, 12, 30).addDays(qint64(whole));
    if (seconds >= 86400) {
        d = d.addDays(1);
        seconds = 0;
    }
    *date = d;
    *hasTime = seconds != 0;
    return d.isValid();
}

qint64 int64(const unsigned char* bytes)
{
    quint64 v = 0;
    for (int i = 7; i >= 0; --i)
        v = v << 8 | bytes[i];
    return qint64(v);
}

} // namespace JetValues

JetReader::Problem JetReader::readHeader(const QByteArray& firstPage, Header* header)
{
    if (firstPage.size() < 0x98 + 8)
        return Problem::NotJet;
    const QByteArray magic = firstPage.mid(4, 15);
    if (magic != "Standard Jet DB" && magic != "Standard ACE DB")
        return Problem::NotJet;
    QByteArray page = firstPage.left(0x18 + 128);
    auto* p = reinterpret_cast<unsigned char*>(page.data());
    const quint32 version = u32(p + 0x14);
    *header = Header {};
    if (version > MDB_VER_JET4) {
        header->jetVersion = 0;
        return Problem::Unsupported;
    }
    header->jetVersion = version == MDB_VER_JET3 ? 3 : 4;
    header->pageSize = version == MDB_VER_JET3 ? 2048 : 4096;
    const unsigned char key[] = { 0xc7, 0xda, 0x39, 0x6b };
    rc4(key, 4, p + 0x18, header->jetVersion == 3 ? 126 : 128);
    header->codePage = u16(p + 0x3c);
    // The password is masked once more in Jet 4, by the whole days of the creation date.
    const int length = header->jetVersion == 3 ? 20 : 40;
    unsigned char mask[4] = { 0, 0, 0, 0 };
    if (header->jetVersion == 4) {
        double created = 0;
        std::memcpy(&created, p + 0x72, 8);
        const qint32 days = std::isfinite(created) && std::fabs(created) < 2e9 ? qint32(created) : 0;
        for (int i = 0; i < 4; ++i)
            mask[i] = static_cast<unsigned char>(quint32(days) >> (8 * i));
    }
    for (int i = 0; i < length; ++i)
        if ((p[0x42 + i] ^ mask[i % 4]) != 0)
            header->password = true;
    return Problem::None;
}

int JetReader::timeLimitMs(qint64 bytes) { return 60000 + int(std::min<qint64>(bytes / 1000, 600000)); }

void JetReader::runHelper(int argc, char** argv)
{
    if (argc < 4)
        _exit(2);
    const QByteArray path = argv[1];
    const qint64 pages = QByteArray(argv[2]).toLongLong();
    const int codePage = QByteArray(argv[3]).toInt();
    QStringList wanted;
    for (int i = 4; i < argc; ++i)
        wanted << QString::fromUtf8(argv[i]);

    // libmdb ends the process with exit() on some damage: that must not pass for a reply.
    std::atexit([] { _exit(ReaderStopped); });

    JetReader::Problem problem = JetReader::Problem::None;
    QString detail;
    JetBooks books;
    MdbHandle* mdb = mdb_open(path.constData(), MDB_NOFLAGS);
    if (!mdb) {
        problem = JetReader::Problem::Damaged;
        detail = QStringLiteral("tiedostoa ei voitu avata");
    } else {
        PageReader reader(mdb, pages, codePage);
        if (!reader.read(wanted)) {
            problem = reader.problem();
            detail = reader.detail();
        } else {
            books = reader.books();
        }
    }
    QByteArray reply;
    {
        QDataStream out(&reply, QIODevice::WriteOnly);
        out.setVersion(QDataStream::Qt_6_4);
        out << ReplyMagic << qint32(problem) << detail << books;
    }
    _exit(writeAll(STDOUT_FILENO, reply) ? 0 : 2);
}

QString JetReader::helperProgram()
{
    // Beside the program when installed; in the build tree the tests run from a folder of
    // their own beside bin/.
    const QString here = QCoreApplication::applicationDirPath();
    for (const QString& candidate :
        { here + QStringLiteral("/vorkam_jetread"), here + QStringLiteral("/../bin/vorkam_jetread") }) {
        const QFileInfo info(candidate);
        if (info.isFile() && info.isExecutable())
            return info.absoluteFilePath();
    }
    return {};
}

JetReader::Result JetReader::read(const QString& path, const QStringList& wanted)
{
    Result result;
    const auto problem = [&result](Problem p, const QString& detail) {
        result.problem = p;
        result.detail = detail;
        return result;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return problem(Problem::Unreadable, file.errorString());
    const qint64 size = file.size();
    Header header;
    const Problem headerProblem = readHeader(file.read(4096), &header);
    file.close();
    if (headerProblem == Problem::NotJet)
        return problem(Problem::NotJet, QStringLiteral("tiedosto ei ala kuten Jet-tietokanta"));
    if (headerProblem == Problem::Unsupported)
        return problem(
            Problem::Unsupported, QStringLiteral("tiedosto on Access 2007:n tai uudemman muodossa"));
    if (header.password)
        return problem(Problem::Password, QStringLiteral("tietokannalla on salasana"));
    if (size < 3 * header.pageSize || size % header.pageSize != 0)
        return problem(Problem::Truncated,
            QStringLiteral("tiedoston koko (%1 tavua) ei ole kokonainen määrä %2 tavun sivuja")
                .arg(size)
                .arg(header.pageSize));

    const QString program = helperProgram();
    if (program.isEmpty())
        return problem(Problem::Unreadable,
            QStringLiteral("Vorkamin asennuksesta puuttuu Jet-tiedostojen lukuohjelma vorkam_jetread"));
    QStringList arguments { QFileInfo(path).absoluteFilePath(), QString::number(size / header.pageSize),
        QString::number(header.codePage) };
    arguments += wanted;
    // libmdb's remarks about damaged pages are no use to anyone here, and names must come out
    // of it as UTF-8 whatever the environment says.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("MDB_ICONV"));
    environment.remove(QStringLiteral("MDB_DEBUG"));
    QProcess reader;
    reader.setProcessEnvironment(environment);
    reader.setStandardErrorFile(QProcess::nullDevice());
    reader.start(program, arguments, QIODevice::ReadOnly);
    if (!reader.waitForStarted())
        return problem(Problem::Unreadable, ErrorText::technical(reader.errorString()));
    // A reader that takes too long is stopped.
    if (!reader.waitForFinished(timeLimitMs(size))) {
        reader.kill();
        reader.waitForFinished();
        return problem(Problem::Damaged, QStringLiteral("tiedoston lukeminen ei päättynyt määräajassa"));
    }
    const QByteArray reply = reader.readAllStandardOutput();
    if (reader.exitStatus() != QProcess::NormalExit || reader.exitCode() != 0)
        return problem(
            Problem::Damaged, QStringLiteral("tiedoston lukeminen keskeytyi vioittuneeseen kohtaan"));
    QDataStream in(reply);
    in.setVersion(QDataStream::Qt_6_4);
    quint32 magic = 0;
    qint32 readerProblem = 0;
    QString detail;
    in >> magic >> readerProblem >> detail >> result.books;
    if (in.status() != QDataStream::Ok || magic != ReplyMagic || !in.atEnd())
        return problem(Problem::Damaged, QStringLiteral("tiedoston lukeminen keskeytyi"));
    if (readerProblem != qint32(Problem::None))
        return problem(Problem(readerProblem), detail);
    return result;
}
