#pragma once

#include "ScriptedDialogs.h"
#include "TestEnv.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"
#include "core/Schema.h"

#include <QDate>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QVariant>
#include <memory>

// A private, empty association database of the current layout, opened as the program's
// database, with small helpers to put rows in and read them back. A database that cannot be
// made stops the program, so a broken fixture never passes as a result.
class VoucherFixture final {
public:
    VoucherFixture()
    {
        const QString file = env.path(QStringLiteral("data/vouchers.mdb"));
        bool ok = false;
        withDatabase(file, [&ok](QSqlDatabase& db) {
            Schema::createCoreTables(db);
            ok = Schema::UpdateDatabase(db).ok;
        });
        ProgramSettings::installation().Database = file;
        if (!ok || !DBC::instance().AvaaDB().isOpen())
            qFatal("cannot create the voucher test database");
        ProgramSettings::bookkeeping().TilikausiAlku = QDate(2011, 1, 1);
        ProgramSettings::bookkeeping().TilikausiLoppu = QDate(2011, 12, 31);
        ProgramSettings::bookkeeping().LaskettavaTili = 0;
        ProgramSettings::bookkeeping().AutomaattisestiUusiTosite = false;
    }

    static QSqlDatabase db() { return DBC::instance().AvaaDB(); }

    // Runs a statement with bound values; warns with the database's error when it fails.
    static QSqlQuery run(const QString& sql, const QVariantList& values, bool& ok)
    {
        QSqlQuery q(db());
        ok = q.prepare(sql);
        for (const QVariant& v : values)
            q.addBindValue(v);
        ok = ok && q.exec();
        if (!ok)
            qWarning("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return q;
    }

    static bool exec(const QString& sql, const QVariantList& values = {})
    {
        bool ok = false;
        run(sql, values, ok);
        return ok;
    }

    static QVariant value(const QString& sql, const QVariantList& values = {})
    {
        bool ok = false;
        QSqlQuery q = run(sql, values, ok);
        return ok && q.next() ? q.value(0) : QVariant();
    }

    static int count(const QString& table, const QString& where = QStringLiteral("1 = 1"))
    {
        return value(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2").arg(table, where)).toInt();
    }

    // Rows written by this connection so far: tells whether an operation wrote anything.
    static qint64 totalChanges() { return value(QStringLiteral("SELECT total_changes()")).toLongLong(); }

    // kind: "" ordinary, "A" opening, "P" closing. Returns the new key.
    static int addTosite(int numero, const QString& kind = QString(),
        const QString& pvm = QStringLiteral("2011-03-01"), const QString& selite = QStringLiteral("Tosite"))
    {
        exec(QStringLiteral("INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite, toPaatostosite, "
                            "toAutomaatti) VALUES (?, ?, ?, ?, ?, 0)"),
            { numero, pvm, selite, kind == u"A" ? 1 : 0, kind == u"P" ? 1 : 0 });
        return value(QStringLiteral("SELECT MAX(toID) FROM \"to\"")).toInt();
    }

    // A voucher with `raw` on the debit of one account and the credit of another.
    static int addBalanced(int numero, int debet, int kredit, qint64 raw = 1000000,
        const QString& pvm = QStringLiteral("2011-03-01"), const QString& selite = QStringLiteral("Tosite"),
        const QString& kind = QString())
    {
        const int id = addTosite(numero, kind, pvm, selite);
        addVienti(id, debet, QStringLiteral("D"), raw);
        addVienti(id, kredit, QStringLiteral("K"), raw);
        return id;
    }

    static int addVienti(int toId, int tlId, const QString& tyyppi, qint64 raw)
    {
        exec(QStringLiteral(
                 "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) VALUES (?, ?, ?, ?, 'x')"),
            { toId, tlId, tyyppi, raw });
        return value(QStringLiteral("SELECT MAX(viID) FROM vi")).toInt();
    }

    // Makes every later statement of the kind (INSERT, UPDATE, DELETE) on the table fail, as a
    // full disk or a locked file would, to show what a half-done operation leaves behind.
    static bool failOn(const QString& statement, const QString& table)
    {
        return exec(QStringLiteral("CREATE TRIGGER fail_%1_%2 BEFORE %1 ON \"%2\" "
                                   "BEGIN SELECT RAISE(ABORT, 'disk full'); END")
                        .arg(statement, table));
    }

    // A voucher template and its entry patterns. Returns the template's key.
    static int addPohja(
        const QString& nimi, const QVariant& pikavalinta, const QString& selite = QStringLiteral("Vuokra"))
    {
        exec(QStringLiteral("INSERT INTO tpPohjat (Nimi, Selite, Pikavalinta) VALUES (?, ?, ?)"),
            { nimi, selite, pikavalinta });
        return value(QStringLiteral("SELECT MAX(tpID) FROM tpPohjat")).toInt();
    }

    static void addPohjaRivi(int tpId, int tlId, const QString& tyyppi, qint64 raw)
    {
        exec(QStringLiteral(
                 "INSERT INTO vipPohjat (viptpID, viptlID, vipTyyppi, vipArvo) VALUES (?, ?, ?, ?)"),
            { tpId, tlId, tyyppi, raw });
    }

    static int addTili(int numero, const QString& nimi)
    {
        exec(QStringLiteral("INSERT INTO tl (tlNumero, tlNimi, tlKuvaus) VALUES (?, ?, ' ')"),
            { numero, nimi });
        return value(QStringLiteral("SELECT MAX(tlID) FROM tl")).toInt();
    }

    TestEnv env;
};

// The state of a voucher test class between init() and cleanup(): a fresh database in its own
// folders and, unless the test shows no message, scripted dialogs.
class VoucherCase {
protected:
    std::unique_ptr<VoucherFixture> f;
    std::unique_ptr<ScriptedDialogs> dialogs;

    void start(bool withDialogs = true)
    {
        f = std::make_unique<VoucherFixture>();
        if (withDialogs)
            dialogs = std::make_unique<ScriptedDialogs>();
    }
    // Fails the test on a message that no script expected.
    void finish()
    {
        const QStringList failures = dialogs ? dialogs->failures() : QStringList();
        dialogs.reset();
        f.reset();
        QCOMPARE(failures, QStringList());
    }
};
