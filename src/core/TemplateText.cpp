#include "core/TemplateText.h"

#include <QSet>
#include <QStringList>

namespace TemplateText {

std::vector<qint32> accounts(const QString& tilit)
{
    std::vector<qint32> ids;
    QSet<qint32> seen;
    for (const QString& piece : tilit.split(u',', Qt::SkipEmptyParts)) {
        bool ok = false;
        const qint32 id = piece.trimmed().toInt(&ok);
        if (ok && id > 0 && !seen.contains(id)) {
            seen.insert(id);
            ids.push_back(id);
        }
    }
    return ids;
}

QString accountList(const std::vector<qint32>& ids)
{
    QString text;
    for (qint32 id : ids)
        text += QString::number(id) + u',';
    return text;
}

std::vector<Term> terms(const QString& kaava)
{
    std::vector<Term> result;
    for (const QString& piece : kaava.split(u',', Qt::SkipEmptyParts)) {
        if (int(result.size()) == MaxTerms)
            break;
        Term term;
        term.sign = piece.at(0);
        bool ok = false;
        const qint32 id = piece.mid(1).trimmed().toInt(&ok);
        if (ok)
            term.rowId = id;
        result.push_back(term);
    }
    return result;
}

QString appendTerm(const QString& kaava, bool adds, qint32 rowId)
{
    return kaava + (adds ? u'+' : u'-') + QString::number(rowId) + u',';
}

} // namespace TemplateText
