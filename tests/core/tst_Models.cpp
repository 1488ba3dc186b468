#include "DatabaseFile.h"
#include "Dates.h"
#include "ModelChecks.h"
#include "ProgramSettings.h"
#include "Schema.h"
#include "ScriptedDialogs.h"
#include "SqlScript.h"
#include "Startup.h"
#include "TestEnv.h"

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <algorithm>

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

ModelChecks::ShippedBook shippedBook(const QString& name)
{
    const QList<ModelChecks::ShippedBook> books = ModelChecks::shippedBooks();
    const auto it = std::find_if(
        books.cbegin(), books.cend(), [&name](const ModelChecks::ShippedBook& b) { return b.name == name; });
    return it == books.cend() ? ModelChecks::ShippedBook {} : *it;
}

// The build writes the books for the year it runs in.
int year() { return QDate::currentDate().year(); }

} // namespace

class tst_Models : public QObject {
    Q_OBJECT

private slots:
    void builtInCurrentLayout_data();
    void builtInCurrentLayout();
    void shippedBookPasses_data();
    void shippedBookPasses();
    void brokenCopyIsFound_data();
    void brokenCopyIsFound();
    void demoIsTheCurrentYear();
    void demoStartsWithItsName();
};

void tst_Models::builtInCurrentLayout_data()
{
    QTest::addColumn<QString>("file");
    for (const ModelChecks::ShippedBook& book : ModelChecks::shippedBooks())
        QTest::newRow(qPrintable(book.name)) << book.file;
}

void tst_Models::builtInCurrentLayout()
{
    QFETCH(QString, file);
    TestEnv env;
    const QString copy = copyOf(env, file);
    QVERIFY2(DatabaseFile::examine(copy), qPrintable(copy));
    withDatabase(copy, [](QSqlDatabase& db) {
        QCOMPARE(Schema::UpdateDatabase(db).appliedSteps, QList<int> {});
        QVERIFY(scalar(db, QStringLiteral("SELECT COUNT(*) FROM tl WHERE tlNumero > 0")) >= 40);
    });
}

void tst_Models::shippedBookPasses_data()
{
    QTest::addColumn<QString>("name");
    for (const ModelChecks::ShippedBook& book : ModelChecks::shippedBooks())
        QTest::newRow(qPrintable(book.name)) << book.name;
}

