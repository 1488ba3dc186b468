#include "core/Schema.h"

#include "core/DatabaseError.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace {

const char* const CoreTables[] = {
    R"(CREATE TABLE tl (tlID INTEGER PRIMARY KEY AUTOINCREMENT, tlNumero INTEGER, tlNimi TEXT,
        tlKuvaus TEXT, tlAlkusaldo INTEGER DEFAULT 0, tlLoppusaldo INTEGER DEFAULT 0))",
    R"(CREATE TABLE "to" (toID INTEGER PRIMARY KEY AUTOINCREMENT, toNumero INTEGER, toPvm TEXT,
        toSelite TEXT, toAvaustosite INTEGER NOT NULL DEFAULT 0))",
    R"(CREATE TABLE toE (toEID INTEGER PRIMARY KEY AUTOINCREMENT, toENumero INTEGER, toEPvm TEXT,
        toESelite TEXT, toEAvaustosite INTEGER NOT NULL DEFAULT 0))",
    R"(CREATE TABLE vi (viID INTEGER PRIMARY KEY AUTOINCREMENT, vitoID INTEGER, vitlID INTEGER,
        viTyyppi TEXT, viArvo INTEGER DEFAULT 0, viSelite TEXT, viAvausvienti INTEGER NOT NULL DEFAULT 0))",
    R"(CREATE TABLE viE (viEID INTEGER PRIMARY KEY AUTOINCREMENT, viEtoID INTEGER, viEtlID INTEGER,
        viETyyppi TEXT, viEArvo INTEGER DEFAULT 0, viESelite TEXT, viEAvausvienti INTEGER NOT NULL DEFAULT 0))",
    R"(CREATE TABLE ma (maID INTEGER PRIMARY KEY AUTOINCREMENT, maNimi TEXT, maTyyppi INTEGER,
        maSuojattu INTEGER NOT NULL DEFAULT 0))",
    R"(CREATE TABLE mr (mrID INTEGER PRIMARY KEY AUTOINCREMENT, mrmaID INTEGER, mrTeksti TEXT, mrTilit TEXT,
        mrKaava TEXT, mrSaldoPuoli TEXT, mrIsEquation INTEGER NOT NULL DEFAULT 0,
        mrIsLiikevaihto INTEGER NOT NULL DEFAULT 0, mrIsVoitto INTEGER NOT NULL DEFAULT 0,
        mrBelongsToGroup INTEGER DEFAULT 0, mrGroupOrder INTEGER DEFAULT 0))",
    R"(CREATE TABLE tula (tulaID INTEGER PRIMARY KEY AUTOINCREMENT, tulaTeksti TEXT, tulaTyyppi INTEGER,
        tulaMerkki TEXT, tulaIsGroupRow INTEGER NOT NULL DEFAULT 0, tulaToteutunutKuluva INTEGER,
        tulaToteutunutKuluvaAlusta INTEGER, tulaToteutunutEdellinen INTEGER,
        tulaToteutunutEdellinenAlusta INTEGER, tulaMuutosAlusta INTEGER, tulaProsMuutos REAL,
        tulaProsMuutosAlusta REAL, tulaProsLvastaKuluva REAL, tulaProsLvastaKuluvaAlusta REAL))",
    R"(CREATE TABLE tase (taseID INTEGER PRIMARY KEY AUTOINCREMENT, tasetlID INTEGER, taseteksti TEXT,
        taseTyyppi INTEGER, taseMerkki TEXT, taseIsGroupRow INTEGER NOT NULL DEFAULT 0, taseviTyyppi TEXT,
        tasePrintGroup INTEGER, taseAlkusaldo INTEGER, taseLoppusaldo INTEGER,
        taseLoppusaldoEdellinen INTEGER, taseMuutos INTEGER, taseMuutosEdelliseen INTEGER,
        taseMuutosProsEdelliseen REAL))",
};

const QString YesNo = QStringLiteral("INTEGER NOT NULL DEFAULT 0");
const QString Long = QStringLiteral("INTEGER");

struct AddField {
    const char* table;
    const char* field;
    QString type;
};

struct CreateTable {
    const char* table;
    const char* sql;
};

const CreateTable TkTable { "tk",
    "CREATE TABLE tk (tkID INTEGER PRIMARY KEY AUTOINCREMENT, tkTeksti TEXT, tkTyyppi INTEGER, tkParam "
    "INTEGER)" };
