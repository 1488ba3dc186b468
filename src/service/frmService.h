#pragma once

#include "service/ServiceMail.h"
#include "service/ServiceMailer.h"

#include <QMainWindow>
#include <QSqlDatabase>
#include <memory>
#include <optional>

namespace Ui {
class frmService;
}
class WaitCursor;

// Mails a snapshot of the books in use to the support address. The send runs in the
// background: the window stays usable, shows the progress and may be closed, which stops the
// send. A user name and password are asked only after the server has demanded them, and are
// never stored.
class frmService final : public QMainWindow {
    Q_OBJECT

public:
    explicit frmService(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmService() override;

    void send();
    bool sending() const { return m_mailer.busy(); }
    ServiceMailer& mailer() { return m_mailer; }
    // Where the snapshot's temporary folder is made; the system's temporary folder by default.
    void setSnapshotFolder(const QString& folder) { m_snapshotFolder = folder; }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void progress(qint64 sent, qint64 total);
    void completed();
    void failed(const QString& reason);
    // Back to idle: the cursor restored, the snapshot deleted, the send command usable.
    void endSend();
    void showLogin(bool visible);

    std::unique_ptr<Ui::frmService> ui;
    QSqlDatabase m_db;
    QString m_books;
    QString m_snapshotFolder;
    std::unique_ptr<ServiceMail::Snapshot> m_snapshot;
    std::unique_ptr<WaitCursor> m_wait;
    ServiceMailer m_mailer; // after the snapshot: stopped before the snapshot is deleted
};
