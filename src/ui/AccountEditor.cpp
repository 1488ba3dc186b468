#include "ui/AccountEditor.h"

#include <QCompleter>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

QLineEdit* accountEditor(
    QWidget* parent, const QStringList& accounts, QObject* context, std::function<void(QLineEdit*)> accept)
{
    auto* editor = new QLineEdit(parent);
    editor->setObjectName(QStringLiteral("tTili"));
    auto* completer = new QCompleter(accounts, editor);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    editor->setCompleter(completer);
    QObject::connect(editor, &QLineEdit::returnPressed, context, [context, editor, accept] {
        QPointer<QLineEdit> guard(editor);
        QTimer::singleShot(0, context, [guard, accept] {
            if (guard)
                accept(guard);
        });
    });
    return editor;
}
