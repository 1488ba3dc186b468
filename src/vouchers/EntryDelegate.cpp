#include "vouchers/EntryDelegate.h"

#include "vouchers/EntryModel.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>

EntryDelegate::EntryDelegate(const QStringList& accounts, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_accounts(accounts)
{
}

QWidget* EntryDelegate::createEditor(
    QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
    auto* editor = new QLineEdit(parent);
    editor->setFrame(false);
    if (EntryModel::isAccountColumn(index.column())) {
        editor->setObjectName(QStringLiteral("tTili"));
        auto* completer = new QCompleter(m_accounts, editor);
        completer->setCaseSensitivity(Qt::CaseInsensitive);
        completer->setFilterMode(Qt::MatchContains);
        editor->setCompleter(completer);
        // While the completion list is open it takes Enter itself and hands it to the editor
        // past this delegate's filter: the line edit then reports it as returnPressed. One
        // Enter accepts the choice and moves on.
        auto* self = const_cast<EntryDelegate*>(this);
        connect(editor, &QLineEdit::returnPressed, self, [self, editor] {
            QPointer<QLineEdit> guard(editor);
            QTimer::singleShot(0, self, [self, guard] {
                if (guard)
                    self->acceptAndMoveOn(guard);
            });
        });
    } else {
        editor->setObjectName(QStringLiteral("tSumma"));
        editor->setAlignment(Qt::AlignRight);
        editor->setMaxLength(20);
    }
    return editor;
}

void EntryDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    auto* line = static_cast<QLineEdit*>(editor);
    line->setText(index.data(Qt::EditRole).toString());
    line->selectAll();
}

void EntryDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    model->setData(index, static_cast<QLineEdit*>(editor)->text(), Qt::EditRole);
}

void EntryDelegate::acceptAndMoveOn(QWidget* editor)
{
    emit commitData(editor);
    emit closeEditor(editor, QAbstractItemDelegate::EditNextItem);
}

bool EntryDelegate::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        auto* editor = qobject_cast<QLineEdit*>(watched);
        if (editor && (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
            && key->modifiers() == Qt::NoModifier) {
            acceptAndMoveOn(editor);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}