const CreateTable SettingsTable { "Settings",
    "CREATE TABLE Settings (setID INTEGER PRIMARY KEY AUTOINCREMENT, setSection TEXT, setKey TEXT, "
    "setString TEXT)" };
const CreateTable TlSaldotTable { "tlSaldot",
    "CREATE TABLE tlSaldot (tlsID INTEGER PRIMARY KEY AUTOINCREMENT, Tili TEXT, Debet INTEGER, Kredit "
    "INTEGER, "
    "Erotus INTEGER)" };
const CreateTable TlTarkastelutTable { "tlTarkastelut",
    "CREATE TABLE tlTarkastelut (tltID INTEGER PRIMARY KEY AUTOINCREMENT, Numero INTEGER, Paiva TEXT, "
    "Selite TEXT, Debet INTEGER, Kredit INTEGER, Erotus INTEGER)" };
const CreateTable TpPohjatTable { "tpPohjat",
    "CREATE TABLE tpPohjat (tpID INTEGER PRIMARY KEY AUTOINCREMENT, Nimi TEXT, Selite TEXT, "
    "Pikavalinta INTEGER)" };
const CreateTable VipPohjatTable { "vipPohjat",
    "CREATE TABLE vipPohjat (vipID INTEGER PRIMARY KEY AUTOINCREMENT, viptlID INTEGER, viptpID INTEGER, "
    "vipTyyppi TEXT, vipArvo INTEGER)" };

// The bank statement lines stored as vouchers: each line once per bank account, with what the
// next statement learns from (reference, counterparty, message and the voucher's counter-entry).
const CreateTable BankLinesTable { "BankLines",
    "CREATE TABLE BankLines (blID INTEGER PRIMARY KEY AUTOINCREMENT, blIban TEXT NOT NULL, blArchiveRef TEXT "
    "NOT NULL, blAccount INTEGER, blVoucher INTEGER, blCounterAccount INTEGER, blDate TEXT, blAmount "
    "INTEGER, blReference TEXT, blCounterparty TEXT, blCounterpartyAccount TEXT, blMessage TEXT, UNIQUE "
    "(blIban, blArchiveRef))" };

const CreateTable* const UpgradeTables[] = { &TkTable, &SettingsTable, &TlSaldotTable, &TlTarkastelutTable,
    &TpPohjatTable, &VipPohjatTable, &BankLinesTable };

// The work tables of the reports in their current layout. Reports never write the books: each
// connection gets these as TEMP tables, which SQLite finds before the file's tables of the same
// names, so the file stays byte-identical and read-only books print. The ledger's balances
// (paakirjaSaldot) have no table in the file at all.
const char* const WorkTables[] = {
    "CREATE TEMP TABLE IF NOT EXISTS tula (tulaID INTEGER PRIMARY KEY, tulaTeksti TEXT, tulaTyyppi INTEGER, "
    "tulaMerkki TEXT, tulaIsGroupRow INTEGER NOT NULL DEFAULT 0, tulaToteutunutKuluva INTEGER, "
    "tulaToteutunutKuluvaAlusta INTEGER, tulaToteutunutEdellinen INTEGER, tulaToteutunutEdellinenAlusta "
    "INTEGER, tulaMuutosAlusta INTEGER, tulaProsMuutos REAL, tulaProsMuutosAlusta REAL, tulaProsLvastaKuluva "
    "REAL, tulaProsLvastaKuluvaAlusta REAL, tulamrID INTEGER)",
    "CREATE TEMP TABLE IF NOT EXISTS tase (taseID INTEGER PRIMARY KEY, tasetlID INTEGER, taseteksti TEXT, "
    "taseTyyppi INTEGER, taseMerkki TEXT, taseIsGroupRow INTEGER NOT NULL DEFAULT 0, taseviTyyppi TEXT, "
    "tasePrintGroup INTEGER, taseAlkusaldo INTEGER, taseLoppusaldo INTEGER, taseLoppusaldoEdellinen INTEGER, "
    "taseMuutos INTEGER, taseMuutosEdelliseen INTEGER, taseMuutosProsEdelliseen REAL, tasemrID INTEGER)",
    "CREATE TEMP TABLE IF NOT EXISTS tk (tkID INTEGER PRIMARY KEY, tkTeksti TEXT, tkTyyppi INTEGER, tkParam "
    "INTEGER)",
    "CREATE TEMP TABLE IF NOT EXISTS tlSaldot (tlsID INTEGER PRIMARY KEY, Tili TEXT, Debet INTEGER, Kredit "
    "INTEGER, Erotus INTEGER)",
    "CREATE TEMP TABLE IF NOT EXISTS tlTarkastelut (tltID INTEGER PRIMARY KEY, Numero INTEGER, Paiva TEXT, "
    "Selite TEXT, Debet INTEGER, Kredit INTEGER, Erotus INTEGER)",
    "CREATE TEMP TABLE IF NOT EXISTS paakirjaSaldot (tlID INTEGER PRIMARY KEY, Pvm TEXT, Alkusaldo INTEGER, "
    "Loppusaldo INTEGER)",
};

