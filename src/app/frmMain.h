#pragma once

#include "core/DatabaseCreation.h"
#include "core/Startup.h"

#include <QMainWindow>
#include <QPointer>
#include <memory>

namespace Ui {
class frmMain;
}

// The main window: the start-up sequence, the large buttons and the menus from which every
// other window and command is reached.
class frmMain final : public QMainWindow {
    Q_OBJECT

public:
    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    // Runs the start-up sequence and sets the caption. Called once, before the window is shown.
    void startUp();
    const Startup::Result& startupResult() const { return m_startup; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    enum class Window {
        Tositteet,
        Avausviennit,
        Tilinpaatosviennit,
        Tilit,
        TulosJaTase,
        Service,
        Tiliote,
        Count
    };
    // Opens a working window, or brings it forward when it is open already.
    void openWindow(Window which);
    void openManual();
    void showAbout();
    void backupAndReorganize();
    void restore();
    void stickBackup();
    void stickManagement();
    void stickRestore();
    void openSettings();
    void editDatabase();
    void changeFiscalYear();
    void createDatabase(DatabaseCreation::Source source);
    // The caption and the association's name and file, as the settings now have them.
    void showBooks();
    void endProgram();
    // Closes every working window, each with its own leave check (an account without a
    // number, unsaved rows). False when one of them refused: nothing may replace or close the
    // books then.
    bool closeWorkingWindows();

    std::unique_ptr<Ui::frmMain> ui;
    Startup::Result m_startup;
    QPointer<QWidget> m_windows[int(Window::Count)];
    QPointer<QWidget> m_manual;
};
