#pragma once

#include "TositeMuokkaus.h"

#include <QAbstractTableModel>

// The entry rows of the voucher window: debit account, debit amount, credit account, credit
// amount. Each cell shows and sets a row of the voucher being edited.
class VientiModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    VientiModel(TositeMuokkaus& muokkaus, QObject* parent);

    static bool isAccountColumn(int column) { return column == 0 || column == 2; }
    static TositeMuokkaus::Puoli side(int column)
    {
        return column < 2 ? TositeMuokkaus::Puoli::Debet : TositeMuokkaus::Puoli::Kredit;
    }
    static int accountColumn(TositeMuokkaus::Puoli puoli)
    {
        return puoli == TositeMuokkaus::Puoli::Debet ? 0 : 2;
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
    TositeMuokkaus& m_muokkaus;
};
