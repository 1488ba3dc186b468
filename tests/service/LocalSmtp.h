#pragma once

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

// An SMTP server on 127.0.0.1 at a free port, run by tests/service/smtp_sink.py.
// `skipReason` says why none could be started.
class LocalSmtp final {
public:
    struct Received {
        QString from;
        QStringList to;
        QString subject;
        QString text;
        QString fileName;
        QByteArray attachment;
        int attachments = 0;
    };

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
            const QByteArray line = m_process.readLine().trimmed();
            if (line.startsWith("PORT ")) {
                port = line.mid(5).toInt();
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
    QString server() const { return QStringLiteral("127.0.0.1:%1").arg(port); }

    // The `n`th message received (from 1), waiting for it a while; nullopt when it did not come.
    std::optional<Received> message(int n, int waitMs = 10000) const
    {
        const QString json = m_folder.filePath(QStringLiteral("%1.json").arg(n));
        QDeadlineTimer deadline(waitMs);
        while (!QFile::exists(json) && !deadline.hasExpired())
            QTest::qWait(20);
        QFile file(json);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        const QJsonObject o = QJsonDocument::fromJson(file.readAll()).object();
        Received r;
        r.from = o.value(QStringLiteral("from")).toString();
        for (const QJsonValue& v : o.value(QStringLiteral("to")).toArray())
            r.to.append(v.toString());
        r.subject = o.value(QStringLiteral("subject")).toString();
        r.text = o.value(QStringLiteral("text")).toString();
        const QJsonArray attachments = o.value(QStringLiteral("attachments")).toArray();
        r.attachments = int(attachments.size());
        if (!attachments.isEmpty()) {
            const QJsonObject a = attachments.first().toObject();
            r.fileName = a.value(QStringLiteral("filename")).toString();
            QFile bytes(a.value(QStringLiteral("file")).toString());
            if (bytes.open(QIODevice::ReadOnly))
                r.attachment = bytes.readAll();
        }
        return r;
    }
    int count() const { return int(QDir(m_folder.path()).entryList({ QStringLiteral("*.json") }).size()); }

    // A port on 127.0.0.1 where nothing listens.
    static int closedPort()
    {
        const int s = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in a {};
        a.sin_family = AF_INET;
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof a;
        ::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
        ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &size);
        ::close(s);
        return ntohs(a.sin_port);
    }

    int port = 0;
    QString skipReason;

private:
    QTemporaryDir m_folder;
    QProcess m_process;
};
