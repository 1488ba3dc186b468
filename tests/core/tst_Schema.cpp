#include "TestEnv.h"
#include "core/Schema.h"

#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

namespace {

QStringList columns(QSqlDatabase& db, const QString& table)
{
    QStringList result;
    QSqlQuery q(db);
    q.exec(QStringLiteral("SELECT name FROM pragma_table_info('%1')").arg(table));
    while (q.next())
        result.append(q.value(0).toString());
    return result;
}

QString objectSql(QSqlDatabase& db, const QString& name)
{
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT sql FROM sqlite_master WHERE name = ?"));
    q.addBindValue(name);
    return q.exec() && q.next() ? q.value(0).toString() : QString();
}

// Runs `work` on new books of `layout` (see TestEnv::createDatabase) in a folder of the test's own.
template <typename Work> void onNewBooks(TestEnv::Layout layout, Work work)
{
    TestEnv env;
    const QString file = env.path(QStringLiteral("seura.mdb"));
    QVERIFY(TestEnv::createDatabase(file, layout));
    withDatabase(file, work);
}

} // namespace

class tst_Schema : public QObject {
    Q_OBJECT

private slots:
    void oldestLayoutGetsAllSteps();
    void queriesSelectTheRightEntries();
    void foreignQueryIsReplaced();
    void failingStepResumesNextTime();
    void reportLeftoversRemoved();
};

void tst_Schema::oldestLayoutGetsAllSteps()
{
    onNewBooks(TestEnv::Layout::Oldest, [](QSqlDatabase& db) {
        QVERIFY(Schema::fieldMissing(db, QStringLiteral("vi"), QStringLiteral("viPaatosvienti")));
        QVERIFY(Schema::tableMissing(db, QStringLiteral("Settings")));
        const Schema::UpgradeResult r = Schema::UpdateDatabase(db);
        QVERIFY2(r.ok, qPrintable(r.error));
        QCOMPARE(r.appliedSteps, (QList<int> { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17 }));
        // The added fields went to the end of each table, in the order of the steps.
        QCOMPARE(columns(db, QStringLiteral("vi")).mid(7),
            (QStringList { QStringLiteral("viPaatosvienti"), QStringLiteral("viAutomaatti") }));
        QCOMPARE(columns(db, QStringLiteral("to")).mid(5),
            (QStringList { QStringLiteral("toPaatostosite"), QStringLiteral("toAutomaatti") }));
        for (const char* t : { "tk", "Settings", "tlSaldot", "tlTarkastelut", "tpPohjat", "vipPohjat" })
            QVERIFY2(!Schema::tableMissing(db, QString::fromLatin1(t)), t);
        // Names are compared without regard to case, as older code spells them several ways.
        QVERIFY(!Schema::fieldMissing(db, QStringLiteral("TO"), QStringLiteral("ToNumero")));

        // Existing rows: the voucher flags read as no, the account print flag is empty (not printed).
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("SELECT toPaatostosite, toAutomaatti FROM \"to\" WHERE toNumero = 1")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 0);
        QCOMPARE(q.value(1).toInt(), 0);
        QVERIFY(q.exec(QStringLiteral("SELECT COUNT(*) FROM tl WHERE tlPrint IS NULL")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 3);
        // The indexes that keep entry and voucher queries fast exist.
        QVERIFY(!objectSql(db, QStringLiteral("ix_vi_vitoID")).isEmpty());
        QVERIFY(!objectSql(db, QStringLiteral("ix_to_toNumero")).isEmpty());
        // The added tables' automatic keys are never reused, even after the newest row is deleted.
        QVERIFY(q.exec(QStringLiteral("INSERT INTO tk (tkTeksti) VALUES ('a')")));
        QVERIFY(q.exec(QStringLiteral("DELETE FROM tk")));
        QVERIFY(q.exec(QStringLiteral("INSERT INTO tk (tkTeksti) VALUES ('b')")));
        QVERIFY(q.exec(QStringLiteral("SELECT tkID FROM tk")) && q.next());
        QCOMPARE(q.value(0).toInt(), 2);
    });
}

