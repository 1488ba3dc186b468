#include "service/ServiceMail.h"

#include "core/DatabaseCopy.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QUuid>

#include <arpa/inet.h>
#include <pwd.h>
#include <unistd.h>

namespace {

// The characters an address part may not hold besides blanks and "@".
const QString Specials = QStringLiteral("<>()[],;:\"\\");

bool plainPart(const QString& part)
{
    if (part.isEmpty())
        return false;
    for (const QChar c : part)
        if (c.isSpace() || c.category() == QChar::Other_Control || c == u'@' || Specials.contains(c))
            return false;
    return true;
}

bool ipv6(const QString& text)
{
    in6_addr address {};
    return inet_pton(AF_INET6, text.toLatin1().constData(), &address) == 1;
}

bool printableAscii(const QString& text)
{
    for (const QChar c : text)
        if (c.unicode() < 0x20 || c.unicode() > 0x7e)
            return false;
    return true;
}

} // namespace

namespace ServiceMail {

QString userName(const QString& gecos, const QString& login)
{
    const QString real = gecos.section(u',', 0, 0).trimmed();
    return real.isEmpty() ? login.trimmed() : real;
}

QString userName()
{
    const passwd* record = getpwuid(getuid());
    if (!record)
        return QString::number(getuid());
    return userName(QString::fromLocal8Bit(record->pw_gecos), QString::fromLocal8Bit(record->pw_name));
}

QString subject(const QString& userName, const QString& association, const QDate& today)
{
    const QString dated = QStringLiteral("Vorkam-%1:%2.%3.%4")
                              .arg(userName)
                              .arg(today.day())
                              .arg(today.month())
                              .arg(today.year());
    const QString name = association.trimmed();
    return name.isEmpty() ? dated : dated + u' ' + name;
}

bool isAddress(const QString& address)
{
    const qsizetype at = address.indexOf(u'@');
    if (at < 0 || address.indexOf(u'@', at + 1) >= 0)
        return false;
    const QString local = address.left(at);
    const QString domain = address.mid(at + 1);
    if (!plainPart(local) || !plainPart(domain))
        return false;
    for (const QString& label : domain.split(u'.'))
        if (label.isEmpty())
            return false;
    return true;
}

QString refusal(const QString& sender, const QString& receiver, const QString& smtp)
{
    if (sender.trimmed().isEmpty())
        return QStringLiteral("Täytä vielä lähettäjän sähköpostiosoite.");
    if (smtp.trimmed().isEmpty())
        return QStringLiteral("Asetuksista puuttuu SMTP palvelimen nimi.");
    if (!isAddress(sender.trimmed()))
        return QStringLiteral("Lähettäjän sähköpostiosoite \"%1\" ei kelpaa. Tarkista osoite.")
            .arg(sender.trimmed());
    if (receiver.trimmed().isEmpty())
        return QStringLiteral("Täytä vielä vastaanottajan sähköpostiosoite.");
    if (!isAddress(receiver.trimmed()))
        return QStringLiteral("Vastaanottajan sähköpostiosoite \"%1\" ei kelpaa. Tarkista osoite.")
            .arg(receiver.trimmed());
    if (!parseServer(smtp))
        return QStringLiteral(
            "Asetusten SMTP palvelimen nimi \"%1\" ei kelpaa. Kirjoita se muodossa palvelin "
            "tai palvelin:portti.")
            .arg(smtp.trimmed());
    return QString();
}

std::optional<Server> parseServer(const QString& smtp)
{
    const QString text = smtp.trimmed();
    Server server;
    QString portText;
    if (text.startsWith(u'[')) {
        // An IPv6 address: [::1] or [::1]:587.
        const qsizetype close = text.indexOf(u']');
        if (close < 0)
            return std::nullopt;
        server.host = text.mid(1, close - 1);
        const QString rest = text.mid(close + 1);
        if (!rest.isEmpty()) {
            if (!rest.startsWith(u':'))
                return std::nullopt;
            portText = rest.mid(1);
        }
        if (!ipv6(server.host))
            return std::nullopt;
    } else {
        const qsizetype colon = text.indexOf(u':');
        server.host = colon < 0 ? text : text.left(colon);
        if (colon >= 0)
            portText = text.mid(colon + 1);
        static const QRegularExpression hostName(
            QStringLiteral("^[\\w-]+(\\.[\\w-]+)*\\.?$"), QRegularExpression::UseUnicodePropertiesOption);
        if (!hostName.match(server.host).hasMatch())
            return std::nullopt;
    }
    if (!portText.isNull()) {
        bool ok = false;
        server.port = portText.toInt(&ok);
        if (!ok || server.port < 1 || server.port > 65535 || !portText.at(0).isDigit())
            return std::nullopt;
    }
    return server;
}

QByteArray Server::url() const
{
    const QByteArray scheme = implicitTls() ? "smtps://" : "smtp://";
    const QByteArray name = host.contains(u':') ? '[' + host.toUtf8() + ']' : host.toUtf8();
    return scheme + name + ':' + QByteArray::number(port);
}

bool Server::local() const
{
    if (host.compare(QStringLiteral("localhost"), Qt::CaseInsensitive) == 0)
        return true;
    in_addr v4 {};
    if (inet_pton(AF_INET, host.toLatin1().constData(), &v4) == 1)
        return (ntohl(v4.s_addr) >> 24) == 127;
    in6_addr v6 {};
    return inet_pton(AF_INET6, host.toLatin1().constData(), &v6) == 1 && IN6_IS_ADDR_LOOPBACK(&v6);
}

QByteArray encodeHeader(const QString& text)
{
    if (printableAscii(text))
        return text.toLatin1();
    // Encoded words of at most 45 bytes of UTF-8 each (60 characters of base64), never cutting
    // a character in two.
    QByteArray out;
    QByteArray word;
    auto flush = [&] {
        if (word.isEmpty())
            return;
        if (!out.isEmpty())
            out += "\r\n ";
        out += "=?UTF-8?B?" + word.toBase64() + "?=";
        word.clear();
    };
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const QByteArray character = text.mid(i, length).toUtf8();
        if (word.size() + character.size() > 45)
            flush();
        word += character;
        i += length;
    }
    flush();
    return out;
}

