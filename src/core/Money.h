#pragma once

#include <QString>
#include <QtGlobal>
#include <compare>
#include <optional>

// An amount of euros held exactly as a count of ten-thousandths (four decimals).
// Sums and differences never round; only display rounds to cents.
class Money final {
public:
    static constexpr qint64 Scale = 10000;

    constexpr Money() = default;
    static constexpr Money fromRaw(qint64 tenThousandths)
    {
        Money m;
        m.m_raw = tenThousandths;
        return m;
    }
    static constexpr Money fromCents(qint64 cents) { return fromRaw(cents * 100); }

    // Parses what a Finnish user types: "12,50", "12.50", "1 234,50", "-5", "1.234,50",
    // with or without "€". More than four decimals are rounded half away from zero.
    // Anything else, and amounts beyond about 900 billion euros, gives nullopt.
    static std::optional<Money> parse(const QString& text);

    constexpr qint64 raw() const { return m_raw; }
    constexpr bool isZero() const { return m_raw == 0; }
    constexpr bool isNegative() const { return m_raw < 0; }

    // Rounded to whole cents, half away from zero.
    Money roundedToCents() const;

    // "1 234,50" (no-break space between thousands) and "1 234,50 €".
    QString toString() const;
    QString toCurrencyString() const;
    // "1234.5000": for places that need a plain machine-readable number.
    QString toPlainString() const;
    double toDouble() const { return double(m_raw) / Scale; }

    constexpr Money operator-() const { return fromRaw(-m_raw); }
    constexpr Money operator+(Money o) const { return fromRaw(m_raw + o.m_raw); }
    constexpr Money operator-(Money o) const { return fromRaw(m_raw - o.m_raw); }
    Money& operator+=(Money o)
    {
        m_raw += o.m_raw;
        return *this;
    }
    Money& operator-=(Money o)
    {
        m_raw -= o.m_raw;
        return *this;
    }
    constexpr auto operator<=>(const Money&) const = default;

private:
    qint64 m_raw = 0;
};

// Entries whose type ("D" or "K") equals a row's balance side add their amount, the others
// subtract it.
Money amountBySide(const QString& entryType, const QString& balanceSide, Money amount);
