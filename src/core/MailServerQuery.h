#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

// Finds the outgoing mail server for the sender's address: the preferred mail exchanger of the
// address's domain, asked from the name service (Resolver).
namespace MailServerQuery {

struct Exchange {
    int preference = 0;
    QString host;
};

// The domain of an address as the name service spells it (international names in their ASCII
// form); empty when the address has no "@" or nothing valid after it.
QByteArray domainOf(const QString& address);

// The MX records of a DNS answer message, most preferred first; nullopt when the message is not
// a DNS answer. A "null MX" (no mail accepted) gives no record.
std::optional<QList<Exchange>> parseAnswer(const QByteArray& message);

enum class Status { Found, NoAddress, NotFound, NoAnswer };
struct Result {
    Status status = Status::NotFound;
    QString host; // the preferred server when found
};

Result find(const QString& address);

// Tells what the query found and asks whether the server found replaces the one set. Returns
// the server to set, nullopt when nothing is to change.
std::optional<QString> offer(const Result& result);

} // namespace MailServerQuery
