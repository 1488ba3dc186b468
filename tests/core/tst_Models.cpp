#include "ModelChecks.h"
#include "TestEnv.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Schema.h"

#include <QFile>
#include <QTest>

namespace {

const QString BinDir = QStringLiteral(VORKAM_BIN_DIR);

// Works on a copy: the built files stay as the build made them.
QString copyOf(const TestEnv& env, const QString& relative)
{
    const QString target = env.path(QFileInfo(relative).fileName());
    QFile::copy(BinDir + u'/' + relative, target);
    QFile::setPermissions(target, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return target;
}

// The build writes the books for the year it runs in.
int year() { return QDate::currentDate().year(); }

} // namespace

class tst_Models : public QObject {
    Q_OBJECT

private slots:
    void shippedBookIsSound_data();
    void shippedBookIsSound();
    void brokenCopyIsFound_data();
    void brokenCopyIsFound();
};

void tst_Models::shippedBookIsSound_data()
{
    QTest::addColumn<QString>("name");
    for (const ModelChecks::ShippedBook& book : ModelChecks::shippedBooks())
        QTest::newRow(qPrintable(book.name)) << book.name;
}

// Each book the build ships opens, is in the current layout and passes its checks.
void tst_Models::shippedBookIsSound()
{
    QFETCH(QString, name);
    const ModelChecks::ShippedBook book = ModelChecks::shippedBook(name);
    TestEnv env;
    const QString copy = copyOf(env, book.file);
    QVERIFY2(DatabaseFile::examine(copy), qPrintable(copy));
    withDatabase(copy, [&book](QSqlDatabase& db) {
        QCOMPARE(Schema::UpdateDatabase(db).appliedSteps, QList<int> {});
        const QStringList findings = ModelChecks::checkShippedBook(db, book, year());
        QVERIFY2(findings.isEmpty(), qPrintable(findings.join(u'\n')));
    });
}

void tst_Models::brokenCopyIsFound_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("sql");
    QTest::addColumn<QString>("finding");
    const auto row = [](const char* tag, const char* name, const char* sql, const char* finding) {
        QTest::newRow(tag) << QString::fromUtf8(name) << QString::fromUtf8(sql) << QString::fromUtf8(finding);
    };

    // One breakage for each kind of rule (every book, models, demo, main rows, the templates' link),
    // so that none of them passes by reading nothing.
    row("fiscal year of another year", "aoymalli",
        "UPDATE Settings SET setString = '1.1.2000' WHERE setKey = 'TilikausiAlku'",
        "TilikausiAlku on \"1.1.2000\"");
    row("voucher in a model", "metalli",
        "INSERT INTO \"to\" (toNumero, toPvm, toSelite) VALUES (1, '2000-01-01', 'Tosite')", "Mallissa on");
    row("voucher out of balance", "demo1",
        "UPDATE vi SET viArvo = viArvo + 100 WHERE viID = (SELECT MIN(viID) FROM vi WHERE viAvausvienti = 0)",
        "ei täsmää: debet");
    row("main rows in another order", "aoymalli",
        "UPDATE mr SET mrGroupOrder = 9 - mrGroupOrder "
        "WHERE mrTeksti IN ('Poistot ja arvonalentumiset', 'Rahoitustuotot ja -kulut')",
        "Tuloslaskelman päärivit ovat");
    row("balance sheet without its income statement", "perusmalli",
        "UPDATE ma SET maTulosMaID = 0 WHERE maTyyppi = 2", "maTulosMaID");
}

void tst_Models::brokenCopyIsFound()
{
    QFETCH(QString, name);
    QFETCH(QString, sql);
    QFETCH(QString, finding);
    const ModelChecks::ShippedBook book = ModelChecks::shippedBook(name);
    QVERIFY2(!book.file.isEmpty(), qPrintable(name));
    TestEnv env;
    withDatabase(copyOf(env, book.file), [&](QSqlDatabase& db) {
        QVERIFY_THROWS_NO_EXCEPTION(Sql::runScript(db, sql));
        const QString findings = ModelChecks::checkShippedBook(db, book, year()).join(u'\n');
        QVERIFY2(findings.contains(finding), qPrintable(findings));
    });
}

QTEST_GUILESS_MAIN(tst_Models)
#include "tst_Models.moc"
