#include "ReportCommand.h"
#include "TestEnv.h"

#include <QDate>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QTest>

namespace {

// The demo association is built for the year of the build.
QString date(int day, int month)
{
    return QStringLiteral("%1.%2.%3").arg(day).arg(month).arg(QDate::currentDate().year());
}

} // namespace

// vorkam_report computes the statements as the statement window does and writes their rows.
class tst_StatementReport final : public QObject {
    Q_OBJECT

    TestEnv* env = nullptr;
    QString books;

private slots:
    void init()
    {
        env = new TestEnv;
        books = env->path(QStringLiteral("demo1.mdb"));
        QVERIFY(ReportCommand::copyBuilt(QStringLiteral("demo1.mdb"), books));
    }
    void cleanup() { delete env; }

    void writesRows_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QStringList>("lines"); // lines the CSV holds
        QTest::addColumn<int>("rows"); // data rows after the one heading row
        // The spreadsheet's sheet name and a value its sheet holds.
        QTest::addColumn<QString>("sheet");
        QTest::addColumn<QString>("value");
        QTest::newRow("income statement")
            << QStringList { "tuloslaskelma" }
            << QStringList { "Tilikauden ylijäämä (alijäämä);253,69;4,6;;;253,69;4,6;;;" }
            // 4,6 % as a part of one, as a spreadsheet counts percentages.
            << 26 << "Kirjanpidon tuloslaskelma"
            << "<v>0.0462";
        QTest::newRow("named template, by account, spring")
            << QStringList { "tuloslaskelma", "--template", "yhdistyksen TULOSLASKELMA", "--accounts",
                   "--from", date(1, 3), "--to", date(31, 5) }
            // Every line item keeps its caption and its own total around its accounts.
            << QStringList { "Varsinaisen toiminnan tuotot;;;;;;;;;",
                   "3020 Retkien osallistumismaksut;1260,00;71,6;;;1260,00;49,6;;;",
                   "Varsinaisen toiminnan tuotot;1760,00;100,0;;;2540,00;100,0;;;" }
            << 75 << "Kirjanpidon tuloslaskelma"
            << "<v>1260</v>";
        QTest::newRow("balance sheet, groups only")
            << QStringList { "tase", "--groups-only", "--from", date(1, 1), "--to", date(30, 6) }
            << QStringList { "Vastaavaa;7630,00;2574,22;10204,22;;;",
                   "Vastattavaa;7630,00;2574,22;10204,22;;;" }
            << 4 << "Kirjanpidon tase"
            << "<v>10204.22</v>";
    }

    void writesRows()
    {
        QFETCH(QStringList, args);
        QFETCH(QStringList, lines);
        QFETCH(int, rows);
        QFETCH(QString, sheet);
        QFETCH(QString, value);
        const QString csv = env->path(QStringLiteral("rivit.csv"));
        const ReportCommand r
            = ReportCommand::run(QStringList { books } + args + QStringList { "--csv", csv });
        QVERIFY2(r.code == 0, qPrintable(r.err));
        // A CSV file is told by its rows, not pages.
        QVERIFY2(r.out.contains(QStringLiteral("(%1 riviä)").arg(rows)), qPrintable(r.out));
        const QStringList written = QString::fromUtf8(TestEnv::readFile(csv))
                                        .remove(QChar(0xFEFF))
                                        .split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        for (const QString& line : lines)
            QVERIFY2(
                written.contains(line), qPrintable(line + QStringLiteral("\n--\n") + written.join(u'\n')));
        QCOMPARE(written.size(), rows + 1);

        const QString xlsx = env->path(QStringLiteral("rivit.xlsx"));
        QCOMPARE(ReportCommand::run(QStringList { books } + args + QStringList { "--xlsx", xlsx }).code, 0);
        const auto unzip = [&xlsx](const char* part) {
            QProcess p;
            p.start(QStringLiteral("unzip"), { "-p", xlsx, QLatin1String(part) });
            p.waitForFinished(60000);
            return QString::fromUtf8(p.readAllStandardOutput());
        };
        QVERIFY(unzip("xl/workbook.xml").contains(QStringLiteral("<sheet name=\"%1\"").arg(sheet)));
        QVERIFY2(unzip("xl/worksheets/sheet1.xml").contains(value), qPrintable(value));
    }

    // The printed statement as a PDF file: the same pages as the statement window prints.
    void writesPdf()
    {
        const QString pdf = env->path(QStringLiteral("tuloste.pdf"));
        const ReportCommand r = ReportCommand::run(
            { books, "tuloslaskelma", "--narrow", "--from", date(1, 3), "--to", date(31, 5), "--pdf", pdf });
        QVERIFY2(r.code == 0, qPrintable(r.err));
        QVERIFY2(r.out.contains(QStringLiteral("(1 sivua)")), qPrintable(r.out));
        QVERIFY(TestEnv::readFile(pdf).startsWith("%PDF-"));
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("sql"); // changes the books first
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        const QStringList csv { "--csv", "x.csv" };
        // Not found among the balance sheets, though an income statement has the name.
        QTest::newRow("income statement's name for a balance sheet")
            << "" << QStringList { "tase", "--template", "Yhdistyksen tuloslaskelma" } + csv << 1
            << "Tasemallia \"Yhdistyksen tuloslaskelma\" ei ole kirjanpidossa.";
        // Refused with the statement window's words.
        QTest::newRow("balance sheet without an income statement")
            << "UPDATE ma SET maTulosMaID = 0" << QStringList { "tase" } + csv << 1
            << "Tasemallille ei ole määritelty tuloslaskelmaa, jonka perusteella tilikauden voitto "
               "kirjataan.";
        QTest::newRow("outside the fiscal year")
            << "" << QStringList { "tuloslaskelma", "--from", "1.1.2000", "--to", date(31, 12) } + csv << 1
            << "Alkupäivämäärä ei kuulu tilikauteen: ";
        QTest::newRow("options of statements only")
            << "" << QStringList { "tilit", "--accounts" } + csv << 2
            << "ei käytä valitsinta --template/--accounts/--groups-only/--narrow";
    }

    void refusals()
    {
        QFETCH(QString, sql);
        QFETCH(QStringList, args);
        QFETCH(int, code);
        QFETCH(QString, message);
        if (!sql.isEmpty())
            withDatabase(books, [&sql](QSqlDatabase& db) { QVERIFY(QSqlQuery(db).exec(sql)); });
        const ReportCommand r = ReportCommand::run(QStringList { books } + args);
        QCOMPARE(r.code, code);
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
        QVERIFY(!QFile::exists(QStringLiteral("x.csv")));
    }
};

QTEST_GUILESS_MAIN(tst_StatementReport)
#include "tst_StatementReport.moc"
