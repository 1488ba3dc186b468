#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmDates2;
}
class DateFields;

// The report period asked before a report, with "Seuraava -->" and Peru. The period goes to
// the program-wide print values; Peru sets the cancelled flag.
class frmDates2 : public QDialog {
    Q_OBJECT

public:
    explicit frmDates2(QWidget* parent = nullptr);
    ~frmDates2() override;

    void reject() override;

private:
    void seuraava();

    std::unique_ptr<Ui::frmDates2> ui;
    DateFields* m_paivat = nullptr;
};
