#include "vouchers/VoucherListModel.h"

void VoucherListModel::setLines(std::vector<Line> lines)
{
    beginResetModel();
    m_lines = std::move(lines);
    endResetModel();
}

int VoucherListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_lines.size());
}

QVariant VoucherListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || size_t(index.row()) >= m_lines.size())
        return {};
    if (role == Qt::DisplayRole)
        return m_lines[size_t(index.row())].text;
    if (role == Qt::UserRole)
        return m_lines[size_t(index.row())].id;
    return {};
}

int VoucherListModel::rowOf(qint32 id) const
{
    for (size_t i = 0; i < m_lines.size(); ++i)
        if (m_lines[i].id == id)
            return int(i);
    return -1;
}

void VoucherListModel::setLine(qint32 id, const QString& text)
{
    const int row = rowOf(id);
    if (row >= 0) {
        m_lines[size_t(row)].text = text;
        emit dataChanged(index(row), index(row));
        return;
    }
    beginInsertRows({}, rowCount(), rowCount());
    m_lines.push_back({ id, text });
    endInsertRows();
}

void VoucherListModel::removeLine(qint32 id)
{
    const int row = rowOf(id);
    if (row < 0)
        return;
    beginRemoveRows({}, row, row);
    m_lines.erase(m_lines.begin() + row);
    endRemoveRows();
}
