#pragma once

#include "backup/StickDays.h"

#include <QDialog>
#include <memory>

namespace Ui {
class frmBackupManagement;
}

// The copies on the backup stick: find the stick, choose a day, choose copies and delete them,
// each after its own question.
class frmBackupManagement final : public QDialog {
    Q_OBJECT

public:
    explicit frmBackupManagement(QWidget* parent = nullptr);
    ~frmBackupManagement() override;

    void etsiMuistitikku();
    void poistaValitut();

private:
    void valitsePaiva();
    void valitseTietokannat();

    std::unique_ptr<Ui::frmBackupManagement> ui;
    std::unique_ptr<StickDays> m_days;
};
