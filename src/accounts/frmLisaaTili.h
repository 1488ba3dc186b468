#pragma once

#include <QDialog>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmLisaaTili;
}

// The dialog that adds one account to the chart: number, name and description, checked in
// order before the row is written.
class frmLisaaTili final : public QDialog {
    Q_OBJECT

public:
    explicit frmLisaaTili(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmLisaaTili() override;

    // The tlID of the account added, 0 when none was.
    qint32 uusiId() const { return m_uusiId; }

private:
    void lisaa();

    std::unique_ptr<Ui::frmLisaaTili> ui;
    QSqlDatabase m_db;
    qint32 m_uusiId = 0;
};
