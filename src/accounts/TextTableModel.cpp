#include "accounts/TextTableModel.h"

TextTableModel::TextTableModel(QStringList headers, int leftColumns, QObject* parent)
    : QAbstractTableModel(parent)
    , m_headers(std::move(headers))
    , m_leftColumns(leftColumns)
{
}

void TextTableModel::setRows(std::vector<Row> rows)
{
    beginResetModel();
    m_count = int(rows.size());
    m_rows = std::move(rows);
    m_make = nullptr;
    m_madeIndex = -1;
    endResetModel();
}

void TextTableModel::setRows(int count, std::function<Row(int row)> make)
{
    beginResetModel();
    m_rows.clear();
    m_count = count;
    m_make = std::move(make);
    m_madeIndex = -1;
    endResetModel();
}

const TextTableModel::Row& TextTableModel::row(int index) const
{
    if (!m_make)
        return m_rows[size_t(index)];
    if (m_madeIndex != index) {
        m_made = m_make(index);
        m_madeIndex = index;
    }
    return m_made;
}

qint32 TextTableModel::key(int index) const { return index >= 0 && index < m_count ? row(index).key : 0; }

int TextTableModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : m_count; }

int TextTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_headers.size());
}

QVariant TextTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_count)
        return {};
    const Row& r = row(index.row());
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
