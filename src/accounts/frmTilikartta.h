#pragma once

#include <QDialog>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmTilikartta;
}

// Chooses the income statement and balance sheet templates against which the chart of
// accounts is printed. The choice and the cancelled flag are left in PrintChoices.
class frmTilikartta final : public QDialog {
    Q_OBJECT

public:
    explicit frmTilikartta(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmTilikartta() override;

private:
    void seuraava();
    void peru();

    std::unique_ptr<Ui::frmTilikartta> ui;
};
