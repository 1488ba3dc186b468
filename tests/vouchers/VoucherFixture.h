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
#include <memory>

// A private, empty association database opened as the program's database, scripted dialogs, and
// helpers to put rows in and read them back. A database that cannot be made stops the program.
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
    }

    static QSqlDatabase db() { return DBC::instance().AvaaDB(); }

    // Runs a statement with bound values; warns with the database's error when it fails.
    static QSqlQuery run(const QString& sql, const QVariantList& values = {})
    {
        QSqlQuery q(db());
        q.prepare(sql);
        for (const QVariant& v : values)
            q.addBindValue(v);
        if (!q.exec())
            qWarning("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return q;
    }

    static bool exec(const QString& sql, const QVariantList& values = {})
    {
        return run(sql, values).isActive();
    }

    // The key of the row that an INSERT made.
    static int insert(const QString& sql, const QVariantList& values)
    {
        return run(sql, values).lastInsertId().toInt();
    }

    static QVariant value(const QString& sql, const QVariantList& values = {})
    {
        QSqlQuery q = run(sql, values);
        return q.next() ? q.value(0) : QVariant();
    }

    static int count(const QString& table, const QString& where = QStringLiteral("1 = 1"))
    {
        return value(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2").arg(table, where)).toInt();
    }

    // Rows written by this connection so far: tells whether an operation wrote anything.
    static qint64 totalChanges() { return value(QStringLiteral("SELECT total_changes()")).toLongLong(); }

    // kind: "" ordinary, "A" opening, "P" closing.
    static int addTosite(int numero, const QString& kind = QString(),
        const QString& pvm = QStringLiteral("2011-03-01"), const QString& selite = QStringLiteral("Tosite"))
    {
        return insert(QStringLiteral("INSERT INTO \"to\" (toNumero, toPvm, toSelite, toAvaustosite, "
                                     "toPaatostosite, toAutomaatti) VALUES (?, ?, ?, ?, ?, 0)"),
            { numero, pvm, selite, kind == u"A" ? 1 : 0, kind == u"P" ? 1 : 0 });
    }

    static int addVienti(int toId, int tlId, const QString& tyyppi, qint64 raw)
    {
        return insert(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viSelite) "
                                     "VALUES (?, ?, ?, ?, 'x')"),
            { toId, tlId, tyyppi, raw });
    }

    // `raw` on the debit of one account and the credit of another; returns the voucher's key.
    static int addBalanced(int toId, int debet, int kredit, qint64 raw = 1000000)
    {
        addVienti(toId, debet, QStringLiteral("D"), raw);
        addVienti(toId, kredit, QStringLiteral("K"), raw);
        return toId;
    }

    // Makes every later statement of the kind (INSERT, UPDATE, DELETE) on the table fail, as a
    // full disk or a locked file would, to show what a half-done operation leaves behind.
    static bool failOn(const QString& statement, const QString& table)
    {
        return exec(QStringLiteral("CREATE TRIGGER fail_%1_%2 BEFORE %1 ON \"%2\" "
                                   "BEGIN SELECT RAISE(ABORT, 'disk full'); END")
                        .arg(statement, table));
    }

    // A voucher template with its entry patterns (account, "D" or "K", amount).
    static int addPohja(const QString& nimi, const QVariant& pikavalinta, const QString& selite,
        const QList<std::tuple<int, const char*, qint64>>& rivit)
    {
        const int tp
            = insert(QStringLiteral("INSERT INTO tpPohjat (Nimi, Selite, Pikavalinta) VALUES (?, ?, ?)"),
                { nimi, selite, pikavalinta });
        for (const auto& [tlId, tyyppi, raw] : rivit)
            exec(QStringLiteral(
                     "INSERT INTO vipPohjat (viptpID, viptlID, vipTyyppi, vipArvo) VALUES (?, ?, ?, ?)"),
                { tp, tlId, QString::fromLatin1(tyyppi), raw });
        return tp;
    }

    static int addTili(int numero, const QString& nimi)
    {
        return insert(QStringLiteral("INSERT INTO tl (tlNumero, tlNimi, tlKuvaus) VALUES (?, ?, ' ')"),
            { numero, nimi });
    }

    TestEnv env;
    ScriptedDialogs dialogs;
};

// The state of a voucher test class between init() and cleanup().
class VoucherCase {
protected:
    std::unique_ptr<VoucherFixture> f;

    void start() { f = std::make_unique<VoucherFixture>(); }
    // Fails the test on a message that no script expected.
    void finish()
    {
        const QStringList failures = f->dialogs.failures();
        f.reset();
        QCOMPARE(failures, QStringList());
    }
};