// Fields of the template rows that the model databases carry beyond the oldest layout: an
// account and an entry side attached to a row. Added, without a step number, to a book that
// lacks them.
const AddField TemplateRowFields[] = {
    { "mr", "mrtlID", QStringLiteral("INTEGER DEFAULT 0") },
    { "mr", "mrviTyyppi", QStringLiteral("TEXT") },
};

const char* const Indexes[] = {
    "CREATE INDEX ix_vi_vitoID ON vi (vitoID, viTyyppi)",
    "CREATE INDEX ix_vi_vitlID ON vi (vitlID)",
    "CREATE INDEX ix_viE_viEtoID ON viE (viEtoID, viETyyppi)",
    "CREATE INDEX ix_viE_viEtlID ON viE (viEtlID)",
    "CREATE INDEX ix_to_toNumero ON \"to\" (toNumero)",
    "CREATE INDEX ix_to_toPvm ON \"to\" (toPvm)",
    "CREATE INDEX ix_toE_toENumero ON toE (toENumero)",
    "CREATE INDEX ix_toE_toEPvm ON toE (toEPvm)",
    "CREATE INDEX ix_tl_tlNumero ON tl (tlNumero)",
    "CREATE INDEX ix_mr_group ON mr (mrmaID, mrBelongsToGroup, mrGroupOrder)",
    // Only the automatic rows, which the profit entries delete and make again on every run.
    "CREATE INDEX ix_to_toAutomaatti ON \"to\" (toAutomaatti) WHERE toAutomaatti <> 0",
    "CREATE INDEX ix_vi_viAutomaatti ON vi (viAutomaatti) WHERE viAutomaatti <> 0",
    "CREATE INDEX ix_toE_toEAutomaatti ON toE (toEAutomaatti) WHERE toEAutomaatti <> 0",
    "CREATE INDEX ix_viE_viEAutomaatti ON viE (viEAutomaatti) WHERE viEAutomaatti <> 0",
    "CREATE INDEX ix_Settings_key ON Settings (setSection, setKey)",
};

