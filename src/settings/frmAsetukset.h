#pragma once

#include "settings/SettingsForm.h"

#include <QDialog>
#include <QSqlDatabase>
#include <QThread>
#include <functional>
#include <memory>

namespace Ui {
class frmAsetukset;
}

// The settings window: the installation settings and the bookkeeping settings of the books in
// use, stored with cTallenna. Books that are not open, or open for reading only, show their
// bookkeeping settings but cannot change them.
class frmAsetukset final : public QDialog {
    Q_OBJECT

public:
    explicit frmAsetukset(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmAsetukset() override;

    // Runs before a newly chosen database replaces the one in use; false stops the save.
    // The mail server is being asked from the name service (off the window's thread).
    bool askingMailServer() const { return m_mailServerQuery != nullptr; }
    void setBeforeDatabaseChange(std::function<bool()> check) { m_beforeDatabaseChange = std::move(check); }
    // The last save changed the database: the program is to end.
    bool databaseChanged() const { return m_databaseChanged; }
    // Something differs from what is stored.
    bool changed() const;

    // cTallenna: true when every value was stored.
    bool tallenna();
    // cSulje, Esc and the window's close button: asks about unsaved changes first.
    void reject() override;

private:
    SettingsForm collect() const;
    void fill(const SettingsForm& form, const QStringList& keep);
    void fillAccounts();
    void fillFonts(const QString& current, const QString& size);
    void valitseTietokanta();
    void haePalvelin();
    void mailServerFound(const QString& address);

    std::unique_ptr<Ui::frmAsetukset> ui;
    QSqlDatabase m_db;
    // What the window showed after opening or the last save.
    SettingsForm m_stored;
    std::function<bool()> m_beforeDatabaseChange;
    bool m_databaseChanged = false;
    QThread* m_mailServerQuery = nullptr;
    std::shared_ptr<struct MailServerAnswer> m_mailServerAnswer;
};
