#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariantList>
#include <vector>

// Reads the rows of a damaged SQLite file straight from its pages, where the engine itself
// gives up at the first broken page: every table b-tree is walked from its root as far as its
// pages can be read, and table leaf pages that no readable tree reaches any more are given to
// the one table they can belong to (or kept aside when that cannot be told). Every read is
// checked against the file's bounds: a garbled file gives fewer rows, never a crash.
namespace PageRecovery {

struct Row {
    qint64 rowid = 0;
    QVariantList values;
};

struct Table {
    QString name;
    QString sql; // the CREATE TABLE statement
    quint32 rootPage = 0;
    int columnCount = 0;
    std::vector<Row> rows;
    // Child pages the tree points to that could not be read: rows may be missing.
    int brokenLinks = 0;
};

struct Result {
    // The schema table could be read.
    bool schemaRead = false;
    std::vector<Table> tables;
    // The indexes and views by their SQL, in schema order.
    QStringList otherSql;
    // Schema objects not made again ("trigger name"): only one plain CREATE statement of a
    // table, an index or a view, naming the object its row names, is run from a damaged file.
    QStringList skipped;
    // Rows of table pages that no table could be told to own.
    std::vector<Row> unplaced;
    int pageSize = 0;
    int pagesRead = 0;
    int pagesInFile = 0;
};

// Reads what can be read of `bytes`, the whole content of a database file.
Result read(const QByteArray& bytes);

// Writes the recovered rows into a new database at `target`: the tables as the schema made
// them, their rows with their own keys, the counters of AUTOINCREMENT tables never below a key
// used, then the indexes and views. Rows that were not placed go to a table `unplacedTable`
// (one text column per value). False with `error` set when the target could not be written.
bool write(const Result& result, const QString& target, const QString& unplacedTable, QString* error);

} // namespace PageRecovery