QString quoted(const QString& name)
{
    return u'"' + QString(name).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

class Upgrader {
public:
    explicit Upgrader(const QSqlDatabase& db)
        : m_db(db)
    {
    }

    // Each returns false when its catalogue call failed; the routine then stops.
    bool addField(int step, const AddField& f)
    {
        if (!Schema::fieldMissing(m_db, QString::fromLatin1(f.table), QString::fromLatin1(f.field)))
            return true;
        return exec(step,
            QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                .arg(quoted(QString::fromLatin1(f.table)), QString::fromLatin1(f.field), f.type));
    }

    bool createTable(int step, const CreateTable& t)
    {
        if (!Schema::tableMissing(m_db, QString::fromLatin1(t.table)))
            return true;
        return exec(step, QString::fromLatin1(t.sql));
    }

    // The stored queries are made again only when their definition differs: an up-to-date
    // book is not written to.
    bool recreateQueries(int step)
    {
        for (const QString& name :
            { QStringLiteral("viennit"), QStringLiteral("viennitA"), QStringLiteral("viennitL") }) {
            const QString create
                = QStringLiteral("CREATE VIEW %1 AS %2").arg(quoted(name), Schema::querySql(name));
            const QString stored = storedSql(QStringLiteral("view"), name);
            if (stored == create)
                continue;
            if (!stored.isNull() && !exec(step, QStringLiteral("DROP VIEW ") + quoted(name)))
                return false;
            if (!exec(step, create))
                return false;
        }
        return true;
    }

    // The indexes that keep queries fast, each made again when its definition has changed.
    bool createIndexes()
    {
        for (const char* sql : Indexes) {
            const QString create = QString::fromLatin1(sql);
            const QString name = create.section(u' ', 2, 2);
            const QString stored = storedSql(QStringLiteral("index"), name);
            if (stored == create)
                continue;
            if (!stored.isNull() && !exec(0, QStringLiteral("DROP INDEX ") + quoted(name)))
                return false;
            if (!exec(0, create))
                return false;
        }
        return true;
    }

    // Earlier versions stored what a report computed: automatic profit vouchers (in both
    // years) and the ledger's balance rows under a voucher numbered below 0. They are no
    // bookkeeping of the user's and would unbalance the journal, so they go; a book without them
    // is not written to.
    bool removeReportLeftovers()
    {
        const char* const leftovers[][2] = {
            { "SELECT 1 FROM vi WHERE viAutomaatti <> 0 OR vitoID IN (SELECT toID FROM \"to\" WHERE toNumero "
              "< 0 "
              "OR toID < 0 OR toAutomaatti <> 0) LIMIT 1",
                "DELETE FROM vi WHERE viAutomaatti <> 0 OR vitoID IN (SELECT toID FROM \"to\" WHERE toNumero "
                "< "
                "0 OR toID < 0 OR toAutomaatti <> 0)" },
            { "SELECT 1 FROM \"to\" WHERE toAutomaatti <> 0 OR toNumero < 0 OR toID < 0 LIMIT 1",
                "DELETE FROM \"to\" WHERE toAutomaatti <> 0 OR toNumero < 0 OR toID < 0" },
            { "SELECT 1 FROM viE WHERE viEAutomaatti <> 0 OR viEtoID IN (SELECT toEID FROM toE WHERE "
              "toEAutomaatti <> 0) LIMIT 1",
                "DELETE FROM viE WHERE viEAutomaatti <> 0 OR viEtoID IN (SELECT toEID FROM toE WHERE "
                "toEAutomaatti <> 0)" },
            { "SELECT 1 FROM toE WHERE toEAutomaatti <> 0 LIMIT 1",
                "DELETE FROM toE WHERE toEAutomaatti <> 0" },
        };
        for (const auto& [present, remove] : leftovers) {
            QSqlQuery q(m_db);
            if (q.exec(QString::fromLatin1(present)) && q.next() && !exec(0, QString::fromLatin1(remove)))
                return false;
        }
        return true;
    }

    // The definition the book holds, or a null string when it has none.
    QString storedSql(const QString& type, const QString& name) const
    {
        QSqlQuery q(m_db);
        q.prepare(QStringLiteral("SELECT sql FROM sqlite_master WHERE type = ? AND name = ? COLLATE NOCASE"));
        q.addBindValue(type);
        q.addBindValue(name);
        return q.exec() && q.next() ? q.value(0).toString() : QString();
    }

    bool exec(int step, const QString& sql)
    {
        QSqlQuery q(m_db);
        if (!q.exec(sql)) {
            m_result.ok = false;
            m_result.failedStep = step;
            m_result.error = q.lastError().text();
            return false;
        }
        if (step != 0 && (m_result.appliedSteps.isEmpty() || m_result.appliedSteps.last() != step))
            m_result.appliedSteps.append(step);
        return true;
    }

    Schema::UpgradeResult m_result;

private:
    QSqlDatabase m_db;
};

} // namespace

namespace Schema {

void createCoreTables(const QSqlDatabase& db, const QStringList& only)
{
    for (const char* sql : CoreTables) {
        // "CREATE TABLE name (" or "CREATE TABLE \"to\" (": the name is the third word.
        const QString name = QString::fromLatin1(sql).section(u' ', 2, 2).remove(u'"');
        if (!only.isEmpty() && !only.contains(name, Qt::CaseInsensitive))
            continue;
        Sql::run(db, QString::fromLatin1(sql)).finish();
    }
}

bool tableMissing(const QSqlDatabase& db, const QString& table)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE NOCASE"));
    q.addBindValue(table);
    return !(q.exec() && q.next());
}

bool fieldMissing(const QSqlDatabase& db, const QString& table, const QString& field)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT 1 FROM pragma_table_info(?) WHERE name = ? COLLATE NOCASE"));
    q.addBindValue(table);
    q.addBindValue(field);
    return !(q.exec() && q.next());
}

bool queryPresent(const QSqlDatabase& db, const QString& query)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'view' AND name = ? COLLATE NOCASE"));
    q.addBindValue(query);
    return q.exec() && q.next();
}

