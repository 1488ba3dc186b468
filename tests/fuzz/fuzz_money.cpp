#include "FuzzText.h"
#include "core/Money.h"

// Amounts as typed: whatever is accepted is shown and read back to the same value.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    forEachReading(data, size, [](const QString& text) {
        const std::optional<Money> m = Money::parse(text);
        if (!m)
            return;
        FUZZ_CHECK(m->raw() <= qint64(900'000'000'000) * Money::Scale
                && m->raw() >= -qint64(900'000'000'000) * Money::Scale,
            "Money::parse accepted an amount beyond its range");
        const std::optional<Money> plain = Money::parse(m->toPlainString());
        FUZZ_CHECK(plain && *plain == *m, "toPlainString does not read back to the same amount");
        const std::optional<Money> shown = Money::parse(m->toCurrencyString());
        FUZZ_CHECK(shown && *shown == m->roundedToCents(), "toCurrencyString does not read back to the cent");
    });
    return 0;
}
