#pragma once

#include "backup/StickBackup.h"

#include <QDialog>
#include <memory>

namespace Ui {
class frmBackup;
}

// The memory-stick backup of the books in use, in numbered steps that are enabled one after
// the other: find the stick, copy, copy done, compact, the compaction's result.
class frmBackup final : public QDialog {
    Q_OBJECT

public:
    explicit frmBackup(const QString& books, QWidget* parent = nullptr);
    ~frmBackup() override;

    // The window's logic; tests set its date and failing steps.
    StickBackup& backup() { return m_backup; }

    void etsiMuistitikku();
    void kopioi();
    void tiivista();
    // Not while a copy is being written.
    void reject() override;

private:
    void setStep(int step, bool enabled);

    std::unique_ptr<Ui::frmBackup> ui;
    StickBackup m_backup;
    bool m_busy = false;
};