QList<QByteArray> headers(
    const QString& sender, const QString& receiver, const QString& subject, const QDateTime& now)
{
    const QByteArray id = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    const QByteArray date
        = QLocale::c().toString(now.toUTC(), QStringLiteral("ddd, d MMM yyyy hh:mm:ss")).toLatin1()
        + " +0000";
    return {
        "Date: " + date,
        "From: <" + sender.toUtf8() + '>',
        "To: <" + receiver.toUtf8() + '>',
        "Subject: " + encodeHeader(subject),
        "Message-ID: <" + id + "@vorkam>",
    };
}

QByteArray textPart(const QString& text)
{
    QString t = text;
    t.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    t.replace(u'\r', u'\n');
    t.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    return t.toUtf8();
}

QByteArray attachmentDisposition(const QString& fileName)
{
    const QByteArray parameter
        = printableAscii(fileName) && !fileName.contains(u'"') && !fileName.contains(u'\\')
        ? "filename=\"" + fileName.toLatin1() + '"'
        : "filename*=UTF-8''" + fileName.toUtf8().toPercentEncoding();
    return "Content-Disposition: attachment; " + parameter;
}

Snapshot::Snapshot(const QSqlDatabase& db, const QString& booksPath, const QString& folder)
{
    const QString parent = folder.isEmpty() ? QDir::tempPath() : folder;
    m_dir = std::make_unique<QTemporaryDir>(parent + QStringLiteral("/vorkam-huolto-XXXXXX"));
    if (!m_dir->isValid()) {
        m_message = QStringLiteral("Väliaikaista kansiota ei voi tehdä kansioon %1.")
                        .arg(QDir::toNativeSeparators(parent));
        return;
    }
    const QString target = m_dir->filePath(QFileInfo(booksPath).fileName());
    const OpenResult copied = DatabaseCopy::backup(db, target);
    if (!copied) {
        m_message = copied.message;
        return;
    }
    m_path = target;
}

Snapshot::~Snapshot() = default;

} // namespace ServiceMail
