#pragma once

#include "TestEnv.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

// An SMTP server on loopback, run by tests/service/smtp_sink.py, which names its options: with
// --tls, `certificate` is the file to trust. `skipReason` says why none could be started.
class LocalSmtp final {
public:
    explicit LocalSmtp(const QStringList& options = {})
    {
        // Debian's own Python first: a Python of the user's may lack the Debian package's module.
        m_process.setProgram(QFile::exists(QStringLiteral("/usr/bin/python3"))
                ? QStringLiteral("/usr/bin/python3")
                : QStringLiteral("python3"));
        m_process.setArguments(QStringList { QStringLiteral(VORKAM_SMTP_SINK), m_folder.path() } + options);
        m_process.start();
        QDeadlineTimer deadline(15000);
        while (!deadline.hasExpired() && m_process.state() != QProcess::NotRunning) {
            m_process.waitForReadyRead(100);
            const QStringList ready = QString::fromUtf8(m_process.readLine().trimmed()).split(u' ');
            if (ready.size() == 4 && ready.at(0) == QStringLiteral("READY")) {
                m_server = ready.at(1) + u':' + ready.at(2);
                port = ready.at(2).toInt();
                certificate = ready.at(3) == QStringLiteral("-") ? QString() : ready.at(3);
                return;
            }
        }
        // Without aiosmtpd (Debian package python3-aiosmtpd) the server ends at once and says so.
        skipReason = QStringLiteral("the local SMTP server did not start: ")
            + QString::fromLocal8Bit(m_process.readAllStandardError());
    }
    ~LocalSmtp()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }

    bool running() const { return port > 0; }
    QString server() const { return m_server; }

    // The `n`th message received (from 1) as smtp_sink.py summed it up, waiting for it a while;
    // empty when it did not come.
    QJsonObject message(int n, int waitMs = 10000) const
    {
        const QString json = m_folder.filePath(QStringLiteral("%1.json").arg(n));
        QDeadlineTimer deadline(waitMs);
        while (!QFile::exists(json) && !deadline.hasExpired())
            QTest::qWait(20);
        return QJsonDocument::fromJson(TestEnv::readFile(json)).object();
    }
    int count() const { return int(QDir(m_folder.path()).entryList({ QStringLiteral("*.json") }).size()); }

    int port = 0;
    QString certificate;
    QString skipReason;

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_server;
};
