#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmTulostus;
}

// The print options asked before a report: destination (the preview window or the printer),
// the number of copies and the printer. The choice goes to the program-wide print values.
class frmTulostus final : public QDialog {
    Q_OBJECT

public:
    explicit frmTulostus(QWidget* parent = nullptr);
    ~frmTulostus() override;

    void reject() override;

private:
    void tulostin();
    void tulosta();

    std::unique_ptr<Ui::frmTulostus> ui;
};
