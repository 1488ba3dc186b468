#include "FuzzText.h"
#include "core/Dates.h"

// Dates as typed: an accepted date is shown and read back as the same day, and its storage
// form reads back too.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    forEachReading(data, size, [](const QString& text) {
        const QDate d = Dates::parse(text);
        Dates::fromSql(text);
        if (!d.isValid())
            return;
        FUZZ_CHECK(d.year() >= 1 && d.year() <= 9999, "Dates::parse accepted a year outside 1–9999");
        FUZZ_CHECK(Dates::parse(Dates::format(d)) == d, "a parsed date does not read back from its display");
        FUZZ_CHECK(Dates::fromSql(Dates::toSql(d)) == d, "a parsed date does not read back from storage");
    });
    return 0;
}
