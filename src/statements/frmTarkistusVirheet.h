#pragma once

#include <QDialog>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmTarkistusVirheet;
}

// The check window: the income statement and the balance sheet to check together, the
// findings of every check, and the balance-side correction (mKorjausSaldopuoli).
class frmTarkistusVirheet final : public QDialog {
    Q_OBJECT

public:
    // The lists start on the pair given (0: the first template of its kind).
    frmTarkistusVirheet(const QSqlDatabase& db, qint32 tulos, qint32 tase, QWidget* parent = nullptr);
    ~frmTarkistusVirheet() override;

    // Runs the checks of the chosen pair and lists the findings.
    void tarkista();
    void korjaaSaldopuolet();

private:
    qint32 chosen(bool tulos) const;

    std::unique_ptr<Ui::frmTarkistusVirheet> ui;
    QSqlDatabase m_db;
};
