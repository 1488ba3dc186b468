#pragma once

#include "core/Dialogs.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>

// Dialogs for tests: answers come from a queue in the order they were scripted, every text
// shown is recorded with its kind, and an unscripted question or dialog fails the test.
class ScriptedDialogs final : public Dialogs {
public:
    enum class Kind { Information, Plain, Error, Question, Input, OpenFile, SaveFile, Beep, OpenUrl };
    struct Shown {
        Kind kind;
        QString text;
    };

    ScriptedDialogs() { Dialogs::install(this); }
    ~ScriptedDialogs() override { Dialogs::install(nullptr); }

    ScriptedDialogs& answerYes() { return queue(Kind::Question, true); }
    ScriptedDialogs& answerNo() { return queue(Kind::Question, false); }
    ScriptedDialogs& answerOpenFile(const QString& path) { return queue(Kind::OpenFile, path); }
    ScriptedDialogs& answerSaveFile(const QString& path) { return queue(Kind::SaveFile, path); }
    ScriptedDialogs& answerInput(const QString& text) { return queue(Kind::Input, text); }
    ScriptedDialogs& cancelInput() { return queue(Kind::Input, QVariant()); }

    const QList<Shown>& shown() const { return m_shown; }
    // "information: text" lines, for comparing the whole dialogue in one go.
    QStringList transcript() const;
    QStringList texts(Kind kind) const;
    int remainingAnswers() const { return int(m_answers.size()); }
    // Unexpected questions and answers of the wrong kind.
    const QStringList& failures() const { return m_failures; }
    void clear();

    void information(const QString& text) override { m_shown.append({ Kind::Information, text }); }
    void plain(const QString& text) override { m_shown.append({ Kind::Plain, text }); }
    void error(const QString& text) override { m_shown.append({ Kind::Error, text }); }
    bool question(const QString& text) override { return take(Kind::Question, text).toBool(); }
    std::optional<QString> input(const QString& prompt, const QString& defaultText) override;
    QString openFileName(const QString& title, const QString& filter, const QString& start) override;
    QString saveFileName(const QString& title, const QString& filter, const QString& start) override;
    void beep() override { m_shown.append({ Kind::Beep, QString() }); }
    void openUrl(const QUrl& url) override { m_shown.append({ Kind::OpenUrl, url.toString() }); }

    static QString kindName(Kind kind);

private:
    ScriptedDialogs& queue(Kind kind, const QVariant& value);
    QVariant take(Kind kind, const QString& text);

    QList<QPair<Kind, QVariant>> m_answers;
    QList<Shown> m_shown;
    QStringList m_failures;
};