QStringList missingCoreTables(const QSqlDatabase& db)
{
    QStringList missing;
    for (const char* name : { "tl", "to", "toE", "vi", "viE", "ma", "mr" })
        if (tableMissing(db, QString::fromLatin1(name)))
            missing.append(QString::fromLatin1(name));
    return missing;
}

QStringList tableNames()
{
    QStringList names;
    for (const char* sql : CoreTables)
        names.append(QString::fromLatin1(sql).section(u' ', 2, 2).remove(u'"'));
    for (const CreateTable* t : UpgradeTables)
        names.append(QString::fromLatin1(t->table));
    return names;
}

void createUpgradeTable(const QSqlDatabase& db, const QString& table)
{
    for (const CreateTable* t : UpgradeTables)
        if (table.compare(QLatin1String(t->table), Qt::CaseInsensitive) == 0) {
            Sql::run(db, QString::fromLatin1(t->sql)).finish();
            return;
        }
    throw DatabaseError(QStringLiteral("Taulua %1 ei ole Vorkamin rakenteessa.").arg(table));
}

void reserveIds(const QSqlDatabase& db, const QString& table, qint64 lastUsed)
{
    // SQLite keeps the last number of an AUTOINCREMENT key in sqlite_sequence.
    QSqlQuery q = Sql::run(db, QStringLiteral("UPDATE sqlite_sequence SET seq = max(seq, ?) WHERE name = ?"),
        { lastUsed, table });
    if (q.numRowsAffected() == 0)
        Sql::run(
            db, QStringLiteral("INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)"), { table, lastUsed })
            .finish();
}

void createWorkTables(const QSqlDatabase& db)
{
    for (const char* sql : WorkTables)
        Sql::run(db, QString::fromLatin1(sql)).finish();
}

QString querySql(const QString& name)
{
    const QString columns = QStringLiteral(
        "SELECT tl.tlNimi, tl.tlNumero, vi.vitoID, vi.viTyyppi, vi.viArvo, vi.vitlID, vi.viID, vi.viSelite, "
        "vi.viAvausvienti, vi.viPaatosvienti, vi.viAutomaatti FROM vi INNER JOIN tl ON vi.vitlID = tl.tlID ");
    if (name == QLatin1String("viennit"))
        return columns + QStringLiteral("WHERE vi.viAvausvienti = 0");
    if (name == QLatin1String("viennitA"))
        return columns + QStringLiteral("WHERE vi.viAvausvienti <> 0");
    if (name == QLatin1String("viennitL"))
        return columns + QStringLiteral("WHERE vi.viPaatosvienti <> 0");
    return {};
}

UpgradeResult UpdateDatabase(const QSqlDatabase& db)
{
    Upgrader u(db);
    const bool done = u.addField(1, { "vi", "viPaatosvienti", YesNo }) //
        && u.addField(2, { "viE", "viEPaatosvienti", YesNo }) //
        && u.addField(3, { "to", "toPaatostosite", YesNo }) //
        && u.addField(4, { "toE", "toEPaatostosite", YesNo }) //
        && u.createTable(5, TkTable) //
        && u.addField(6, { "tula", "tulamrID", Long }) //
        && u.addField(7, { "tase", "tasemrID", Long }) //
        // No default: accounts that existed before read as not printed.
        && u.addField(8, { "tl", "tlPrint", Long }) //
        && u.createTable(9, SettingsTable) //
        && u.addField(10, { "ma", "maTulosMaID", Long }) //
        && u.addField(11, { "vi", "viAutomaatti", YesNo }) //
        && u.recreateQueries(12) //
        && u.addField(13, { "viE", "viEAutomaatti", YesNo }) //
        && u.addField(13, { "to", "toAutomaatti", YesNo }) //
        && u.addField(13, { "toE", "toEAutomaatti", YesNo }) //
        && u.createTable(14, TlSaldotTable) //
        && u.createTable(15, TlTarkastelutTable) //
        && u.createTable(16, TpPohjatTable) //
        && u.createTable(17, VipPohjatTable) //
        && u.createTable(18, BankLinesTable);
    if (done) {
        for (const AddField& f : TemplateRowFields)
            if (!u.addField(0, f))
                return u.m_result;
        if (u.createIndexes())
            u.removeReportLeftovers();
    }
    return u.m_result;
}

} // namespace Schema
