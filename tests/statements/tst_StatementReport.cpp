#include "ReportCommand.h"
#include "TestEnv.h"

#include <QDate>
#include <QFile>
#include <QProcess>
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
        // A narrow income statement leaves the percentages out.
        QTest::newRow("named template, by account, narrow, spring")
            << QStringList { "tuloslaskelma", "--template", "yhdistyksen TULOSLASKELMA", "--accounts",
                   "--narrow", "--from", date(1, 3), "--to", date(31, 5) }
            << QStringList { "3020 Retkien osallistumismaksut;1260,00;;1260,00;" } << 75;
        QTest::newRow("balance sheet, groups only")
            << QStringList { "tase", "--groups-only", "--from", date(1, 1), "--to", date(30, 6) }
            << QStringList { "Vastaavaa;7630,00;2574,22;10204,22;;;" } << 4;
    }

    void writesRows()
    {
        QFETCH(QStringList, args);
        QFETCH(QStringList, lines);
        QFETCH(int, rows);
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
    }

    // The spreadsheet's sheet takes the statement's name; 4,6 % is stored as a part of one, as a
    // spreadsheet counts percentages.
    void writesXlsx()
    {
        const QString xlsx = env->path(QStringLiteral("rivit.xlsx"));
        QCOMPARE(ReportCommand::run({ books, "tuloslaskelma", "--xlsx", xlsx }).code, 0);
        // Every part of the file in one stream: the workbook's sheet names and the sheet's cells.
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), { "-p", xlsx });
        QVERIFY(unzip.waitForFinished(60000));
        const QString parts = QString::fromUtf8(unzip.readAllStandardOutput());
        QVERIFY(parts.contains(QStringLiteral("<sheet name=\"Kirjanpidon tuloslaskelma\"")));
        QVERIFY(parts.contains(QStringLiteral("<v>0.0462")));
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");
        const QStringList csv { "--csv", "x.csv" };
        // Not found among the balance sheets, though an income statement has the name.
        QTest::newRow("income statement's name for a balance sheet")
            << QStringList { "tase", "--template", "Yhdistyksen tuloslaskelma" } + csv
            << "Tasemallia \"Yhdistyksen tuloslaskelma\" ei ole kirjanpidossa.";
        QTest::newRow("outside the fiscal year")
            << QStringList { "tuloslaskelma", "--from", "1.1.2000", "--to", date(31, 12) } + csv
            << "Alkupäivämäärä ei kuulu tilikauteen: ";
    }

    void refusals()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        const ReportCommand r = ReportCommand::run(QStringList { books } + args);
        QCOMPARE(r.code, 1);
        QVERIFY2(r.err.contains(message), qPrintable(r.err));
        QVERIFY(!QFile::exists(QStringLiteral("x.csv")));
    }
};

QTEST_GUILESS_MAIN(tst_StatementReport)
#include "tst_StatementReport.moc"
