#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmAbout;
}

// The about window: the program, its version and where its files are.
class frmAbout final : public QDialog {
    Q_OBJECT

public:
    explicit frmAbout(QWidget* parent = nullptr);
    ~frmAbout() override;

private:
    std::unique_ptr<Ui::frmAbout> ui;
};
