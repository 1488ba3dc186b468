#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmDates;
}
class DateFields;

// The report period and the statement options asked before a statement is printed: per-account
// breakdown, groups only, and the wide or narrow form. The choice goes to the program-wide
// print values; Peru sets the cancelled flag.
class frmDates final : public QDialog {
    Q_OBJECT

public:
    explicit frmDates(QWidget* parent = nullptr);
    ~frmDates() override;

    void reject() override;

private:
    void seuraava();

    std::unique_ptr<Ui::frmDates> ui;
    DateFields* m_paivat = nullptr;
};
