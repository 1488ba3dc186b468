#include "vouchers/AmountInput.h"

#include <QRegularExpression>
#include <optional>

QString AmountInput::message() const
{
    switch (result) {
    case Result::Ok:
        return QString();
    case Result::NotANumber:
        return QStringLiteral("Summa ei ole luku. Viennin summaksi tulee 0.");
    case Result::Negative:
        return QStringLiteral("Summa ei voi olla negatiivinen. Kirjaa vienti vastakkaiselle puolelle.");
    case Result::TooManyDecimals:
        return QStringLiteral("Summassa voi olla enintään kaksi desimaalia.");
    case Result::TooLarge:
        return QStringLiteral("Summa on liian suuri.");
    }
    return QString();
}

AmountInput AmountInput::parse(const QString& text)
{
    static const Money largest = Money::fromCents(99999999999);
    AmountInput in;
    const QString t = text.trimmed();
    if (t.isEmpty())
        return in;
    const std::optional<Money> parsed = Money::parse(t);
    if (!parsed) {
        static const QRegularExpression digits(QStringLiteral("^-?[0-9\\s\\x{a0}]+([,.][0-9]*)?\\s*€?$"));
        in.result = digits.match(t).hasMatch() ? Result::TooLarge : Result::NotANumber;
        return in;
    }
    if (parsed->isNegative())
        in.result = Result::Negative;
    else if (*parsed > largest)
        in.result = Result::TooLarge;
    else if (parsed->roundedToCents() != *parsed)
        in.result = Result::TooManyDecimals;
    else
        in.value = *parsed;
    return in;
}
