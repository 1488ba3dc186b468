#include "DatabaseFile.h"
#include "Dates.h"
#include "ProgramSettings.h"
#include "Schema.h"
#include "ScriptedDialogs.h"
#include "Startup.h"
#include "TestEnv.h"

#include <QFile>
#include <QSqlQuery>
#include <QTest>

namespace {

const QString BinDir = QStringLiteral(VORKAM_BIN_DIR);

qint64 scalar(QSqlDatabase& db, const QString& sql)
{
    QSqlQuery q(db);
    if (!q.exec(sql) || !q.next())
        return -999999;
    return q.value(0).toLongLong();
}

// Works on a copy: the built files stay as the build made them.
QString copyOf(const TestEnv& env, const QString& relative)
{
    const QString target = env.path(QFileInfo(relative).fileName());
    QFile::copy(BinDir + u'/' + relative, target);
    QFile::setPermissions(target, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return target;
}

} // namespace

class tst_Models : public QObject {
    Q_OBJECT

private slots:
    void builtInCurrentLayout_data();
    void builtInCurrentLayout();
    void demoIsTheCurrentYear();
    void demoStartsWithItsName();
};

void tst_Models::builtInCurrentLayout_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("model") << QStringLiteral("mallit/perusmalli.mdb");
    QTest::newRow("demo") << QStringLiteral("demo1.mdb");
}

void tst_Models::builtInCurrentLayout()
{
    QFETCH(QString, file);
    TestEnv env;
    const QString copy = copyOf(env, file);
    QVERIFY2(DatabaseFile::examine(copy), qPrintable(copy));
    withDatabase(copy, [](QSqlDatabase& db) {
        QCOMPARE(Schema::UpdateDatabase(db).appliedSteps, QList<int> { 12 });
        QVERIFY(scalar(db, QStringLiteral("SELECT COUNT(*) FROM tl WHERE tlNumero > 0")) >= 40);
        // Names and descriptions obey the record rules: never empty, never too long.
        QCOMPARE(scalar(db,
                     QStringLiteral("SELECT COUNT(*) FROM tl WHERE tlNimi IS NULL OR tlNimi = '' "
                                    "OR length(tlNimi) > 50")),
            0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM mr WHERE length(mrTeksti) > 50")), 0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) - COUNT(DISTINCT tlNumero) FROM tl")), 0);
    });
}

void tst_Models::demoIsTheCurrentYear()
{
    // The build writes the demo for the year it runs in, so the demo is never out of date.
    TestEnv env;
    const QString copy = copyOf(env, QStringLiteral("demo1.mdb"));
    withDatabase(copy, [](QSqlDatabase& db) {
        ProgramSettings::loadBookkeeping(db, QStringLiteral("demo1.mdb"));
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        QCOMPARE(s.TilikausiAlku, QDate(QDate::currentDate().year(), 1, 1));
        QCOMPARE(s.TilikausiLoppu, QDate(QDate::currentDate().year(), 12, 31));
        QVERIFY(s.LaskettavaTili > 0);
        QVERIFY(s.VoittoTaseella > 0);
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT MIN(toPvm), MAX(toPvm), COUNT(*) FROM \"to\""));
        QVERIFY(q.exec() && q.next());
        QCOMPARE(Dates::fromSql(q.value(0).toString()), s.TilikausiAlku);
        QVERIFY(Dates::fromSql(q.value(1).toString()) <= s.TilikausiLoppu);
        QVERIFY(q.value(2).toInt() >= 50);
    });
}

void tst_Models::demoStartsWithItsName()
{
    TestEnv env;
    ScriptedDialogs dialogs;
    const QString copy = copyOf(env, QStringLiteral("demo1.mdb"));
    env.writeIni("[VORKAM]\nDatabase=" + copy.toUtf8() + "\n");
    Startup startup;
    startup.formatCurrency = [] { return QStringLiteral("1,00 €"); };
    const Startup::Result r = startup.run();
    QCOMPARE(dialogs.transcript(), QStringList());
    QVERIFY(r.databaseOpen);
    QVERIFY(!ProgramSettings::bookkeeping().Seurannimi.isEmpty());
    QCOMPARE(
        r.caption, QStringLiteral("Vorkam - %1 - demo1.mdb").arg(ProgramSettings::bookkeeping().Seurannimi));
    QVERIFY(ProgramSettings::bookkeeping().Seurannimi != QStringLiteral("demo1"));
}

QTEST_GUILESS_MAIN(tst_Models)
#include "tst_Models.moc"
