#include "ScriptedDialogs.h"

#include <QTest>

QString ScriptedDialogs::kindName(Kind kind)
{
    // In the order of Kind.
    static const char* const names[]
        = { "information", "plain", "error", "question", "input", "open", "save", "beep", "url" };
    return QString::fromLatin1(names[int(kind)]);
}

QStringList ScriptedDialogs::transcript() const
{
    QStringList lines;
    for (const Shown& s : m_shown)
        lines.append(kindName(s.kind) + QStringLiteral(": ") + s.text);
    return lines;
}

QStringList ScriptedDialogs::texts(Kind kind) const
{
    QStringList result;
    for (const Shown& s : m_shown)
        if (s.kind == kind)
            result.append(s.text);
    return result;
}

void ScriptedDialogs::clear()
{
    m_answers.clear();
    m_shown.clear();
    m_failures.clear();
}

ScriptedDialogs& ScriptedDialogs::queue(Kind kind, const QVariant& value)
{
    m_answers.append({ kind, value });
    return *this;
}

QVariant ScriptedDialogs::take(Kind kind, const QString& text)
{
    m_shown.append({ kind, text });
    if (m_answers.isEmpty() || m_answers.first().first != kind) {
        const QString failure = QStringLiteral("unscripted %1: %2").arg(kindName(kind), text);
        m_failures.append(failure);
        QTest::qFail(qPrintable(failure), __FILE__, __LINE__);
        return {};
    }
    return m_answers.takeFirst().second;
}

std::optional<QString> ScriptedDialogs::input(const QString& prompt, const QString&)
{
    const QVariant v = take(Kind::Input, prompt);
    return v.isValid() ? std::optional(v.toString()) : std::nullopt;
}

QString ScriptedDialogs::openFileName(const QString& title, const QString&, const QString& start)
{
    return take(Kind::OpenFile, title + QStringLiteral(" | ") + start).toString();
}

QString ScriptedDialogs::saveFileName(const QString& title, const QString&, const QString& start)
{
    return take(Kind::SaveFile, title + QStringLiteral(" | ") + start).toString();
}
