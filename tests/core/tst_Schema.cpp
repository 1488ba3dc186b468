#include "TestEnv.h"
#include "core/DatabaseError.h"
#include "core/Schema.h"

#include <QSqlQuery>
#include <QTest>

namespace {

// The first value of `sql`'s first row, as text.
QString valueOf(QSqlDatabase& db, const QString& sql)
{
    QSqlQuery q(db);
    return q.exec(sql) && q.next() ? q.value(0).toString() : QStringLiteral("(ei tulosta)");
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
    void oldestLayoutGetsAllStepsAfterAFailedOne();
    void foreignQueryIsReplacedByOneThatSelectsTheRightEntries();
    void reportLeftoversRemoved();
};

// A step that fails stops the upgrade where it is; the next start goes on from that step.
void tst_Schema::oldestLayoutGetsAllStepsAfterAFailedOne()
{
    onNewBooks(TestEnv::Layout::Oldest, [](QSqlDatabase& db) {
        QVERIFY(Schema::fieldMissing(db, QStringLiteral("vi"), QStringLiteral("viPaatosvienti")));
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("ALTER TABLE toE RENAME TO toE_pois")));
        Schema::UpgradeResult r = Schema::UpdateDatabase(db);
        QVERIFY(!r.ok);
        QCOMPARE(r.appliedSteps, (QList<int> { 1, 2, 3 }));
        QVERIFY(Schema::tableMissing(db, QStringLiteral("tk")));

        QVERIFY(q.exec(QStringLiteral("ALTER TABLE toE_pois RENAME TO toE")));
        r = Schema::UpdateDatabase(db);
        QVERIFY2(r.ok, qPrintable(r.error));
        QCOMPARE(r.appliedSteps, (QList<int> { 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18 }));
        for (const char* t : { "tk", "Settings", "tlSaldot", "tlTarkastelut", "tpPohjat", "vipPohjat" })
            QVERIFY2(!Schema::tableMissing(db, QString::fromLatin1(t)), t);
        // Names are compared without regard to case, as older code spells them several ways.
        QVERIFY(!Schema::fieldMissing(db, QStringLiteral("TO"), QStringLiteral("ToNumero")));

        // The added tables' automatic keys are never reused, even after the newest row is deleted.
        Sql::runScript(db,
            QStringLiteral("INSERT INTO tk (tkTeksti) VALUES ('a'); DELETE FROM tk; "
                           "INSERT INTO tk (tkTeksti) VALUES ('b');"));
        // Existing rows: the voucher flags read as no, the account print flag is empty (not printed).
        QCOMPARE(valueOf(db,
                     QStringLiteral(
                         "SELECT (SELECT toPaatostosite || toAutomaatti FROM \"to\" WHERE toNumero = 1) "
                         "|| '|' || (SELECT COUNT(*) FROM tl WHERE tlPrint IS NULL) || '|' || "
                         "(SELECT tkID FROM tk)")),
            QStringLiteral("00|3|2"));
    });
}

// A query of the same name that Vorkam did not make is replaced by Vorkam's own.
void tst_Schema::foreignQueryIsReplacedByOneThatSelectsTheRightEntries()
{
    onNewBooks(TestEnv::Layout::Current, [](QSqlDatabase& db) {
        Sql::runScript(db, QStringLiteral("DROP VIEW viennit; CREATE VIEW viennit AS SELECT 1 AS x;"));
        QVERIFY(Schema::UpdateDatabase(db).ok);
        QVERIFY(QSqlQuery(db).exec(
            QStringLiteral("INSERT INTO vi (vitoID, vitlID, viTyyppi, viArvo, viAvausvienti, "
                           "viPaatosvienti) VALUES (1, 1, 'D', 10, 1, 0), (1, 2, 'K', 10, 1, 0), "
                           "(1, 1, 'D', 20, 0, 1), (1, 99, 'K', 20, 0, 1)")));
        const auto count = [&](const char* view) {
            return valueOf(
                db, QStringLiteral("SELECT COUNT(*) || '/' || SUM(viArvo) FROM ") + QLatin1String(view));
        };
        // Two ordinary entries from the test database plus the closing entry whose account exists.
        QCOMPARE(count("viennit"), QStringLiteral("3/510020"));
        QCOMPARE(count("viennitA"), QStringLiteral("2/20"));
        QCOMPARE(count("viennitL"), QStringLiteral("1/20"));
    });
}

// Vouchers that earlier versions' reports stored in the books go; the user's vouchers stay.
void tst_Schema::reportLeftoversRemoved()
{
    onNewBooks(TestEnv::Layout::Current, [](QSqlDatabase& db) {
        // The book holds vouchers 1…401 of the user, entries on voucher 1.
        Sql::runScript(db,
            QStringLiteral("INSERT INTO \"to\" (toID, toNumero, toPvm, toSelite, toAutomaatti) "
                           "VALUES (900, 402, '2011-12-31', 'Automaattikirjaukset', 1);"
                           "INSERT INTO vi (vitoID, vitlID, viAutomaatti) VALUES (900, 1, 1), (900, 2, 1);"
                           "INSERT INTO \"to\" (toID, toNumero, toSelite) VALUES (-1, -1, 'Alkusaldo');"
                           "INSERT INTO vi (vitoID, vitlID) VALUES (-1, 1), (-1, 2);"
                           "INSERT INTO toE (toEID, toENumero, toEPvm, toESelite, toEAutomaatti) "
                           "VALUES (7, 7, '2010-12-31', 'Automaattikirjaukset', 1);"
                           "INSERT INTO viE (viEtoID, viEtlID, viEAutomaatti) VALUES (7, 1, 1);"));
        QVERIFY(Schema::UpdateDatabase(db).ok);
        QCOMPARE(
            valueOf(db,
                QStringLiteral("SELECT (SELECT COUNT(*) || ' ' || MIN(toID) || '-' || MAX(toID) FROM \"to\") "
                               "|| '|' || (SELECT group_concat(vitoID) FROM vi) || '|' || (SELECT COUNT(*) "
                               "FROM toE) || (SELECT COUNT(*) FROM viE)")),
            QStringLiteral("401 1-401|1,1|00"));
    });
}

QTEST_GUILESS_MAIN(tst_Schema)
#include "tst_Schema.moc"
