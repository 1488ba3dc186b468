#pragma once

#include "vouchers/VoucherEditor.h"

#include <QAbstractTableModel>

// The entry rows of the voucher window: debit account, debit amount, credit account, credit
// amount. Each cell shows and sets a row of the voucher being edited.
class EntryModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    EntryModel(VoucherEditor& muokkaus, QObject* parent);

    // The grid's headers: row numbers down the side, the four column captions across.
    static QVariant header(int section, Qt::Orientation orientation, int role);
    static bool isAccountColumn(int column) { return column == 0 || column == 2; }
    static VoucherEditor::Puoli side(int column)
    {
        return column < 2 ? VoucherEditor::Puoli::Debet : VoucherEditor::Puoli::Kredit;
    }
    static int accountColumn(VoucherEditor::Puoli puoli)
    {
        return puoli == VoucherEditor::Puoli::Debet ? 0 : 2;
    }

    void refill();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

signals:
    // A cell's value changed.
    void entryChanged(int row, int column);

private:
    VoucherEditor& m_muokkaus;
};
