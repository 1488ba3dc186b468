#include "FuzzText.h"
#include "core/TemplateText.h"

#include <QSet>

// The account lists and formulas of statement templates: what is read is written back the
// same way and reads back the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    forEachReading(data, size, [](const QString& text) {
        const std::vector<qint32> ids = TemplateText::accounts(text);
        QSet<qint32> seen;
        for (qint32 id : ids) {
            FUZZ_CHECK(id > 0, "an account list gave a key of 0 or below");
            FUZZ_CHECK(!seen.contains(id), "an account list gave a key twice");
            seen.insert(id);
        }
        FUZZ_CHECK(TemplateText::accounts(TemplateText::accountList(ids)) == ids,
            "an account list does not read back");

        const std::vector<TemplateText::Term> terms = TemplateText::terms(text);
        FUZZ_CHECK(int(terms.size()) <= TemplateText::MaxTerms, "a formula gave more terms than are read");
        QString rebuilt;
        std::vector<TemplateText::Term> named;
        for (const TemplateText::Term& t : terms)
            if (t.rowId) {
                rebuilt = TemplateText::appendTerm(rebuilt, t.adds(), *t.rowId);
                named.push_back(t);
            }
        const std::vector<TemplateText::Term> again = TemplateText::terms(rebuilt);
        FUZZ_CHECK(again.size() == named.size(), "a rebuilt formula has another number of terms");
        for (size_t i = 0; i < again.size(); ++i)
            FUZZ_CHECK(again[i].adds() == named[i].adds() && again[i].rowId == named[i].rowId,
                "a rebuilt formula reads back differently");
    });
    return 0;
}
