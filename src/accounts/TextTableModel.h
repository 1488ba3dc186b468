#pragma once

#include <QAbstractTableModel>
#include <QStringList>
#include <functional>
#include <vector>

// Rows of texts for a read-only table view, with a key kept per row (Qt::UserRole). The first
// columns are left-aligned, the rest (amounts) right-aligned. Rows are given as ready texts, or
// as a count and a function that makes a row's texts when the view shows it (thousands of rows
// are then not formatted ahead).
class TextTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    TextTableModel(QStringList headers, int leftColumns, QObject* parent = nullptr);

    struct Row {
        QStringList cells;
        qint32 key = 0;
    };
    void setRows(std::vector<Row> rows);
    void setRows(int count, std::function<Row(int row)> make);
    qint32 key(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QStringList m_headers;
    int m_leftColumns;
    const Row& row(int index) const;

    std::vector<Row> m_rows;
    int m_count = 0;
    std::function<Row(int row)> m_make;
    // The last row made, as a view asks for its cells one by one.
    mutable int m_madeIndex = -1;
    mutable Row m_made;
};
