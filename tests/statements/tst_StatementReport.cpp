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
        const QStringList written = QString::fromUtf8(TestEnv::readFile(csv))
                                        .remove(QChar(0xFEFF))
                                        .split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        for (const QString& line : lines)
            QVERIFY2(
                written.contains(line), qPrintable(line + QStringLiteral("\n--\n") + written.join(u'\n')));
        QCOMPARE(written.size(), rows + 1);
    }

    // 4,6 % is stored as a part of one, as a spreadsheet counts percentages.
    void writesXlsx()
    {
        const QString xlsx = env->path(QStringLiteral("rivit.xlsx"));
        QCOMPARE(ReportCommand::run({ books, "tuloslaskelma", "--xlsx", xlsx }).code, 0);
        // Every part of the file in one stream.
        QProcess unzip;
        unzip.start(QStringLiteral("unzip"), { "-p", xlsx });
        QVERIFY(unzip.waitForFinished(60000));
        const QString parts = QString::fromUtf8(unzip.readAllStandardOutput());
        QVERIFY(parts.contains(QStringLiteral("<v>0.0462")));
    }

    // A balance sheet is not found by an income statement's name, and nothing is written.
    void templateOfAnotherKind()
    {
        const QString csv = env->path(QStringLiteral("x.csv"));
        const ReportCommand r
            = ReportCommand::run({ books, "tase", "--template", "Yhdistyksen tuloslaskelma", "--csv", csv });
        QCOMPARE(r.code, 1);
        QVERIFY2(r.err.contains(QStringLiteral("Tasemallia")), qPrintable(r.err));
        QVERIFY(!QFile::exists(csv));
    }
};

QTEST_GUILESS_MAIN(tst_StatementReport)
#include "tst_StatementReport.moc"
