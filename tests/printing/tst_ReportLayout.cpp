#include "Golden.h"
#include "TestEnv.h"
#include "core/DBC.h"
#include "core/Money.h"
#include "core/ProgramSettings.h"
#include "printing/CsvWriter.h"
#include "printing/PdfWriter.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"
#include "printing/ReportError.h"
#include "printing/XlsxWriter.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <functional>

namespace {

// A grouped report of amounts: a text, a date and two money columns with totals.
const QByteArray Grouped = R"({
  "query": { "select": "SELECT 1" },
  "formulas": { "Seurannimi": "", "Otsake": "Kokeilu" },
  "title": ["{Seurannimi}", "{Otsake}", "{Jakso}"],
  "columns": [
    { "field": "Selite", "caption": "Selite", "width": 4 },
    { "field": "Paiva", "caption": "Päivä", "width": 1.5, "format": "date" },
    { "field": "Debet", "caption": "Debet", "width": 2, "format": "money", "total": true },
    { "field": "Kredit", "caption": "Kredit", "width": 2, "format": "money", "total": true } ],
  "groups": [ { "field": "Ryhma", "header": "Ryhmä {Ryhma}", "totalCaption": "Yhteensä {Ryhma}" } ],
  "grandTotal": "Kaikki yhteensä" })";

std::shared_ptr<ReportData> rows(int count, int perGroup)
{
    auto data = std::make_shared<ReportData>(
        std::vector<ReportData::Field> { { "Selite", CellFormat::Text }, { "Paiva", CellFormat::Date },
            { "Debet", CellFormat::Money }, { "Kredit", CellFormat::Money }, { "Ryhma", CellFormat::Text } });
    for (int r = 0; r < count; ++r) {
        data->appendRow();
        // Every tenth row names people from beyond Finland's letters.
        data->setText(r, 0,
            (r % 10 == 9 ? QStringLiteral("Čorbić, Łukasz ja Ŋuolja – Ωmega %1")
                         : QStringLiteral("Äänestys ja €-maksu %1"))
                .arg(r + 1));
        data->setValue(r, 1, QStringLiteral("2011-09-%1").arg(r % 28 + 1, 2, 10, QChar(u'0')));
        data->setNumber(r, r % 2 == 0 ? 2 : 3, Money::fromCents(12345 * (r + 1)).raw());
        data->setText(r, 4, QString::number(r / perGroup + 1));
    }
    return data;
}

std::unique_ptr<ReportDocument> document(
    int count, int perGroup, LayoutOptions o = {}, const std::function<void(ReportData&)>& edit = {})
{
    ReportDefinition d = ReportDefinition::parse(Grouped, QStringLiteral("kokeilu.rpt"));
    o.fonts = d.fonts;
    o.printDate = QDate(2011, 12, 31);
    o.formulas.insert(QStringLiteral("Seurannimi"), QStringLiteral("Åkerlundin ystävät ry"));
    o.period = QStringLiteral("1.1.2011 - 31.12.2011");
    const auto data = rows(count, perGroup);
    if (edit)
        edit(*data);
    return std::make_unique<ReportDocument>(std::move(d), data, std::move(o));
}

// Words as any reader sees them: a no-break space separates too.
QStringList words(const QString& text)
{
    return QString(text).replace(QChar(0x00A0), u' ').simplified().split(u' ', Qt::SkipEmptyParts);
}

// The three writers of a report file.
using Writer = void (*)(const ReportDocument&, const QString&);
const Writer writers[] = { [](const ReportDocument& d, const QString& p) { PdfWriter::write(d, p); },
    [](const ReportDocument& d, const QString& p) { CsvWriter::write(d, p); },
    [](const ReportDocument& d, const QString& p) { XlsxWriter::write(d, p); } };

// The text of the ReportError that `work` throws; empty when it throws none.
QString refusal(const std::function<void()>& work)
{
    try {
        work();
    } catch (const ReportError& e) {
        return e.text();
    }
    return {};
}

