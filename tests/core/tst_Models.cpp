#include "DatabaseFile.h"
#include "ProgramSettings.h"
#include "ScriptedDialogs.h"
#include "Schema.h"
#include "Startup.h"
#include "TestEnv.h"

#include <QFile>
#include <QHash>
#include <QSqlQuery>
#include <QTest>

namespace {

const QString BinDir = QStringLiteral(VORKAM_BIN_DIR);

QList<int> accountList(const QString& mrTilit)
{
    QList<int> ids;
    for (const QString& part : mrTilit.split(u',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const int id = part.trimmed().toInt(&ok);
        if (ok && id > 0)
            ids.append(id);
    }
    return ids;
}

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
    void templatesCoverEveryAccountOnce_data();
    void templatesCoverEveryAccountOnce();
    void demoBooksBalance();
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
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM tl WHERE tlNimi IS NULL OR tlNimi = '' "
                                           "OR length(tlNimi) > 50")),
            0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM mr WHERE length(mrTeksti) > 50")), 0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) - COUNT(DISTINCT tlNumero) FROM tl")), 0);
    });
}

void tst_Models::templatesCoverEveryAccountOnce_data() { builtInCurrentLayout_data(); }

void tst_Models::templatesCoverEveryAccountOnce()
{
    QFETCH(QString, file);
    TestEnv env;
    const QString copy = copyOf(env, file);
    withDatabase(copy, [](QSqlDatabase& db) {
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM ma WHERE maTyyppi = 1")), 1);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM ma WHERE maTyyppi = 2")), 1);
        const qint64 incomeId = scalar(db, QStringLiteral("SELECT maID FROM ma WHERE maTyyppi = 1"));
        QCOMPARE(scalar(db, QStringLiteral("SELECT maTulosMaID FROM ma WHERE maTyyppi = 2")), incomeId);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM mr WHERE mrmaID = %1 AND mrIsLiikevaihto <> 0")
                                .arg(incomeId)),
            1);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM mr WHERE mrmaID = %1 AND mrIsVoitto <> 0 "
                                           "AND mrBelongsToGroup = 0")
                                .arg(incomeId)),
            1);

        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("SELECT mrTeksti FROM mr JOIN ma ON mrmaID = maID WHERE maTyyppi = 2 "
                                      "AND mrBelongsToGroup = 0 ORDER BY mrGroupOrder")));
        QStringList mainGroups;
        while (q.next())
            mainGroups.append(q.value(0).toString());
        QCOMPARE(mainGroups, (QStringList { QStringLiteral("Vastaavaa"), QStringLiteral("Vastattavaa") }));

        QHash<int, int> uses;
        QVERIFY(q.exec(QStringLiteral("SELECT mrTilit FROM mr")));
        while (q.next())
            for (int id : accountList(q.value(0).toString()))
                ++uses[id];
        QVERIFY(q.exec(QStringLiteral("SELECT tlID, tlNumero FROM tl WHERE tlNumero > 0")));
        int accounts = 0;
        while (q.next()) {
            ++accounts;
            const int id = q.value(0).toInt();
            QVERIFY2(uses.value(id) == 1,
                qPrintable(QStringLiteral("tili %1 on %2 rivillä").arg(q.value(1).toInt()).arg(uses.value(id))));
            uses.remove(id);
        }
        QVERIFY2(uses.isEmpty(), "a template row names an account that does not exist");

        // The balance sheet's profit row holds the account named by VoittoTaseella.
        const qint64 profitAccount = scalar(db, QStringLiteral("SELECT CAST(setString AS INTEGER) FROM Settings "
                                                               "WHERE setKey = 'VoittoTaseella'"));
        QVERIFY(profitAccount > 0);
        QVERIFY(q.exec(QStringLiteral("SELECT mrTilit FROM mr JOIN ma ON mrmaID = maID WHERE maTyyppi = 2 AND "
                                      "mrTeksti = 'Tilikauden ylijäämä (alijäämä)'")));
        QVERIFY(q.next());
        QCOMPARE(accountList(q.value(0).toString()), QList<int> { int(profitAccount) });
    });
}

void tst_Models::demoBooksBalance()
{
    TestEnv env;
    const QString copy = copyOf(env, QStringLiteral("demo1.mdb"));
    withDatabase(copy, [](QSqlDatabase& db) {
        QVERIFY(scalar(db, QStringLiteral("SELECT COUNT(*) FROM \"to\" WHERE toNumero > 0")) >= 50);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM (SELECT vitoID FROM vi GROUP BY vitoID HAVING "
                                           "SUM(CASE viTyyppi WHEN 'D' THEN viArvo ELSE -viArvo END) <> 0)")),
            0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM vi WHERE vitlID NOT IN (SELECT tlID FROM tl)")), 0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM vi WHERE vitoID NOT IN (SELECT toID FROM \"to\")")), 0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM \"to\" WHERE toID NOT IN (SELECT vitoID FROM vi)")), 0);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM vi WHERE viArvo % 100 <> 0 OR viArvo <= 0")), 0);
        // The opening voucher: number 0, its entries all opening entries.
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM \"to\" WHERE toAvaustosite <> 0 AND toNumero = 0")), 1);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM vi JOIN \"to\" ON vitoID = toID WHERE "
                                           "(toAvaustosite <> 0) <> (viAvausvienti <> 0)")),
            0);
        QVERIFY(scalar(db, QStringLiteral("SELECT COUNT(*) FROM \"to\" WHERE toPaatostosite <> 0")) >= 1);
        QCOMPARE(scalar(db, QStringLiteral("SELECT COUNT(*) FROM vi JOIN \"to\" ON vitoID = toID WHERE "
                                           "(toPaatostosite <> 0) <> (viPaatosvienti <> 0)")),
            0);
        // Every voucher date lies in the fiscal year that the demo's settings name.
        ProgramSettings::loadBookkeeping(db, QStringLiteral("demo1.mdb"));
        const BookkeepingSettings& s = ProgramSettings::bookkeeping();
        QCOMPARE(s.TilikausiAlku, QDate(QDate::currentDate().year(), 1, 1));
        QCOMPARE(s.TilikausiLoppu, QDate(QDate::currentDate().year(), 12, 31));
        QSqlQuery q(db);
        q.prepare(QStringLiteral("SELECT COUNT(*) FROM \"to\" WHERE toPvm < ? OR toPvm > ? OR toPvm IS NULL"));
        q.addBindValue(s.TilikausiAlku.toString(Qt::ISODate));
        q.addBindValue(s.TilikausiLoppu.toString(Qt::ISODate));
        QVERIFY(q.exec() && q.next());
        QCOMPARE(q.value(0).toInt(), 0);
        QVERIFY(s.LaskettavaTili > 0);
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
    QCOMPARE(r.caption,
        QStringLiteral("Vorkam - %1 - demo1.mdb").arg(ProgramSettings::bookkeeping().Seurannimi));
    QVERIFY(ProgramSettings::bookkeeping().Seurannimi != QStringLiteral("demo1"));
}

QTEST_GUILESS_MAIN(tst_Models)
#include "tst_Models.moc"