void tst_Models::shippedBookPasses()
{
    QFETCH(QString, name);
    const ModelChecks::ShippedBook book = shippedBook(name);
    TestEnv env;
    withDatabase(copyOf(env, book.file), [&book](QSqlDatabase& db) {
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

    // Chart of accounts and settings.
    row("number of five digits", "perusmalli", "UPDATE tl SET tlNumero = 19150 WHERE tlNumero = 1915",
        "ei ole nelinumeroinen");
    row("name too long", "metalli",
        "UPDATE tl SET tlNimi = tlNimi || ' sekä kaikki muut koulutuksen kulut' WHERE tlNumero = 4290",
        "nimi on yli 50 merkkiä");
    row("name begins with a digit", "lions", "UPDATE tl SET tlNimi = '1. lahjoitus' WHERE tlNumero = 4500",
        "ei ala kirjaimella");
    row("empty description", "aoymalli", "UPDATE tl SET tlKuvaus = '' WHERE tlNumero = 3000",
        "kuvaus puuttuu");
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
        "VoittoTaseella on sama tili");
    row("work table filled", "lions", "INSERT INTO tula (tulaTeksti) VALUES ('Jäänne')", "Työtaulussa tula");
    row("voucher in a model", "metalli",
        "INSERT INTO \"to\" (toNumero, toPvm, toSelite) VALUES (1, '2000-01-01', 'Tosite')",
        "Mallissa on tositteita");

    // Accounts on the templates.
    row("row deleted", "perusmalli", "DELETE FROM mr WHERE mrTeksti = 'Saamiset'",
        "ei ole tuloslaskelman eikä taseen rivillä");
    row("account on two rows", "aoymalli",
        "UPDATE mr SET mrTilit = mrTilit || (SELECT tlID FROM tl WHERE tlNumero = 3000) || ',' "
        "WHERE mrTeksti = 'Vuokratuotot'",
        "2 kertaa tuloslaskelman ja taseen riveillä");
    row("income account in the balance sheet", "metalli",
        "UPDATE mr SET mrTilit = mrTilit || (SELECT tlID FROM tl WHERE tlNumero = 5000) || ',' "
        "WHERE mrTeksti = 'Saamiset'",
        "kuuluu tuloslaskelmaan");
    row("row emptied", "lions", "UPDATE mr SET mrTilit = '' WHERE mrTeksti = 'Sijoitukset'",
        "ei ole tilejä eikä kaavaa");
    row("account list malformed", "aoymalli",
        "UPDATE mr SET mrTilit = '35;36,37,' WHERE mrTeksti = 'Vastikkeet'", "ei ole muotoa \"id,id,\"");
    row("row outside the tree", "perusmalli",
        "UPDATE mr SET mrBelongsToGroup = 999 WHERE mrTeksti = 'Poistot'", "ei ole mallin puussa");

    // Template structure.
    row("caption twice", "aoymalli", "UPDATE mr SET mrTeksti = 'Hallinto' WHERE mrTeksti = 'Siivous'",
        "\"Hallinto\" on mallissa");
    row("income row on the debit side", "metalli",
        "UPDATE mr SET mrSaldoPuoli = 'D' WHERE mrTeksti = 'Koulutus'", "saldopuoli on \"D\", pitää olla K");
    row("asset row on the credit side", "lions",
        "UPDATE mr SET mrSaldoPuoli = 'K' WHERE mrTeksti = 'Saamiset'", "saldopuoli on \"K\", pitää olla D");
    row("main group renamed", "lions", "UPDATE mr SET mrTeksti = 'Vastaavat' WHERE mrTeksti = 'Vastaavaa'",
        "täsmälleen Vastaavaa ja Vastattavaa");
    row("balance sheet without its income statement", "perusmalli",
        "UPDATE ma SET maTulosMaID = 0 WHERE maTyyppi = 2", "Tasemallin maTulosMaID (0)");
    row("second turnover row", "metalli",
        "UPDATE mr SET mrIsLiikevaihto = 1 WHERE mrTeksti = 'Varsinaisen toiminnan tuotot'",
        "2 liikevaihtoriviä");
    row("no profit row", "lions", "UPDATE mr SET mrIsVoitto = 0", "0 voittoriviä");
    row("profit row with two accounts", "aoymalli",
        "UPDATE mr SET mrTilit = mrTilit || (SELECT tlID FROM tl WHERE tlNumero = 9290) || ',' WHERE "
        "mrIsVoitto = 1",
        "on 2 tiliä, pitää olla yksi");
    row("formula subtracts the costs", "aoymalli",
        "UPDATE mr SET mrKaava = '+' || (SELECT mrID FROM mr WHERE mrTeksti = 'Kiinteistön tuotot') || ',-' "
        "|| "
        "(SELECT mrID FROM mr WHERE mrTeksti = 'Kiinteistön hoitokulut') || ',' WHERE mrTeksti = 'Hoitokate'",
        "kertoimella -1");
    row("formula adds a section twice", "perusmalli",
        "UPDATE mr SET mrKaava = mrKaava || '+' || (SELECT mrID FROM mr WHERE mrTeksti = 'Varainhankinta') "
        "|| ',' "
        "WHERE mrTeksti = 'Tilikauden tulos'",
        "kertoimella 2");
    row("formula names a later row", "perusmalli",
        "UPDATE mr SET mrKaava = mrKaava || '+' || (SELECT mrID FROM mr WHERE mrTeksti = "
        "'Tilinpäätössiirrot') || ',' "
        "WHERE mrTeksti = 'Tilikauden tulos'",
        "lasketaan vasta kaavarivin jälkeen");
    row("formula names a row without a total", "metalli",
        "UPDATE mr SET mrKaava = '+' || (SELECT mrID FROM mr WHERE mrTeksti = 'Varainhankinnan tuotot') || "
        "',' "
        "WHERE mrTeksti = 'Tilikauden tulos'",
        "jolla ei ole summariviä");

    // The models' own shape.
    row("main rows in another order", "aoymalli",
        "UPDATE mr SET mrGroupOrder = 9 - mrGroupOrder "
        "WHERE mrTeksti IN ('Poistot ja arvonalentumiset', 'Rahoitustuotot ja -kulut')",
        "Tuloslaskelman päärivit ovat");
    row("general model without cash", "perusmalli",
        "UPDATE mr SET mrTilit = replace(mrTilit, '11,', '') WHERE mrTeksti = 'Rahat ja pankkisaamiset';\n"
        "DELETE FROM tl WHERE tlNumero = 1900",
        "puuttuu tili 1900");
    row("activity fund not in equity", "lions",
        "UPDATE mr SET mrTeksti = 'Rahasto' WHERE mrTeksti = 'Aktiviteettirahasto'",
        "Aktiviteettirahasto-riviä");

    // The demo's vouchers and statements.
    row("voucher out of balance", "demo1",
        "UPDATE vi SET viArvo = viArvo + 100 WHERE viID = (SELECT MIN(viID) FROM vi WHERE viAvausvienti = 0)",
        "ei täsmää: debet");
    row("voucher dated next year", "demo1",
        "UPDATE \"to\" SET toPvm = date(toPvm, '+1 year') WHERE toNumero = 5", "ei ole tilikaudella");
    row("entry on a missing account", "demo1",
        "UPDATE vi SET vitlID = 9999 WHERE viID = (SELECT MIN(viID) FROM vi WHERE viAvausvienti = 0)",
        "tiliä 9999 ei ole");
    row("entry text differs", "demo1",
        "UPDATE vi SET viSelite = 'Muu selite' WHERE viID = (SELECT MIN(viID) FROM vi WHERE viAvausvienti = "
        "0)",
        "selite ei ole tositteen");
    row("numbering with a gap", "demo1",
        "UPDATE \"to\" SET toNumero = toNumero + 1 WHERE toNumero = (SELECT MAX(toNumero) FROM \"to\")",
        "eivät ole 0..");
    row("no opening voucher", "demo1",
        "DELETE FROM vi WHERE viAvausvienti = 1;\nDELETE FROM \"to\" WHERE toAvaustosite = 1",
        "Avaustositteita on 0");
    row("no closing vouchers", "demo1",
        "UPDATE \"to\" SET toPaatostosite = 0;\nUPDATE vi SET viPaatosvienti = 0",
        "Tilinpäätöstositteita ei ole");
    row("previous year not empty", "demo1",
        "INSERT INTO toE (toENumero, toEPvm, toESelite) VALUES (1, '2000-01-01', 'Tosite')",
        "Edellisen vuoden tauluissa");
    row("entry on the profit account", "demo1",
        "UPDATE vi SET vitlID = (SELECT tlID FROM tl WHERE tlNumero = 9990) WHERE viID = (SELECT MAX(viID) "
        "FROM vi)",
        "Voittotilille");
    row("bank overdrawn", "demo1",
        "UPDATE vi SET viArvo = viArvo + 10000000000 "
        "WHERE vitoID = (SELECT toID FROM \"to\" WHERE toNumero = 1)",
        "saldo on negatiivinen");
    row("balance sheet out of balance", "demo1",
        "UPDATE mr SET mrSaldoPuoli = 'K' WHERE mrTeksti = 'Rahat ja pankkisaamiset'", "Tase ei täsmää");
    row("result differs by template", "demo1",
        "UPDATE mr SET mrSaldoPuoli = 'D' WHERE mrTeksti = 'Varainhankinta'", "Tulos tileittäin");
}

void tst_Models::brokenCopyIsFound()
{
    QFETCH(QString, name);
    QFETCH(QString, sql);
    QFETCH(QString, finding);
    const ModelChecks::ShippedBook book = shippedBook(name);
    QVERIFY2(!book.file.isEmpty(), qPrintable(name));
    TestEnv env;
    withDatabase(copyOf(env, book.file), [&](QSqlDatabase& db) {
        for (const QString& statement : SqlScript::split(sql)) {
            QSqlQuery q(db);
            QVERIFY2(q.exec(statement), qPrintable(q.lastError().text()));
        }
        const QStringList findings = ModelChecks::checkShippedBook(db, book, year());
        QVERIFY2(std::any_of(findings.cbegin(), findings.cend(),
                     [&finding](const QString& f) { return f.contains(finding); }),
            qPrintable(findings.join(u'\n')));
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
