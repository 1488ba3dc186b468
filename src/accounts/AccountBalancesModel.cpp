#include "accounts/AccountBalancesModel.h"

void AccountBalancesModel::setRivit(std::vector<cTilienSaldot::Rivi> rivit)
{
    beginResetModel();
    m_rivit = std::move(rivit);
    endResetModel();
}

int AccountBalancesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rivit.size());
}

int AccountBalancesModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : 4; }

QVariant AccountBalancesModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= int(m_rivit.size()))
        return {};
    const cTilienSaldot::Rivi& r = m_rivit[size_t(index.row())];
    if (role == Qt::TextAlignmentRole)
        return int(Qt::AlignVCenter | (index.column() == 0 ? Qt::AlignLeft : Qt::AlignRight));
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case 0:
        return r.tili;
    case 1:
        return r.debet.toCurrencyString();
    case 2:
        return r.kredit.toCurrencyString();
    default:
        return r.erotus.toCurrencyString();
    }
}

QVariant AccountBalancesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    static const char* const heads[] = { "Tili", "Debet", "Kredit", "Erotus" };
    return QString::fromUtf8(heads[section]);
}
