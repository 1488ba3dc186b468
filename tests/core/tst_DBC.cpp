#include "TestEnv.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"

#include <QTest>

class tst_DBC : public QObject {
    Q_OBJECT

private slots:
    void switchClosesAndReopensTwice();
    void closeIsSafeAndReopens();
    void missingFileGivesClosedDatabase();
};

void tst_DBC::switchClosesAndReopensTwice()
{
    TestEnv env;
    const QString a = env.path(QStringLiteral("a.mdb"));
    const QString b = env.path(QStringLiteral("b.mdb"));
    QVERIFY(TestEnv::createDatabase(a));
    QVERIFY(TestEnv::createDatabase(b));

    DBC& dbc = DBC::instance();
    ProgramSettings::installation().Database = a;
    const int opens = dbc.openCount();
    const QString firstName = dbc.AvaaDB().connectionName();
    // While the setting stays, the same connection is given without opening the file again.
    QCOMPARE(dbc.AvaaDB().connectionName(), firstName);
    QCOMPARE(dbc.openCount(), opens + 1);

    ProgramSettings::installation().Database = b;
    QSqlDatabase switched = dbc.AvaaDB();
    QVERIFY(switched.isOpen());
    QVERIFY(switched.connectionName() != firstName);
    QVERIFY(!QSqlDatabase::contains(firstName));
    QCOMPARE(switched.databaseName(), b);
    // After a switch the connection is not marked open: the next call opens the file again.
    QVERIFY(!dbc.isOpen());
    QCOMPARE(dbc.openCount(), opens + 2);
    QSqlDatabase again = dbc.AvaaDB();
    QCOMPARE(dbc.openCount(), opens + 3);
    QVERIFY(dbc.isOpen());
    QCOMPARE(dbc.path(), b);
    QCOMPARE(dbc.AvaaDB().connectionName(), again.connectionName());
    QCOMPARE(dbc.openCount(), opens + 3);
}

void tst_DBC::closeIsSafeAndReopens()
{
    TestEnv env;
    const QString file = env.path(QStringLiteral("a.mdb"));
    QVERIFY(TestEnv::createDatabase(file));
    DBC& dbc = DBC::instance();
    dbc.SuljeDB();
    dbc.SuljeDB();
    QCOMPARE(dbc.path(), QString());
    ProgramSettings::installation().Database = file;
    const QString name = dbc.AvaaDB().connectionName();
    dbc.SuljeDB();
    QVERIFY(!dbc.isOpen());
    QVERIFY(!QSqlDatabase::contains(name));
    QVERIFY(dbc.AvaaDB().isOpen());
}

void tst_DBC::missingFileGivesClosedDatabase()
{
    TestEnv env;
    ProgramSettings::installation().Database = env.path(QStringLiteral("ei-ole.mdb"));
    QSqlDatabase db = DBC::instance().AvaaDB();
    QVERIFY(!db.isOpen());
    QVERIFY(!DBC::instance().isOpen());
    // Opening never creates the missing file.
    QVERIFY(!QFile::exists(env.path(QStringLiteral("ei-ole.mdb"))));
}

QTEST_GUILESS_MAIN(tst_DBC)
#include "tst_DBC.moc"
