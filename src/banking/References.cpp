#include "banking/References.h"

namespace References {

QString compact(const QString& text)
{
    QString out;
    for (const QChar c : text)
        if (!c.isSpace())
            out.append(c.toUpper());
    return out;
}

int finnishCheckDigit(const QString& base)
{
    if (base.size() < 3 || base.size() > 19)
        return -1;
    static constexpr int Weights[] = { 7, 3, 1 };
    int sum = 0;
    for (qsizetype i = 0; i < base.size(); ++i) {
        const QChar c = base.at(base.size() - 1 - i);
        if (c < u'0' || c > u'9')
            return -1;
        sum += (c.unicode() - u'0') * Weights[i % 3];
    }
    return (10 - sum % 10) % 10;
}

namespace {

// A national reference without the zeros a fixed-width field fills it with.
QString withoutLeadingZeros(const QString& ref)
{
    qsizetype i = 0;
    while (i < ref.size() - 1 && ref.at(i) == u'0')
        ++i;
    return ref.mid(i);
}

} // namespace

bool validFinnish(const QString& text)
{
    const QString ref = withoutLeadingZeros(compact(text));
    if (ref.size() < 4 || ref.size() > 20)
        return false;
    const int check = finnishCheckDigit(ref.left(ref.size() - 1));
    return check >= 0 && ref.back() == QChar(u'0' + check);
}

bool validRf(const QString& text)
{
    const QString ref = compact(text);
    if (ref.size() < 5 || ref.size() > 25 || !ref.startsWith(QLatin1String("RF")))
        return false;
    // The first four characters go to the end; letters count 10 (A) to 35 (Z).
    const QString moved = ref.mid(4) + ref.left(4);
    int rest = 0;
    for (const QChar c : moved) {
        int value = 0;
        if (c >= u'0' && c <= u'9')
            value = c.unicode() - u'0';
        else if (c >= u'A' && c <= u'Z')
            value = c.unicode() - u'A' + 10;
        else
            return false;
        rest = (rest * (value >= 10 ? 100 : 10) + value) % 97;
    }
    return rest == 1 && ref.at(2).isDigit() && ref.at(3).isDigit();
}

QString usable(const QString& text)
{
    const QString ref = compact(text);
    if (validRf(ref))
        return ref;
    return validFinnish(ref) ? withoutLeadingZeros(ref) : QString();
}

} // namespace References
