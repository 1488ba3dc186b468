#include "vouchers/EntryModel.h"

EntryModel::EntryModel(VoucherEditor& muokkaus, QObject* parent)
    : QAbstractTableModel(parent)
    , m_muokkaus(muokkaus)
{
}

void EntryModel::refill()
{
    beginResetModel();
    endResetModel();
}

int EntryModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_muokkaus.riviMaara();
}

int EntryModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : 4; }

QVariant EntryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return header(section, orientation, role);
}

QVariant EntryModel::header(int section, Qt::Orientation orientation, int role)
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Vertical)
        return section + 1;
    static const QString captions[] = { QStringLiteral("Debet-tili"), QStringLiteral("Debet"),
        QStringLiteral("Kredit-tili"), QStringLiteral("Kredit") };
    return section >= 0 && section < 4 ? captions[section] : QString();
}

Qt::ItemFlags EntryModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags f = QAbstractTableModel::flags(index);
    return m_muokkaus.muokattavissa() ? f | Qt::ItemIsEditable : f;
}

QVariant EntryModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_muokkaus.riviMaara())
        return {};
    if (role == Qt::TextAlignmentRole && !isAccountColumn(index.column()))
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    return isAccountColumn(index.column()) ? m_muokkaus.tiliTeksti(side(index.column()), index.row())
                                           : m_muokkaus.arvoTeksti(side(index.column()), index.row());
}

bool EntryModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole || index.row() >= m_muokkaus.riviMaara())
        return false;
    const QString text = value.toString();
    const bool changed = isAccountColumn(index.column())
        ? m_muokkaus.setTiliTeksti(side(index.column()), index.row(), text)
        : m_muokkaus.setArvoTeksti(side(index.column()), index.row(), text);
    // A refused amount is shown again as it was.
    emit dataChanged(index, index);
    if (changed)
        emit entryChanged(index.row(), index.column());
    return changed;
}
