#pragma once

#include "TestEnv.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

// An SMTP server on loopback, run by tests/service/smtp_sink.py, which names its options: with
// --tls, `certificate` is the file to trust. Without a server `port` is 0 and `skipReason` says why.
class LocalSmtp final {
public:
    explicit LocalSmtp(const QStringList& options = {})
    {
        // Debian's own Python: a Python of the user's may lack the Debian package's module.
        m_process.start(QStringLiteral("/usr/bin/python3"),
            QStringList { QStringLiteral(VORKAM_SMTP_SINK), m_folder.path() } + options);
        // It says where it listens once it accepts connections: "READY host port certificate".
        m_process.waitForReadyRead(15000);
        const QStringList ready = QString::fromUtf8(m_process.readLine().trimmed()).split(u' ');
        if (ready.size() == 4 && ready.at(0) == QStringLiteral("READY")) {
            server = ready.at(1) + u':' + ready.at(2);
            port = ready.at(2).toInt();
            certificate = ready.at(3) == QStringLiteral("-") ? QString() : ready.at(3);
            return;
        }
        // Without aiosmtpd (Debian package python3-aiosmtpd) the server ends at once and says so.
        skipReason = QStringLiteral("the local SMTP server did not start: ")
            + QString::fromLocal8Bit(m_process.readAllStandardError());
    }
    ~LocalSmtp()
    {
        m_process.kill();
        m_process.waitForFinished(5000);
    }

    // The `n`th message received (from 1) as smtp_sink.py summed it up; empty if none in `waitMs`.
    QJsonObject message(int n, int waitMs = 10000) const
    {
        const QString json = m_folder.filePath(QStringLiteral("%1.json").arg(n));
        if (!QTest::qWaitFor([&] { return QFile::exists(json); }, waitMs))
            return {};
        return QJsonDocument::fromJson(TestEnv::readFile(json)).object();
    }

    QString server;
    int port = 0;
    QString certificate;
    QString skipReason;

private:
    QTemporaryDir m_folder;
    QProcess m_process;
};
