#include "printing/ReportFormulas.h"

namespace ReportFormulas {

std::optional<Named> parse(const QString& formula)
{
    const qsizetype equals = formula.indexOf(u'=');
    if (equals <= 0)
        return std::nullopt;
    const QString name = formula.left(equals).trimmed();
    if (name.isEmpty())
        return std::nullopt;
    for (const QChar c : name)
        if (!(c.isLetterOrNumber() || c == u'_'))
            return std::nullopt;
    const QString rest = formula.mid(equals + 1).trimmed();
    if (rest.size() < 2 || !rest.startsWith(u'\'') || !rest.endsWith(u'\''))
        return std::nullopt;
    QString value = rest.mid(1, rest.size() - 2);
    value.replace(QStringLiteral("''"), QStringLiteral("'"));
    return Named { name, value };
}

QString quoted(const QString& text)
{
    return u'\'' + QString(text).replace(QStringLiteral("'"), QStringLiteral("''")) + u'\'';
}

} // namespace ReportFormulas