QString run(const QString& program, const QStringList& args)
{
    QProcess p;
    p.start(program, args);
    p.waitForFinished(60000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

} // namespace

class tst_ReportLayout final : public QObject {
    Q_OBJECT

private slots:
    void definitionErrors_data()
    {
        QTest::addColumn<QByteArray>("rpt");
        QTest::addColumn<QStringList>("formulas");
        QTest::addColumn<QString>("selection");
        QTest::addColumn<QString>("message");
        const QByteArray ok
            = R"({ "query": { "select": "SELECT tlNumero AS Numero FROM tl", "tables": ["tl"] },
            "formulas": { "Otsake": "" }, "title": ["{Otsake}"],
            "columns": [ { "field": "Numero", "format": "integer" } ] })";
        // `from` in the working definition replaced by `to`.
        const auto row = [&ok](const char* tag, const char* from, const char* to, const char* message) {
            QTest::newRow(tag) << QByteArray(ok).replace(from, to) << QStringList() << QString()
                               << QString::fromUtf8(message);
        };
        const auto own = [](const char* tag, const QByteArray& rpt, const char* message) {
            QTest::newRow(tag) << rpt << QStringList() << QString() << QString::fromUtf8(message);
        };
        own("missing", "<missing>", "Raporttia kokeilu.rpt ei löydy kansiosta");
        own("not a SELECT", R"({ "query": { "select": "DELETE FROM tl" }, "columns": [ { "field": "x" } ] })",
            "kyselyn tulee alkaa sanalla SELECT");
        row("total of a text", R"("format": "integer")", R"("format": "text", "total": true)",
            "vain rahamäärä- ja kokonaislukusarakkeet");
        row("unknown name in the title", "{Otsake}", "{Puuttuu}", "tuntematon kaava tai kenttä {Puuttuu}");
        row("column the query lacks", R"("field": "Numero")", R"("field": "Nimi")",
            "Raportin kokeilu.rpt kenttää Nimi ei ole sen kyselyssä");
        row("unknown format", R"("format": "integer")", R"("format": "euro")",
            "kohdan \"format\" arvoa \"euro\" ei tunneta.");
        row("query the database refuses", "FROM tl", "FROM eiTaulua",
            "Raportin kokeilu.rpt tietoja ei voitu lukea.");
        QTest::newRow("formula the report lacks") << ok << QStringList { "Foo= 'x'" } << ""
                                                  << "Raportissa kokeilu.rpt ei ole kaavaa Foo.";
        QTest::newRow("selection on an unknown field")
            << ok << QStringList() << "{tl.eiOle} = 1"
            << "Raportin kokeilu.rpt valintakaavaa ei voi käyttää: Kenttää {tl.eiOle}";
    }
    void definitionErrors()
    {
        QFETCH(QByteArray, rpt);
        QFETCH(QStringList, formulas);
        QFETCH(QString, selection);
        QFETCH(QString, message);
        TestEnv env;
        QVERIFY(TestEnv::createDatabase(env.path(QStringLiteral("kirjat.mdb"))));
        ProgramSettings::installation().Database = env.path(QStringLiteral("kirjat.mdb"));
        if (rpt != "<missing>")
            QVERIFY(TestEnv::writeFile(env.programDir() + QStringLiteral("/kokeilu.rpt"), rpt));
        ReportJob job;
        job.reportFile = QStringLiteral("kokeilu.rpt");
        job.formulas = formulas;
        job.selectionFormula = selection;
        const QString text = refusal([&job] { ReportEngine::run(DBC::instance().AvaaDB(), job); });
        QVERIFY2(text.contains(message), qPrintable(text));
    }

    // Every page repeats the column heads and says which page of how many it is; a group header
    // never stands alone at the foot of a page, and a page begun inside a group repeats it.
    void pages()
    {
        const auto doc = document(150, 40);
        QVERIFY(doc->pageCount() >= 3);
        for (int i = 0; i < doc->pageCount(); ++i) {
            const QStringList lines = doc->pageText(i).split(u'\n');
            QVERIFY(std::any_of(lines.begin(), lines.end(), [](const QString& l) {
                return words(l) == QStringList({ "Selite", "Päivä", "Debet", "Kredit" });
            }));
            QCOMPARE(words(lines.at(lines.size() - 2)),
                (QStringList { "Tulostettu", "31.12.2011", "Sivu", QString::number(i + 1), "/",
                    QString::number(doc->pageCount()) }));
            const ReportPage page = doc->page(i);
            const QString last = page.runText(page.runs.at(page.runs.size() - 3));
            QVERIFY2(!last.startsWith(QStringLiteral("Ryhmä")), qPrintable(last));
        }
        static const QRegularExpression detail(
            QStringLiteral("^(Äänestys ja €-maksu|Čorbić.*Ωmega) (\\d+)$"));
        int continued = 0;
        for (int i = 1; i < doc->pageCount(); ++i) {
            const QStringList runs = doc->pageRunTexts(i).split(u'\n');
            const QString first = runs.value(5); // after the running title and the column heads
            const auto next = std::find_if(
                runs.begin(), runs.end(), [](const QString& r) { return detail.match(r).hasMatch(); });
            QVERIFY(next != runs.end());
            const int group = (detail.match(*next).captured(2).toInt() - 1) / 40 + 1;
            if (first == QStringLiteral("Ryhmä %1 (jatkuu)").arg(group))
                ++continued;
            else
                QCOMPARE(first, QStringLiteral("Ryhmä %1").arg(group));
        }
        QVERIFY(continued >= 2);
    }

    void goldenPage() { VERIFY_GOLDEN(QStringLiteral("layout_ryhmat"), document(7, 4)->pageText(0)); }

    void emptyReport()
    {
        const auto doc = document(0, 1);
        QCOMPARE(doc->pageCount(), 1);
        QVERIFY(doc->pageText(0).contains(QStringLiteral("Raportissa ei ole rivejä.")));
        QVERIFY(doc->pageText(0).contains(QStringLiteral("Kaikki yhteensä")));
    }

    // The settings' margin units are 48 twips, 2.4 points; landscape turns the A4 page.
    void marginsAndOrientation()
    {
        QVERIFY(qAbs(document(3, 5)->pageSize().width() - 595.276) < 0.01);
        LayoutOptions o;
        o.margins = { 1 * 48, 0, 30 * 48, 0 };
        o.landscape = true;
        const auto doc = document(3, 5, o);
        QVERIFY(qAbs(doc->pageSize().width() - 841.89) < 0.01);
        const ReportPage page = doc->page(0);
        QVERIFY(qAbs(page.runs.front().x - 72.0) < 0.01);
        QVERIFY(page.runs.front().y > 2.4 && page.runs.front().y < 2.4 + 16);
    }

    void moneyFormatMatchesMoney_data()
    {
        QTest::addColumn<qint64>("raw");
        for (const qint64 raw :
            { 0LL, 4999LL, 5000LL, -5000LL, -4999LL, 1234500LL, 12345678901LL, -9999995000LL })
            QTest::newRow(qPrintable(QString::number(raw))) << raw;
    }
    void moneyFormatMatchesMoney()
    {
        QFETCH(qint64, raw);
        QCOMPARE(ReportData::formatNumber(raw, CellFormat::Money), Money::fromRaw(raw).toString());
    }

    // What the PDF holds, read back by another program, is the page model's text, every letter.
    void pdfText()
    {
        TestEnv env;
        const auto doc = document(70, 30);
        QVERIFY(doc->pageCount() >= 2);
        const QString pdf = env.path(QStringLiteral("raportti.pdf"));
        PdfWriter::write(*doc, pdf);
        const QString text = run(QStringLiteral("pdftotext"), { "-raw", "-enc", "UTF-8", pdf, "-" });
        const QStringList pages = text.split(u'\f');
        QVERIFY(pages.size() >= doc->pageCount());
        for (int i = 0; i < doc->pageCount(); ++i)
            QCOMPARE(words(pages.at(i)), words(doc->pageRunTexts(i)));
    }

    // CSV and XLSX of one report hold the same numbers, dates and texts.
    void csvAndXlsxAgree()
    {
        TestEnv env;
        const auto doc = document(9, 4);
        const QString csv = env.path(QStringLiteral("r.csv"));
        const QString xlsx = env.path(QStringLiteral("r.xlsx"));
        CsvWriter::write(*doc, csv);
        XlsxWriter::write(*doc, xlsx);

        const QByteArray csvBytes = TestEnv::readFile(csv);
        QVERIFY(csvBytes.startsWith("\xEF\xBB\xBF"));
        const QStringList csvLines
            = QString::fromUtf8(csvBytes.mid(3)).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
        // One heading row; the group's heading is a column of each row under it.
        QCOMPARE(csvLines.at(0), QStringLiteral("Ryhmä;Selite;Päivä;Debet;Kredit"));
        QCOMPARE(csvLines.at(1), QStringLiteral("Ryhmä 1;Äänestys ja €-maksu 1;1.9.2011;123,45;"));
        QCOMPARE(csvLines.last(), QStringLiteral(";Kaikki yhteensä;;3086,25;2469,00"));

        // The sheet's cells by reference, its texts shared.
        const QString sheet = run(QStringLiteral("unzip"), { "-p", xlsx, "xl/worksheets/sheet1.xml" });
        const auto cell = [&sheet](const char* ref) {
            const QRegularExpression value(QStringLiteral("<c r=\"%1\"[^>]*><v>([^<]*)</v>").arg(ref));
            return value.match(sheet).captured(1);
        };
        QStringList shared;
        const QRegularExpression text(QStringLiteral("<t[^>]*>([^<]*)</t>"));
        for (const auto& m :
            text.globalMatch(run(QStringLiteral("unzip"), { "-p", xlsx, "xl/sharedStrings.xml" })))
            shared.append(m.captured(1));
        // The association above the table; row 6 is the first detail row, its date a serial day and
        // its amount a number.
        QCOMPARE(
            shared.value(cell("A1").toInt(), QStringLiteral("-")), QStringLiteral("Åkerlundin ystävät ry"));
        QCOMPARE(cell("B6"), QStringLiteral("40787"));
        QCOMPARE(cell("C6"), QStringLiteral("123.45"));
    }

    // A file is written whole or not at all, and an old file stays until a new one is whole.
    void outputFailures()
    {
        TestEnv env;
        const auto doc = document(120, 50);
        const QString text
            = refusal([&] { PdfWriter::write(*doc, env.path(QStringLiteral("eiKansiota/r.pdf"))); });
        QVERIFY2(text.contains(QLatin1String("ei voitu kirjoittaa: kansiota")), qPrintable(text));

        const QString old = env.path(QStringLiteral("r.pdf"));
        QVERIFY(TestEnv::writeFile(old, "vanha"));
        QVERIFY_THROWS_EXCEPTION(
            ReportCancelled, PdfWriter::write(*doc, old, [](int page, int) { return page < 2; }));
        QCOMPARE(TestEnv::readFile(old), QByteArray("vanha"));
        QCOMPARE(QDir(env.path(QString())).entryList(QDir::Files | QDir::Hidden), QStringList { "r.pdf" });
    }

    // A full disk is told in Finnish by every writer, and nothing is left on it. The disk is a
    // small memory file system mounted for the test, which needs the right to mount.
    void fullDisk()
    {
        TestEnv env;
        const QString disk = env.path(QStringLiteral("levy"));
        QVERIFY(QDir().mkpath(disk));
        QProcess mount;
        mount.start(QStringLiteral("mount"), { "-t", "tmpfs", "-o", "size=16k", "tmpfs", disk });
        if (!mount.waitForFinished(10000) || mount.exitStatus() != QProcess::NormalExit
            || mount.exitCode() != 0)
            QSKIP("A small file system cannot be mounted here (no right to mount).");
        const struct Unmount {
            QString disk;
            ~Unmount() { QProcess::execute(QStringLiteral("umount"), { disk }); }
        } unmount { disk };
        const auto doc = document(3000, 50);
        for (const Writer write : writers) {
            const QString text = refusal([&] { write(*doc, disk + QStringLiteral("/r.out")); });
            QVERIFY2(text.contains(QStringLiteral("Levyllä ei ole tilaa")), qPrintable(text));
            QCOMPARE(QDir(disk).entryList(QDir::Files | QDir::Hidden), QStringList());
        }
    }
};

QTEST_MAIN(tst_ReportLayout)
#include "tst_ReportLayout.moc"
