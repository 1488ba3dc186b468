#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSqlDatabase>
#include <QString>
#include <QVariantList>
#include <memory>

// Rows read one by one with their columns by name: what the report engine reads a report's rows
// from. A query gives them (RowReader), or a computation that has them in memory already.
class RowSource {
public:
    virtual ~RowSource() = default;
    // The column of a name, case-insensitively; -1 when there is none.
    virtual int columnIndex(const QString& name) const = 0;
    // The next row; false after the last one. Throws DatabaseError.
    virtual bool next() = 0;
    virtual bool isNull(int column) const = 0;
    virtual qint64 integer(int column) const = 0;
    virtual double real(int column) const = 0;
    virtual QString text(int column) const = 0;
    // The text as UTF-8 bytes, valid until the next row: for the hot loops that only compare a
    // code or read digits, without a QString per cell.
    virtual QByteArrayView bytes(int column) const = 0;
};

// A SELECT read row by row, for reports of hundreds of thousands of rows. On SQLite it goes
// through the engine's own interface, so that only the cells asked for are converted (Qt's
// driver turns every cell of every row into a QVariant first); on any other engine through
// QSqlQuery. Values are bound in order to the "?" places. Throws DatabaseError.
class RowReader final : public RowSource {
public:
    RowReader(const QSqlDatabase& db, const QString& sql, const QVariantList& values = {});
    ~RowReader();
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;

    int columnCount() const;
    int columnIndex(const QString& name) const override;
    bool next() override;
    bool isNull(int column) const override;
    qint64 integer(int column) const override;
    double real(int column) const override;
    QString text(int column) const override;
    QByteArrayView bytes(int column) const override;

private:
    mutable QByteArray m_buffer;
    struct Sqlite;
    std::unique_ptr<Sqlite> m_sqlite;
    std::unique_ptr<QSqlQuery> m_query;
};
