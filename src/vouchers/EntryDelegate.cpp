#include "vouchers/EntryDelegate.h"

#include "ui/AccountEditor.h"
#include "vouchers/EntryModel.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QLineEdit>

EntryDelegate::EntryDelegate(const QStringList& accounts, QObject* parent)
    : QStyledItemDelegate(parent)
    , m_accounts(accounts)
{
}

QWidget* EntryDelegate::createEditor(
    QWidget* parent, const QStyleOptionViewItem&, const QModelIndex& index) const
{
    if (EntryModel::isAccountColumn(index.column())) {
        // One Enter accepts a choice of the completion list and moves on.
        auto* self = const_cast<EntryDelegate*>(this);
        QLineEdit* editor
            = accountEditor(parent, m_accounts, self, [self](QLineEdit* e) { self->acceptAndMoveOn(e); });
        editor->setFrame(false);
        return editor;
    }
    auto* editor = new QLineEdit(parent);
    editor->setFrame(false);
    editor->setObjectName(QStringLiteral("tSumma"));
    editor->setAlignment(Qt::AlignRight);
    editor->setMaxLength(20);
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
