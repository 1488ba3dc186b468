#include "TestEnv.h"
#include "core/DBC.h"
#include "core/ProgramSettings.h"

#include <QTest>

class tst_DBC : public QObject {
    Q_OBJECT

private slots:
    void switchReopensAndCloseReleases();
};

void tst_DBC::switchReopensAndCloseReleases()
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
    QCOMPARE(dbc.AvaaDB().databaseName(), b);
    QVERIFY(!QSqlDatabase::contains(firstName));
    // After a switch the connection is not marked open: the next call opens the file again.
    QVERIFY(!dbc.isOpen());
    const QString name = dbc.AvaaDB().connectionName();
    QCOMPARE(dbc.openCount(), opens + 3);

    // Closing releases the connection and a second close is harmless. A missing file gives a
    // closed database and is never created; the books open again after it.
    dbc.SuljeDB();
    dbc.SuljeDB();
    QVERIFY(!QSqlDatabase::contains(name));
    const QString missing = env.path(QStringLiteral("ei-ole.mdb"));
    ProgramSettings::installation().Database = missing;
    QVERIFY(!dbc.AvaaDB().isOpen());
    QVERIFY(!dbc.isOpen());
    QVERIFY(!QFile::exists(missing));
    ProgramSettings::installation().Database = b;
    QVERIFY(dbc.AvaaDB().isOpen());
}

QTEST_GUILESS_MAIN(tst_DBC)
#include "tst_DBC.moc"
