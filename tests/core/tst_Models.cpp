#include "ModelChecks.h"
#include "TestEnv.h"
#include "core/DatabaseError.h"
#include "core/DatabaseFile.h"
#include "core/Schema.h"

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <algorithm>

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

    // One breakage for each rule of the checks, so that none of them passes by reading nothing.
    row("number of five digits", "perusmalli", "UPDATE tl SET tlNumero = 19150 WHERE tlNumero = 1915",
        "ei ole nelinumeroinen");
    row("name begins with a digit", "lions", "UPDATE tl SET tlNimi = '1. lahjoitus' WHERE tlNumero = 4500",
        "ei ala kirjaimella");
    row("setting missing", "lions", "DELETE FROM Settings WHERE setKey = 'Seurannimi'",
        "Asetus Seurannimi on 0 kertaa");
    row("fiscal year of another year", "aoymalli",
        "UPDATE Settings SET setString = '1.1.2000' WHERE setKey = 'TilikausiAlku'",
        "TilikausiAlku on \"1.1.2000\"");
    row("bank setting on an expense account", "metalli",
        "UPDATE Settings SET setString = (SELECT tlID FROM tl WHERE tlNumero = 4200) WHERE setKey = "
        "'LaskettavaTili'",
        "ei ole pankkitili");
    row("one profit account for both", "lions",
        "UPDATE Settings SET setString = (SELECT tlID FROM tl WHERE tlNumero = 9990) WHERE setKey = "
        "'VoittoTaseella'",
        "VoittoTaseella");
    row("work table filled", "lions", "INSERT INTO tula (tulaTeksti) VALUES ('Jäänne')", "Työtaulussa tula");
    row("voucher in a model", "metalli",
        "INSERT INTO \"to\" (toNumero, toPvm, toSelite) VALUES (1, '2000-01-01', 'Tosite')", "Mallissa on");
    row("row deleted", "perusmalli", "DELETE FROM mr WHERE mrTeksti = 'Saamiset'",
        "Kaikki tilit eivät ole käytössä.");
    row("income account in the balance sheet", "metalli",
        "UPDATE mr SET mrTilit = mrTilit || (SELECT tlID FROM tl WHERE tlNumero = 5000) || ',' "
        "WHERE mrTeksti = 'Saamiset'",
        "kuuluu tuloslaskelmaan");
    row("row names a missing account", "perusmalli",
        "UPDATE mr SET mrTilit = mrTilit || '9999,' WHERE mrTeksti = 'Saamiset'", "tili 9999, jota ei ole");
    row("account list malformed", "aoymalli",
        "UPDATE mr SET mrTilit = '35;36,37,' WHERE mrTeksti = 'Vastikkeet'", "ei ole muotoa \"id,id,\"");
    row("balance sheet without its income statement", "perusmalli",
        "UPDATE ma SET maTulosMaID = 0 WHERE maTyyppi = 2", "maTulosMaID");
    row("main rows in another order", "aoymalli",
        "UPDATE mr SET mrGroupOrder = 9 - mrGroupOrder "
        "WHERE mrTeksti IN ('Poistot ja arvonalentumiset', 'Rahoitustuotot ja -kulut')",
        "Tuloslaskelman päärivit ovat");
    row("voucher out of balance", "demo1",
        "UPDATE vi SET viArvo = viArvo + 100 WHERE viID = (SELECT MIN(viID) FROM vi WHERE viAvausvienti = 0)",
        "ei täsmää: debet");
    row("entry on a missing account", "demo1",
        "UPDATE vi SET vitlID = 9999 WHERE viID = (SELECT MIN(viID) FROM vi WHERE viAvausvienti = 0)",
        "tiliä 9999");
    row("no opening voucher", "demo1",
        "DELETE FROM vi WHERE viAvausvienti = 1;\nDELETE FROM \"to\" WHERE toAvaustosite = 1",
        "Avaustositteita on 0");
    row("previous year not empty", "demo1",
        "INSERT INTO toE (toENumero, toEPvm, toESelite) VALUES (1, '2000-01-01', 'Tosite')",
        "Edellisen vuoden tauluissa");
    row("numbering with a gap", "demo1",
        "UPDATE \"to\" SET toNumero = toNumero + 1 WHERE toNumero = (SELECT MAX(toNumero) FROM \"to\")",
        "eivät ole 0..");
    row("no closing vouchers", "demo1",
        "UPDATE \"to\" SET toPaatostosite = 0;\nUPDATE vi SET viPaatosvienti = 0",
        "Tilinpäätöstositteita ei ole");
    row("voucher dated next year", "demo1",
        "UPDATE \"to\" SET toPvm = date(toPvm, '+1 year') WHERE toNumero = 5", "ei ole tilikaudella");
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
        try {
            Sql::runScript(db, sql);
        } catch (const DatabaseError& e) {
            QFAIL(qPrintable(e.text()));
        }
        const QStringList findings = ModelChecks::checkShippedBook(db, book, year());
        QVERIFY2(std::any_of(findings.cbegin(), findings.cend(),
                     [&finding](const QString& f) { return f.contains(finding); }),
            qPrintable(findings.join(u'\n')));
    });
}

QTEST_GUILESS_MAIN(tst_Models)
#include "tst_Models.moc"
