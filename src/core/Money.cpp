#include "core/Money.h"

#include <QChar>

namespace {

constexpr QChar NoBreakSpace(0x00A0);
// Large enough for any association, small enough that sums of a year cannot overflow.
constexpr qint64 MaxAbsRaw = qint64(900'000'000'000) * Money::Scale;

bool isGroupSpace(QChar c) { return c == u' ' || c == NoBreakSpace || c == QChar(0x202F) || c == u'\''; }

QString groupThousands(QString digits)
{
    for (int i = int(digits.size()) - 3; i > 0; i -= 3)
        digits.insert(i, NoBreakSpace);
    return digits;
}

} // namespace

std::optional<Money> Money::parse(const QString& input)
{
    QString text = input.trimmed();
    if (text.endsWith(u'€'))
        text.chop(1);
    else if (text.startsWith(u'€'))
        text.remove(0, 1);
    text = text.trimmed();

    bool negative = false;
    if (text.startsWith(u'-') || text.startsWith(QChar(0x2212))) {
        negative = true;
        text.remove(0, 1);
    } else if (text.startsWith(u'+')) {
        text.remove(0, 1);
    }
    text = text.trimmed();
    if (text.isEmpty())
        return std::nullopt;

    // The decimal separator is the last ',' or '.'; a lone '.' followed by exactly three
    // digits in a number that has more dots is a thousands separator ("1.234.567").
    const int lastComma = int(text.lastIndexOf(u','));
    const int lastDot = int(text.lastIndexOf(u'.'));
    int decimalPos = std::max(lastComma, lastDot);
    if (decimalPos >= 0 && lastComma < 0 && text.count(u'.') > 1)
        decimalPos = -1;
    if (decimalPos >= 0 && lastDot < 0 && text.count(u',') > 1)
        return std::nullopt;

    QString intPart = decimalPos >= 0 ? text.left(decimalPos) : text;
    const QString fracPart = decimalPos >= 0 ? text.mid(decimalPos + 1) : QString();

    // Thousands separators in the integer part: spaces, or the other punctuation mark.
    const QChar otherMark = (decimalPos >= 0 && text.at(decimalPos) == u',') ? u'.' : u',';
    QString digits;
    int groupLen = -1;
    for (QChar c : intPart) {
        if (c.isDigit() && c.unicode() < 128) {
            digits.append(c);
            if (groupLen >= 0)
                ++groupLen;
        } else if (isGroupSpace(c) || c == otherMark || (decimalPos < 0 && c == u'.')) {
            if (digits.isEmpty() || (groupLen >= 0 && groupLen != 3))
                return std::nullopt;
            groupLen = 0;
        } else {
            return std::nullopt;
        }
    }
    if (groupLen >= 0 && groupLen != 3)
        return std::nullopt;
    if (digits.isEmpty() && fracPart.isEmpty())
        return std::nullopt;
    for (QChar c : fracPart)
        if (!c.isDigit() || c.unicode() >= 128)
            return std::nullopt;
    // Leading zeros add nothing, however many there are.
    while (digits.size() > 1 && digits.startsWith(u'0'))
        digits.remove(0, 1);
    if (digits.size() > 13)
        return std::nullopt;

    qint64 whole = digits.isEmpty() ? 0 : digits.toLongLong();
    qint64 frac = 0;
    for (int i = 0; i < 4; ++i)
        frac = frac * 10 + (i < fracPart.size() ? fracPart.at(i).digitValue() : 0);
    // Round half away from zero on the fifth decimal.
    if (fracPart.size() > 4 && fracPart.at(4).digitValue() >= 5)
        ++frac;

    qint64 raw = whole * Scale + frac;
    if (raw > MaxAbsRaw)
        return std::nullopt;
    return fromRaw(negative ? -raw : raw);
}

Money Money::roundedToCents() const
{
    const qint64 absRaw = m_raw < 0 ? -m_raw : m_raw;
    const qint64 cents = (absRaw + 50) / 100;
    return fromRaw((m_raw < 0 ? -cents : cents) * 100);
}

QString Money::toString() const
{
    const qint64 cents = roundedToCents().raw() / 100;
    const qint64 absCents = cents < 0 ? -cents : cents;
    QString text = groupThousands(QString::number(absCents / 100)) + u','
        + QStringLiteral("%1").arg(absCents % 100, 2, 10, QChar(u'0'));
    return cents < 0 ? u'-' + text : text;
}

QString Money::toCurrencyString() const { return toString() + NoBreakSpace + u'€'; }

QString Money::toPlainString() const
{
    const qint64 absRaw = m_raw < 0 ? -m_raw : m_raw;
    return (m_raw < 0 ? QStringLiteral("-") : QString()) + QString::number(absRaw / Scale) + u'.'
        + QStringLiteral("%1").arg(absRaw % Scale, 4, 10, QChar(u'0'));
}

Money amountBySide(const QString& entryType, const QString& balanceSide, Money amount)
{
    return entryType.left(1).compare(balanceSide.left(1), Qt::CaseInsensitive) == 0 ? amount : -amount;
}
