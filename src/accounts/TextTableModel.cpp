#include "TextTableModel.h"

TextTableModel::TextTableModel(QStringList headers, int leftColumns, QObject* parent)
    : QAbstractTableModel(parent)
    , m_headers(std::move(headers))
    , m_leftColumns(leftColumns)
{
}

void TextTableModel::setRows(std::vector<Row> rows)
{
    beginResetModel();
    m_rows = std::move(rows);
    endResetModel();
}

qint32 TextTableModel::key(int row) const
{
    return row >= 0 && row < int(m_rows.size()) ? m_rows[size_t(row)].key : 0;
}

int TextTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int TextTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_headers.size());
}

QVariant TextTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= int(m_rows.size()))
        return {};
    const Row& r = m_rows[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
        return index.column() < r.cells.size() ? r.cells.at(index.column()) : QString();
    case Qt::TextAlignmentRole:
        return int(Qt::AlignVCenter | (index.column() < m_leftColumns ? Qt::AlignLeft : Qt::AlignRight));
    case Qt::UserRole:
        return r.key;
    default:
        return {};
    }
}

QVariant TextTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section < m_headers.size())
        return m_headers.at(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}
