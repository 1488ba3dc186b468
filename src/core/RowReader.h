#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSqlDatabase>
#include <QString>
#include <QVariantList>
#include <memory>

// A SELECT read row by row, for reports of hundreds of thousands of rows. On SQLite it goes
// through the engine's own interface, so that only the cells asked for are converted (Qt's
// driver turns every cell of every row into a QVariant first); on any other engine through
// QSqlQuery. Values are bound in order to the "?" places. Throws DatabaseError.
class RowReader final {
public:
    RowReader(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {});
    ~RowReader();
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;

    int columnCount() const;
    // The column of a name in the result, case-insensitively; -1 when there is none.
    int columnIndex(const QString& name) const;

    // The next row; false after the last one.
    bool next();
    bool isNull(int column) const;
    qint64 integer(int column) const;
    double real(int column) const;
    QString text(int column) const;
    // The text as UTF-8 bytes, valid until the next row: for the hot loops that only compare a
    // code or read digits, without a QString per cell.
    QByteArrayView bytes(int column) const;

private:
    mutable QByteArray m_buffer;
    struct Sqlite;
    std::unique_ptr<Sqlite> m_sqlite;
    std::unique_ptr<QSqlQuery> m_query;
};
