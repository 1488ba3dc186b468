#pragma once

#include "accounts/cTilienSaldot.h"

#include <QAbstractTableModel>
#include <vector>

// The computed balances as table rows: account, debit, credit and difference.
class AccountBalancesModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setRivit(std::vector<cTilienSaldot::Rivi> rivit);
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<cTilienSaldot::Rivi> m_rivit;
};
