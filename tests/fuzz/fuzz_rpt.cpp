#include "FuzzText.h"
#include "printing/ReportDefinition.h"
#include "printing/ReportError.h"

// Report definition files: either a definition whose cells lie in its columns, or a ReportError.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    try {
        const ReportDefinition d = ReportDefinition::parse(fuzzBytes(data, size), QStringLiteral("fuzz.rpt"));
        FUZZ_CHECK(!d.columns.isEmpty(), "a definition without columns was accepted");
        for (const ReportColumn& c : d.columns)
            FUZZ_CHECK(c.width > 0, "a column of no width was accepted");
        d.hasTotals();
        d.formulaName(QStringLiteral("Otsake"));
    } catch (const ReportError&) {
    }
    return 0;
}
