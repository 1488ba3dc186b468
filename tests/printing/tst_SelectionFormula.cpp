#include "TestEnv.h"
#include "printing/ReportError.h"
#include "printing/ReportFormulas.h"
#include "printing/SectionFonts.h"
#include "printing/SelectionFormula.h"

#include <QDate>
#include <QTest>

namespace {

// The tables and fields of the journal and ledger printouts; viArvo holds money.
std::optional<FormulaField> resolve(const QString& table, const QString& field)
{
    static const QStringList known
        = { "to.toPvm", "to.toNumero", "to.toAvaustosite", "to.toPaatostosite", "vi.viAvausvienti",
              "vi.viPaatosvienti", "vi.viArvo", "tl.tlPrint", "tl.tlID", "tl.tlNumero", "vi.viSelite" };
    if (!known.contains(table + u'.' + field))
        return std::nullopt;
    return FormulaField { u'"' + table + QStringLiteral("\".\"") + field + u'"', field == u"viArvo" };
}

QString show(const QVariantList& values)
{
    QStringList parts;
    for (const QVariant& v : values)
        parts.append(v.toString());
    return parts.join(u'|');
}

} // namespace

class tst_SelectionFormula final : public QObject {
    Q_OBJECT

private slots:
    void toSql_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("values");
        textRow("journal, ordinary vouchers",
            "({to.toPvm} <= Date(2011,12,31) AND {to.toPvm} >= Date(2011,1,1)) AND {to.toNumero} >= 0 AND "
            "{to.toAvaustosite} = False AND {to.toPaatostosite} = False",
            R"(("to"."toPvm" <= ? AND "to"."toPvm" >= ?) AND "to"."toNumero" >= ? AND ("to"."toAvaustosite" = 0) AND ("to"."toPaatostosite" = 0))",
            "2011-12-31|2011-01-01|0");
        textRow("keywords in any case, NOT, truth values compared",
            "not {to.toNumero} < 0 and {to.toPaatostosite} <> True or {to.toAvaustosite} = true",
            R"(NOT ("to"."toNumero" < ?) AND ("to"."toPaatostosite" = 0) OR ("to"."toAvaustosite" <> 0))",
            "0");
        textRow("a yes/no field alone, truth values alone", "{tl.tlPrint} OR False OR True",
            R"(("tl"."tlPrint" <> 0) OR 1 = 0 OR 1 = 1)", "");
        textRow("texts with quotes in both forms",
            "{vi.viSelite} = 'Matin ''kerho''' OR {vi.viSelite} <> \"x\"",
            R"("vi"."viSelite" = ? OR "vi"."viSelite" <> ?)", "Matin 'kerho'|x");
        textRow("money in euros on the left, a negative number", "12.5 < {vi.viArvo} AND {to.toNumero} > -1",
            R"(? < "vi"."viArvo" AND "to"."toNumero" > ?)", "125000|-1");
        textRow("blank formula selects everything", "   ", "", "");
    }
    void toSql()
    {
        QFETCH(QString, formula);
        QFETCH(QString, sql);
        QFETCH(QString, values);
        const SqlCondition c = SelectionFormula::toSql(formula, resolve);
        QCOMPARE(c.sql, sql);
        QCOMPARE(show(c.values), values);
    }

    void malformed_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<QString>("message");
        textRow(
            "no such day", "{to.toPvm} <= Date(2011,2,29)", "Date(2011,2,29) ei ole oikea päivä (kohta 15)");
        textRow("extra parenthesis", "{to.toNumero} >= 0)", "ylimääräistä tekstiä: ) (kohta 19)");
        textRow("field the resolver does not know", "{to.eiOle} = 1", "Kenttää {to.eiOle} ei ole");
        textRow("unclosed field", "{to.toPvm = 1", "puuttuu loppusulje }");
        textRow("function", "Year({to.toPvm}) = 2011", "funktiota Year ei tueta");
        textRow("unknown word", "{to.toNumero} = Tosite", "sana, jota ei tunneta: Tosite");
        textRow("truth value ordered", "{to.toAvaustosite} > True", "vain merkeillä = ja <>");
        textRow("unclosed text", "{vi.viSelite} = 'abc", "lainausmerkkiä vaille");
        textRow("a number is no condition", "5", "puuttuu vertailu");
        textRow("amount beyond money", "{vi.viArvo} > 99999999999999", "luku 99999999999999 on liian suuri");
        textRow("digits of another script", "{to.toNumero} = ٣", "merkki, jota ei tunneta: ٣");
        QTest::newRow("parentheses nested too deep")
            << QString(50000, u'(') + "{to.toNumero} = 1" + QString(50000, u')') << "liian monta sisäkkäistä";
    }
    void malformed()
    {
        QFETCH(QString, formula);
        QFETCH(QString, message);
        try {
            SelectionFormula::toSql(formula, resolve);
            QFAIL("the formula was accepted");
        } catch (const ReportError& e) {
            QVERIFY2(e.text().contains(message), qPrintable(e.text()));
        }
    }

    void sortFields_data()
    {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("orderBy");
        QTest::newRow("ledger order, blanks allowed") << QStringList { " +{tl.tlNumero}",
            "- { to.toNumero }" } << R"("tl"."tlNumero" ASC, "to"."toNumero" DESC)";
        QTest::newRow("none") << QStringList() << "";
        QTest::newRow("no sign") << QStringList { "{tl.tlNumero}" } << "ei ole muotoa +{taulu.kenttä}";
    }
    void sortFields()
    {
        QFETCH(QStringList, fields);
        QFETCH(QString, orderBy);
        QString result;
        try {
            result = SelectionFormula::orderBy(fields, resolve);
        } catch (const ReportError& e) {
            result = e.text();
        }
        QVERIFY2(orderBy.isEmpty() ? result.isEmpty() : result.contains(orderBy), qPrintable(result));
    }

    void namedFormula_data()
    {
        QTest::addColumn<QString>("formula");
        QTest::addColumn<QString>("name"); // "" when the formula is refused
        QTest::addColumn<QString>("value");
        const auto row = [](const char* formula, const char* name = "", const char* value = "") {
            QTest::newRow(formula) << QString::fromUtf8(formula) << QString::fromUtf8(name)
                                   << QString::fromUtf8(value);
        };
        row("Otsake = 'Tilien saldot'", "Otsake", "Tilien saldot");
        row("Jakso= ''", "Jakso", "");
        row("Seurannimi= 'O'Brienin ''kerho'' ''''tupla'''''", "Seurannimi", "O'Brienin 'kerho' ''tupla''");
        for (const char* refused : { "Otsake 'x'", "= 'x'", "Otsake= x", "Otsake= 'x", "Ots ake= 'x'" })
            row(refused);
    }
    void namedFormula()
    {
        QFETCH(QString, formula);
        QFETCH(QString, name);
        QFETCH(QString, value);
        const std::optional<ReportFormulas::Named> f = ReportFormulas::parse(formula);
        QCOMPARE(f.has_value(), !name.isEmpty());
        if (f) {
            QCOMPARE(f->name, name);
            QCOMPARE(f->value, value);
        }
    }

    // The font sets' effect on a layout: set 1 section by section, set 2 the whole report.
    void applyFonts()
    {
        SectionFontTable layout;
        for (FontSpec& f : layout)
            f = { QStringLiteral("Times New Roman"), 11, false, false };
        layout[size_t(Section::Header)].bold = true;

        SectionFontTable one = layout;
        SectionFonts::apply(SectionFonts::entries(1, QStringLiteral("Courier New"), 8), one);
        QCOMPARE(one[size_t(Section::Detail)], (FontSpec { "Courier New", 8, false, false }));
        QCOMPARE(one[size_t(Section::Title)], (FontSpec { "Courier New", 12, false, false }));
        // The page header keeps the layout's size and its bold.
        QCOMPARE(one[size_t(Section::Header)], (FontSpec { "Courier New", 11, true, false }));

        SectionFontTable two = layout;
        SectionFonts::apply(SectionFonts::entries(2, QStringLiteral("Arial"), 9), two);
        for (const Section s : { Section::Detail, Section::Group, Section::Total, Section::Footer })
            QCOMPARE(two[size_t(s)], (FontSpec { "Arial", 9, false, false }));
        QCOMPARE(two[size_t(Section::Title)].size, 12.0);
        QCOMPARE(two[size_t(Section::Header)].size, 11.0);

        for (const char* bad : { "DETAIL;Arial;9;X;X;X", "NOTHING;Arial;9;X;X;X;X",
                 "DETAIL;Arial;iso;X;X;X;X", "DETAIL;Arial;9;X;2;X;X", "DETAIL;;9;X;X;X;X" }) {
            SectionFontTable t = layout;
            QVERIFY_THROWS_EXCEPTION(ReportError, SectionFonts::apply({ QString::fromUtf8(bad) }, t));
        }
        const std::pair<const char*, FontFamily> families[]
            = { { "Times New Roman", FontFamily::Serif }, { "Courier New", FontFamily::Mono },
                  { "DejaVu Sans Mono", FontFamily::Mono }, { "Arial", FontFamily::Sans } };
        for (const auto& [name, family] : families)
            QCOMPARE(SectionFonts::family(QString::fromUtf8(name)), family);
    }
};

QTEST_GUILESS_MAIN(tst_SelectionFormula)
#include "tst_SelectionFormula.moc"
