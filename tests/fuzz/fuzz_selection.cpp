#include "FuzzText.h"
#include "printing/ReportError.h"
#include "printing/ReportFormulas.h"
#include "printing/SelectionFormula.h"

#include <QStringList>

namespace {

// The fields of the journal and ledger printouts; vi.viArvo holds money.
std::optional<FormulaField> resolve(const QString& table, const QString& field)
{
    static const QStringList known = { "to.toPvm", "to.toNumero", "to.toAvaustosite", "vi.viArvo",
        "tl.tlPrint", "tl.tlNumero", "vi.viSelite" };
    if (!known.contains(table + u'.' + field))
        return std::nullopt;
    return FormulaField { u'"' + table + QStringLiteral("\".\"") + field + u'"', field == u"viArvo" };
}

} // namespace

// Selection formulas, sort fields and named formulas: either bound SQL with one value per
// placeholder, or a ReportError; never anything else.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    forEachReading(data, size, [](const QString& text) {
        try {
            const SqlCondition c = SelectionFormula::toSql(text, resolve);
            FUZZ_CHECK(c.sql.count(u'?') == c.values.size(), "placeholders and values differ in number");
        } catch (const ReportError&) {
        }
        try {
            SelectionFormula::orderBy(text.split(u'\n'), resolve);
        } catch (const ReportError&) {
        }
        ReportFormulas::parse(text);
    });
    return 0;
}
