#include "SqlScript.h"

namespace SqlScript {

QStringList split(const QString& text)
{
    QStringList statements;
    QString current;
    enum class State { Normal, Single, Double, LineComment, BlockComment } state = State::Normal;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const QChar next = i + 1 < text.size() ? text.at(i + 1) : QChar();
        switch (state) {
        case State::Normal:
            if (c == u'-' && next == u'-') {
                state = State::LineComment;
                ++i;
                continue;
            }
            if (c == u'/' && next == u'*') {
                state = State::BlockComment;
                ++i;
                continue;
            }
            if (c == u';') {
                if (!current.trimmed().isEmpty())
                    statements.append(current.trimmed());
                current.clear();
                continue;
            }
            if (c == u'\'')
                state = State::Single;
            else if (c == u'"')
                state = State::Double;
            current.append(c);
            break;
        case State::Single:
        case State::Double:
            // A doubled quote inside a literal toggles out and straight back in.
            if (c == (state == State::Single ? u'\'' : u'"'))
                state = State::Normal;
            current.append(c);
            break;
        case State::LineComment:
            if (c == u'\n') {
                state = State::Normal;
                current.append(c);
            }
            break;
        case State::BlockComment:
            if (c == u'*' && next == u'/') {
                state = State::Normal;
                ++i;
            }
            break;
        }
    }
    if (!current.trimmed().isEmpty())
        statements.append(current.trimmed());
    return statements;
}

} // namespace SqlScript
