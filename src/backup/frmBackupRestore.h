#pragma once

#include "backup/StickDays.h"

#include <QDialog>
#include <memory>

namespace Ui {
class frmBackupRestore;
}

// Takes one copy from the backup stick back into use: find the stick, choose a day and a copy,
// restore it. After a restore the window closes and the opener ends the program, so that no
// window keeps anything of the replaced books.
class frmBackupRestore final : public QDialog {
    Q_OBJECT

public:
    explicit frmBackupRestore(QWidget* parent = nullptr);
    ~frmBackupRestore() override;

    // A copy was restored: the program is to end.
    bool restored() const { return m_restored; }

    void etsiMuistitikku();
    void palauta();
    // Not while a copy is being brought over.
    void reject() override;

private:
    void valitsePaiva();
    void valitseTietokanta();
    QString chosenCopy() const;

    std::unique_ptr<Ui::frmBackupRestore> ui;
    std::unique_ptr<StickDays> m_days;
    bool m_restored = false;
    bool m_busy = false;
};
