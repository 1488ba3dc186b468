#include "core/JetBooks.h"

int JetTable::column(const QString& field) const
{
    for (int i = 0; i < columns.size(); ++i)
        if (columns.at(i).name.compare(field, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

const JetTable* JetBooks::table(const QString& name) const
{
    for (const JetTable& t : tables)
        if (t.name.compare(name, Qt::CaseInsensitive) == 0)
            return &t;
    return nullptr;
}

QDataStream& operator<<(QDataStream& out, const JetBooks& books)
{
    out << qint32(books.jetVersion) << qint32(books.codePage) << books.unknownTables
        << qint32(books.timesDropped) << qint32(books.tables.size());
    for (const JetTable& t : books.tables) {
        out << t.name << t.declaredRows << t.lastCounter << qint32(t.columns.size());
        for (const JetColumn& c : t.columns)
            out << c.name << qint8(c.kind) << c.counter;
        out << qint64(t.rows.size());
        for (const QVariantList& row : t.rows)
            out << row;
    }
    return out;
}

QDataStream& operator>>(QDataStream& in, JetBooks& books)
{
    qint32 version = 0, codePage = 0, dropped = 0, tables = 0;
    in >> version >> codePage >> books.unknownTables >> dropped >> tables;
    books.jetVersion = version;
    books.codePage = codePage;
    books.timesDropped = dropped;
    books.tables.clear();
    for (qint32 i = 0; i < tables && in.status() == QDataStream::Ok; ++i) {
        JetTable t;
        qint32 columns = 0;
        in >> t.name >> t.declaredRows >> t.lastCounter >> columns;
        for (qint32 c = 0; c < columns && in.status() == QDataStream::Ok; ++c) {
            JetColumn column;
            qint8 kind = 0;
            in >> column.name >> kind >> column.counter;
            column.kind = JetColumn::Kind(kind);
            t.columns.append(column);
        }
        qint64 rows = 0;
        in >> rows;
        for (qint64 r = 0; r < rows && in.status() == QDataStream::Ok; ++r) {
            QVariantList row;
            in >> row;
            if (row.size() != t.columns.size()) {
                in.setStatus(QDataStream::ReadCorruptData);
                break;
            }
            t.rows.append(row);
        }
        books.tables.append(t);
    }
    return in;
}
