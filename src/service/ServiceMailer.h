#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <memory>
#include <thread>

// Mails one file as an attachment over SMTP. The send runs on a thread of its own and reports
// back on the thread that owns the object through three signals; a cancelled send reports
// nothing.
class ServiceMailer final : public QObject {
    Q_OBJECT

public:
    struct Request {
        QString server; // "host" or "host:port"
        QString sender;
        QString receiver;
        QString subject;
        QString text;
        QString attachment; // the file sent, under its own name
        QString userName; // empty: no login
        QString password;
    };
    struct Failure {
        QString reason; // the mail library's own words
        QString advice; // what it means for the user, in Finnish; may be empty
        bool loginNeeded = false; // the server wants a user name and password, or refused them
    };

    explicit ServiceMailer(QObject* parent = nullptr);
    // Cancels a send still running and waits for its thread.
    ~ServiceMailer() override;

    // Seconds without an answer from the server before the send fails.
    void setTimeout(int seconds) { m_timeout = seconds; }
    int timeout() const { return m_timeout; }

    // The certificates a server's certificate is checked against instead of the system's:
    // a PEM file; empty for the system's.
    void setTrustedCertificates(const QString& caFile) { m_caFile = caFile; }

    // Starts the send and returns at once. Not while another is running.
    void send(const Request& request);
    // Stops a running send and waits until its thread has ended; no signal follows.
    void cancel();
    bool busy() const { return m_worker.joinable(); }
    // Why the last send failed; valid when SendFailed was emitted.
    const Failure& failure() const { return m_failure; }

signals:
    // `sent` bytes of the `total` bytes of the attachment have gone out.
    void SendProgress(qint64 sent, qint64 total);
    void SendCompletedSuccessfully();
    void SendFailed(const QString& reason);

private:
    struct Job;
    void run(std::shared_ptr<Job> job, quint64 generation);
    void finish(quint64 generation);

    std::thread m_worker;
    std::shared_ptr<Job> m_job;
    quint64 m_generation = 0; // touched on the owning thread only
    int m_timeout = 30;
    QString m_caFile;
    Failure m_failure;
};
