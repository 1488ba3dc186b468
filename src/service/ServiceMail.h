#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QString>
#include <QTemporaryDir>
#include <memory>
#include <optional>

class QSqlDatabase;

// What the service file mail is made of: the checks before a send, the subject, the server's
// address, the message around the attached books, and the snapshot of the books that is sent.
namespace ServiceMail {

// The user's name for the subject, from the system's user record: the real name (the GECOS
// field up to its first comma), else the login name.
QString userName();
// The rule of userName() on the fields of a user record.
QString userName(const QString& gecos, const QString& login);
// "Vorkam-" + user name + ":" + the date as d.M.yyyy, without leading zeros, then a blank and
// the association's name when it has one.
QString subject(const QString& userName, const QString& association, const QDate& today);

// A plain address: one "@" with something on both sides, no blanks, a dot-free or dotted
// domain of letters, digits, "-" and ".".
bool isAddress(const QString& address);

// Why the mail cannot be sent, in the order the user is told: an empty sender before a missing
// server, then the addresses themselves. Empty when the mail may go.
QString refusal(const QString& sender, const QString& receiver, const QString& smtp);

// The outgoing server as written in the settings: "host" or "host:port" (default port 25).
// Port 465 is implicit TLS; others try STARTTLS when the server offers it.
struct Server {
    QString host;
    int port = 25;
    bool implicitTls() const { return port == 465; }
    // "smtp://host:port" or "smtps://host:465".
    QByteArray url() const;
    // On this machine: a password may go without TLS.
    bool local() const;
};
std::optional<Server> parseServer(const QString& smtp);

// A header value in RFC 2047 form when it holds anything but printable ASCII.
QByteArray encodeHeader(const QString& text);

// The message's own headers (Date, From, To, Subject, Message-ID), each without its line end;
// the mail library adds the MIME headers of the parts around them.
QList<QByteArray> headers(
    const QString& sender, const QString& receiver, const QString& subject, const QDateTime& now);
// The mail's text with CRLF line ends, as its text part carries it.
QByteArray textPart(const QString& text);
// The attachment's Content-Disposition header: its name quoted when plain, else in RFC 2231 form.
QByteArray attachmentDisposition(const QString& fileName);

// A consistent copy of the books taken through the engine's backup into a private temporary
// folder, under the books' own file name. The folder and the copy go with the object.
class Snapshot final {
public:
    // `folder` holds the temporary folder; QDir::tempPath() when empty.
    Snapshot(const QSqlDatabase& db, const QString& booksPath, const QString& folder = QString());
    ~Snapshot();
    Snapshot(const Snapshot&) = delete;
    Snapshot& operator=(const Snapshot&) = delete;

    bool ok() const { return m_message.isEmpty(); }
    // Why no copy was made.
    const QString& message() const { return m_message; }
    const QString& path() const { return m_path; }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_path;
    QString m_message;
};

} // namespace ServiceMail
