#pragma once

#include <QAbstractListModel>
#include <vector>

// The vouchers of the window's kind, one line each: number, a blank and the description.
class VoucherListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    struct Line {
        qint32 id;
        QString text;
    };

    void setLines(std::vector<Line> lines);
    int rowCount(const QModelIndex& parent = {}) const override;
    // The line's text, and its voucher key as Qt::UserRole.
    QVariant data(const QModelIndex& index, int role) const override;
    int rowOf(qint32 id) const;
    // Changes the line of `id`, or adds it at the end.
    void setLine(qint32 id, const QString& text);
    void removeLine(qint32 id);

private:
    std::vector<Line> m_lines;
};
