#include "core/MailServerQuery.h"

#include "core/Dialogs.h"
#include "core/Resolver.h"

#include <QUrl>

#include <arpa/nameser.h>
#include <netinet/in.h>
#include <resolv.h>

#include <algorithm>

namespace MailServerQuery {

QByteArray domainOf(const QString& address)
{
    const qsizetype at = address.lastIndexOf(u'@');
    if (at < 0)
        return {};
    QString domain = address.mid(at + 1).trimmed();
    if (domain.endsWith(u'.'))
        domain.chop(1);
    if (domain.isEmpty() || domain.contains(u' ') || domain.startsWith(u'.'))
        return {};
    const QByteArray ace = QUrl::toAce(domain);
    // toAce gives nothing for a name it cannot spell; a bare word is no domain of the net.
    if (ace.isEmpty() || !ace.contains('.'))
        return {};
    return ace;
}

std::optional<QList<Exchange>> parseAnswer(const QByteArray& message)
{
    const auto* begin = reinterpret_cast<const unsigned char*>(message.constData());
    ns_msg handle;
    if (message.isEmpty() || ns_initparse(begin, int(message.size()), &handle) != 0)
        return std::nullopt;
    QList<Exchange> exchanges;
    const int count = ns_msg_count(handle, ns_s_an);
    for (int i = 0; i < count; ++i) {
        ns_rr record;
        if (ns_parserr(&handle, ns_s_an, i, &record) != 0)
            return std::nullopt;
        if (ns_rr_type(record) != ns_t_mx || ns_rr_class(record) != ns_c_in)
            continue;
        if (ns_rr_rdlen(record) < 3)
            return std::nullopt;
        const unsigned char* rdata = ns_rr_rdata(record);
        char name[NS_MAXDNAME];
        if (dn_expand(ns_msg_base(handle), ns_msg_end(handle), rdata + 2, name, sizeof name) < 0)
            return std::nullopt;
        const QString host = QString::fromLatin1(name);
        if (host.isEmpty() || host == u".")
            continue;
        // Kept as the name service spells it: the mail program connects to that name.
        exchanges.append({ int(ns_get16(rdata)), host });
    }
    std::stable_sort(exchanges.begin(), exchanges.end(),
        [](const Exchange& a, const Exchange& b) { return a.preference < b.preference; });
    return exchanges;
}

Result find(const QString& address)
{
    const QByteArray domain = domainOf(address);
    if (domain.isEmpty())
        return { Status::NoAddress, {} };
    const Resolver::Reply reply = Resolver::instance().queryMx(domain);
    switch (reply.status) {
    case Resolver::Status::NoAnswer:
        return { Status::NoAnswer, {} };
    case Resolver::Status::NoSuchDomain:
    case Resolver::Status::NoData:
        return { Status::NotFound, {} };
    case Resolver::Status::Answer:
        break;
    }
    const std::optional<QList<Exchange>> exchanges = parseAnswer(reply.message);
    if (!exchanges)
        return { Status::NoAnswer, {} };
    if (exchanges->isEmpty())
        return { Status::NotFound, {} };
    return { Status::Found, exchanges->first().host };
}

std::optional<QString> offer(const Result& result)
{
    Dialogs& dialogs = Dialogs::instance();
    const QString notFound = QStringLiteral("Kysely ei löytänyt sähköpostipalvelinta.");
    switch (result.status) {
    case Status::NoAddress:
        dialogs.information(QStringLiteral("Anna ensin sähköpostiosoite muodossa nimi@yhdistys.fi, niin "
                                           "palvelinta haetaan osoitteen verkkotunnuksesta."));
        return std::nullopt;
    case Status::NotFound:
        dialogs.information(notFound);
        return std::nullopt;
    case Status::NoAnswer:
        dialogs.information(notFound + QStringLiteral("\nNimipalvelin ei vastannut: tarkista verkkoyhteys."));
        return std::nullopt;
    case Status::Found:
        break;
    }
    if (!dialogs.question(QStringLiteral("Kysely löysi palvelimen: ") + result.host
            + QStringLiteral("\nHaluatko korvata nykyisen palvelinasetuksen?")))
        return std::nullopt;
    return result.host;
}

} // namespace MailServerQuery
