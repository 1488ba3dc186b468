#pragma once

#include <QByteArray>

// The name service: Vorkam asks it for the mail exchangers of a domain. The program uses the C
// library's resolver; tests install one that answers with canned DNS messages and never touch
// the network.
class Resolver {
public:
    enum class Status {
        Answer, // a DNS message with at least one answer record
        NoSuchDomain, // the domain does not exist
        NoData, // the domain exists but has no records of the kind
        NoAnswer, // no name server answered (no network) or the answer was refused
    };
    struct Reply {
        Status status = Status::NoAnswer;
        QByteArray message; // the DNS message as it came from the wire
    };

    virtual ~Resolver() = default;
    // The MX records of `domain` (ASCII, as the name service spells it).
    virtual Reply queryMx(const QByteArray& domain) = 0;

    static Resolver& instance();
    // Does not take ownership; nullptr restores the C library's resolver.
    static void install(Resolver* resolver);
};

// The C library's stub resolver with the machine's own name servers, asked twice at most so
// that a machine without a network answers within seconds.
class LibcResolver final : public Resolver {
public:
    Reply queryMx(const QByteArray& domain) override;
};
