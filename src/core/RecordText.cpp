#include "core/RecordText.h"

namespace RecordText {

QString cut(const QString& text, int maxLength)
{
    if (text.size() <= maxLength)
        return text;
    // Never split a surrogate pair: cutting must leave valid text.
    int end = maxLength;
    if (text.at(end - 1).isHighSurrogate())
        --end;
    return text.left(end);
}

QString blankIfEmpty(const QString& text) { return text.isEmpty() ? QStringLiteral(" ") : text; }

} // namespace RecordText
