#include "printing/ReportDocument.h"
#include "printing/ReportError.h"
#include "printing/TextMetrics.h"

#include <QTest>

namespace {

// Vouchers as groups: number and date in the header line's cells, hidden in the entry rows;
// the description spans the rest of the line; a footer line after each voucher's total.
const QByteArray Vouchers = R"({
  "query": { "select": "SELECT 1" },
  "formulas": { "Seurannimi": "", "Otsake": "Kokeilu", "Lkm": "0" },
  "title": ["{Seurannimi}", "{Otsake}"],
  "fields": { "Selite": "text", "Loppu": "money" },
  "columns": [
    { "field": "Numero", "caption": "Nro", "width": 1, "align": "left", "format": "integer", "detail": false },
    { "field": "Pvm", "caption": "Päivä", "width": 1.5, "format": "date", "detail": false },
    { "field": "Tili", "caption": "Tili", "width": 3 },
    { "field": "Debet", "caption": "Debet", "width": 2, "format": "money", "total": true } ],
  "groups": [ { "field": "Numero", "totalCaption": "Tosite {Numero}",
    "headerCells": [ { "column": "Numero", "text": "{Numero}" }, { "column": "Pvm", "text": "{Pvm}" },
                     { "column": "Tili", "to": "Debet", "text": "{Selite}", "wrap": true } ],
    "footerCells": [ { "column": "Tili", "text": "Jäljellä", "align": "right" },
                     { "column": "Debet", "text": "{Loppu}" } ] } ],
  "grandTotal": "Yhteensä",
  "summary": [ [ { "column": "Numero", "to": "Pvm", "text": "Tositteita" },
                 { "column": "Tili", "text": "{Lkm} kpl" } ] ] })";

std::unique_ptr<ReportDocument> document(const QString& longText = {})
{
    ReportDefinition d = ReportDefinition::parse(Vouchers, QStringLiteral("kokeilu.rpt"));
    auto data = std::make_shared<ReportData>(std::vector<ReportData::Field> {
        { "Numero", CellFormat::Integer }, { "Pvm", CellFormat::Date }, { "Tili", CellFormat::Text },
        { "Debet", CellFormat::Money }, { "Selite", CellFormat::Text }, { "Loppu", CellFormat::Money } });
    const struct {
        int numero;
        const char* pvm;
        const char* tili;
        qint64 debet;
    } rows[] = { { 1, "2011-01-05", "1910 Pankki", 1000000 }, { 1, "2011-01-05", "3000 Jäsenmaksut", 250000 },
        { 2, "2011-02-07", "4000 Vuokrat", 55500 } };
    int r = 0;
    for (const auto& row : rows) {
        data->appendRow();
        data->setNumber(r, 0, row.numero);
        data->setValue(r, 1, QString::fromLatin1(row.pvm));
        data->setText(r, 2, QString::fromUtf8(row.tili));
        data->setNumber(r, 3, row.debet);
        data->setText(r, 4,
            row.numero == 1 && !longText.isEmpty() ? longText : QStringLiteral("Tosite %1").arg(row.numero));
        data->setNumber(r, 5, row.numero * 10000);
        ++r;
    }
    LayoutOptions o;
    o.fonts = d.fonts;
    o.printDate = QDate(2011, 12, 31);
    o.formulas.insert(QStringLiteral("Seurannimi"), QStringLiteral("Kerho ry"));
    o.formulas.insert(QStringLiteral("Lkm"), QStringLiteral("2"));
    return std::make_unique<ReportDocument>(std::move(d), std::move(data), std::move(o));
}

} // namespace

class tst_ReportCells final : public QObject {
    Q_OBJECT

private slots:
    // Spreadsheets get the header cells typed in their columns, the hidden columns on every
    // entry row, and the footer line.
    void tableRows()
    {
        const auto doc = document();
        const auto rows = doc->tableRows();
        QCOMPARE(int(rows.size()), 11);
        QCOMPARE(rows[0].cells.at(0), QVariant(qint64(1)));
        QCOMPARE(rows[0].cells.at(1), QVariant(QDate(2011, 1, 5)));
        QCOMPARE(rows[0].cells.at(2).toString(), QStringLiteral("Tosite 1"));
        QCOMPARE(rows[1].cells.at(0), QVariant(qint64(1)));
        QCOMPARE(rows[4].cells.at(2).toString(), QStringLiteral("Jäljellä"));
        QCOMPARE(rows[4].cells.at(3), QVariant(1.0));
    }

    void wrapping_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("cut");
        QTest::newRow("one long word") << QString(200, u'W') << false;
        QTest::newRow("longer than twelve lines") << QString(QStringLiteral("sana ")).repeated(400) << true;
    }
    // A wrapped text keeps every word, in order, within its columns, one line under another; a
    // line that would be the thirteenth is cut instead.
    void wrapping()
    {
        QFETCH(QString, text);
        QFETCH(bool, cut);
        const auto doc = document(text);
        const ReportPage page = doc->page(0);
        const float right = float(doc->pageSize().width()) - 42.52f - 3;
        const QChar ellipsis(0x2026);
        QStringList lines;
        float lastY = 0;
        for (const TextRun& run : page.runs) {
            QString t = page.runText(run);
            if (t.endsWith(ellipsis))
                t.chop(1);
            if (t.isEmpty() || !text.contains(t))
                continue;
            QVERIFY(run.y > lastY);
            lastY = run.y;
            QVERIFY(run.x + TextMetrics::width(doc->fonts()[run.font], page.runBytes(run), run.length)
                <= right + 0.01f);
            lines << page.runText(run);
        }
        const QString joined = lines.join(text.contains(u' ') ? QStringLiteral(" ") : QString());
        if (cut) {
            QCOMPARE(lines.size(), 12);
            QVERIFY(joined.endsWith(ellipsis));
        } else {
            QCOMPARE(joined, text.trimmed());
        }
    }

    void errors_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QString>("message");
        QTest::newRow("unknown column")
            << QByteArray(R"("column": "Tili")") << QByteArray(R"("column": "Kredit")")
            << "solun saraketta Kredit ei ole.";
        QTest::newRow("span to the left") << QByteArray(R"("column": "Tili", "to": "Debet")")
                                          << QByteArray(R"("column": "Tili", "to": "Pvm")")
                                          << "solu ei voi ulottua sarakkeesta Tili sarakkeeseen Pvm.";
    }
    void errors()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QString, message);
        QByteArray json = Vouchers;
        QVERIFY(json.contains(from));
        json.replace(json.indexOf(from), from.size(), to);
        try {
            ReportDefinition::parse(json, QStringLiteral("kokeilu.rpt"));
            QFAIL("no error");
        } catch (const ReportError& e) {
            QVERIFY2(e.text().endsWith(message), qPrintable(e.text()));
        }
    }
};

QTEST_MAIN(tst_ReportCells)
#include "tst_ReportCells.moc"
