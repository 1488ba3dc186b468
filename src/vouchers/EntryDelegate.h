#pragma once

#include <QStringList>
#include <QStyledItemDelegate>

// Cell editors of the entry rows: account cells complete a number or any part of a name from
// the chart of accounts; Enter stores the cell and moves to the next one, also when it
// chooses from the completion list.
class EntryDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    EntryDelegate(const QStringList& accounts, QObject* parent);

    QWidget* createEditor(
        QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void acceptAndMoveOn(QWidget* editor);

    QStringList m_accounts;
};