void tst_Schema::queriesSelectTheRightEntries()
{
    onNewBooks(TestEnv::Layout::Current, [](QSqlDatabase& db) {
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viAvausvienti, "
                                      "viPaatosvienti) VALUES (1, 1, 'D', 10, 1, 0), (1, 2, 'K', 10, 1, 0), "
                                      "(1, 1, 'D', 20, 0, 1), (1, 99, 'K', 20, 0, 1)")));
        const auto count = [&](const QString& view) {
            QSqlQuery c(db);
            c.exec(QStringLiteral("SELECT COUNT(*), SUM(viArvo) FROM ") + view);
            c.next();
            return QStringLiteral("%1/%2").arg(c.value(0).toInt()).arg(c.value(1).toLongLong());
        };
        // Two ordinary entries from the test database plus the closing entry whose account exists.
        QCOMPARE(count(QStringLiteral("viennit")), QStringLiteral("3/510020"));
        QCOMPARE(count(QStringLiteral("viennitA")), QStringLiteral("2/20"));
        QCOMPARE(count(QStringLiteral("viennitL")), QStringLiteral("1/20"));
        QVERIFY(q.exec(QStringLiteral("SELECT * FROM viennit")));
        QCOMPARE(q.record().count(), 11);
        QCOMPARE(q.record().fieldName(0), QStringLiteral("tlNimi"));
    });
}

void tst_Schema::foreignQueryIsReplaced()
{
    onNewBooks(TestEnv::Layout::Current, [](QSqlDatabase& db) {
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("DROP VIEW viennit")));
        QVERIFY(q.exec(QStringLiteral("CREATE VIEW viennit AS SELECT 1 AS x")));
        QVERIFY(Schema::UpdateDatabase(db).ok);
        QVERIFY(objectSql(db, QStringLiteral("viennit")).contains(QStringLiteral("vi.viAvausvienti = 0")));
    });
}

void tst_Schema::failingStepResumesNextTime()
{
    onNewBooks(TestEnv::Layout::Oldest, [](QSqlDatabase& db) {
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("DROP TABLE toE")));
        Schema::UpgradeResult r = Schema::UpdateDatabase(db);
        QVERIFY(!r.ok);
        QCOMPARE(r.failedStep, 4);
        QCOMPARE(r.appliedSteps, (QList<int> { 1, 2, 3 }));
        QVERIFY(Schema::tableMissing(db, QStringLiteral("tk")));

        QVERIFY(q.exec(
            QStringLiteral("CREATE TABLE toE (toEID INTEGER PRIMARY KEY AUTOINCREMENT, toENumero INTEGER, "
                           "toEPvm TEXT, toESelite TEXT, toEAvaustosite INTEGER NOT NULL DEFAULT 0)")));
        r = Schema::UpdateDatabase(db);
        QVERIFY2(r.ok, qPrintable(r.error));
        QCOMPARE(r.appliedSteps.first(), 4);
        QCOMPARE(r.appliedSteps.size(), 14);
    });
}

// Vouchers that earlier versions' reports stored in the books go; the user's vouchers stay.
void tst_Schema::reportLeftoversRemoved()
{
    onNewBooks(TestEnv::Layout::Current, [](QSqlDatabase& db) {
        QSqlQuery q(db);
        // The book holds vouchers 1…401 of the user, entries on voucher 1.
        for (const char* sql : {
                 "INSERT INTO \"to\" (toID, toNumero, toPvm, toSelite, toAutomaatti) "
                 "VALUES (900, 402, '2011-12-31', 'Automaattikirjaukset', 1)",
                 "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viAutomaatti) VALUES (900, 1, 'K', 5, 1)",
                 "INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viAutomaatti) VALUES (900, 2, 'K', 5, 1)",
                 "INSERT INTO \"to\" (toID, toNumero, toSelite) VALUES (-1, -1, 'Alkusaldo')",
                 "INSERT INTO vi (vitoID, vitlID) VALUES (-1, 1), (-1, 2)",
                 "INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAutomaatti) "
                 "VALUES (7, 7, '2010-12-31', 'Automaattikirjaukset', 1)",
                 "INSERT INTO viE (viEtoID, viEtlID, viETyyppi, viEArvo, viEAutomaatti) VALUES (7, 1, 'D', "
                 "3, 1)",
             })
            QVERIFY2(q.exec(QString::fromLatin1(sql)), sql);
        QVERIFY(Schema::UpdateDatabase(db).ok);
        QVERIFY(q.exec(
            QStringLiteral("SELECT (SELECT COUNT(*) || ' ' || MIN(toID) || '-' || MAX(toID) FROM \"to\") "
                           "|| '|' || (SELECT group_concat(vitoID) FROM vi) || '|' || (SELECT COUNT(*) "
                           "FROM toE) || (SELECT COUNT(*) FROM viE)")));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toString(), QStringLiteral("401 1-401|1,1|00"));
    });
}

QTEST_GUILESS_MAIN(tst_Schema)
#include "tst_Schema.moc"
