#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <vector>

// Rows of ready-made texts for a read-only table view, with a key kept per row (Qt::UserRole).
// The first columns are left-aligned, the rest (amounts) right-aligned.
class TextTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    TextTableModel(QStringList headers, int leftColumns, QObject* parent = nullptr);

    struct Row {
        QStringList cells;
        qint32 key = 0;
    };
    void setRows(std::vector<Row> rows);
    qint32 key(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QStringList m_headers;
    int m_leftColumns;
    std::vector<Row> m_rows;
};
