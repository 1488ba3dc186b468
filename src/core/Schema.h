#pragma once

#include <QList>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>

// The layout of an association database and the routine that brings an older layout up to date.
namespace Schema {

// Creates the core tables of the oldest layout (tl, to, toE, vi, viE, ma, mr, tula, tase),
// as every model database has them, or only the named ones of them (a repair's stand-in for
// lost tables). UpdateDatabase adds the rest. Throws DatabaseError.
void createCoreTables(const QSqlDatabase& db, const QStringList& only = {});

bool tableMissing(const QSqlDatabase& db, const QString& table);
bool fieldMissing(const QSqlDatabase& db, const QString& table, const QString& field);
bool queryPresent(const QSqlDatabase& db, const QString& query);

// The core tables that must exist before a file is taken for an association database.
QStringList missingCoreTables(const QSqlDatabase& db);

// Every table of the current layout: the core tables, then those the upgrade creates.
QStringList tableNames();
// Creates one of the tables the upgrade creates (tk, Settings, tlSaldot, tlTarkastelut,
// tpPohjat, vipPohjat, BankLines) in its current layout. Throws DatabaseError, also for any other name.
void createUpgradeTable(const QSqlDatabase& db, const QString& table);
// Makes the automatic numbering of `table` continue after `lastUsed` at least, so that
// numbers given before (and perhaps deleted since) are not given again. Throws DatabaseError.
void reserveIds(const QSqlDatabase& db, const QString& table, qint64 lastUsed);

// The reports' work tables (tula, tase, tk, tlSaldot, tlTarkastelut and the ledger's balances)
// as TEMP tables of this connection, which hide the file's tables of the same names. Reading
// books only, this writes nothing to the file. Harmless when they exist. Throws DatabaseError.
void createWorkTables(const QSqlDatabase& db);

struct UpgradeResult {
    bool ok = true;
    // Steps (1–18) that changed something, in the order they ran.
    QList<int> appliedSteps;
    // The step that failed, 0 when none, and the database's error text.
    int failedStep = 0;
    QString error;
};

// Runs the eighteen upgrade steps in their fixed order, each skipped when its table or field
// exists; the three stored queries are always recreated. A failing step ends the routine:
// earlier steps stay done and the next run resumes with the first missing item. Finally the
// template rows' account and side fields (mrtlID, mrviTyyppi) are added when missing, and the
// indexes that keep queries fast are created when missing. Last, what earlier versions' reports
// left in the books (automatic profit vouchers, the ledger's balance rows) is removed.
UpgradeResult UpdateDatabase(const QSqlDatabase& db);

// The SQL of the stored queries viennit, viennitA and viennitL.
QString querySql(const QString& name);

} // namespace Schema
