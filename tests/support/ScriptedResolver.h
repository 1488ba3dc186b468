#pragma once

#include "core/Resolver.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// A name service for tests: answers every MX query with one scripted reply and records the
// domains asked. Installs itself for its lifetime, so no test ever asks the network.
class ScriptedResolver final : public Resolver {
public:
    ScriptedResolver() { Resolver::install(this); }
    ~ScriptedResolver() override { Resolver::install(nullptr); }
    ScriptedResolver(const ScriptedResolver&) = delete;
    ScriptedResolver& operator=(const ScriptedResolver&) = delete;

    Reply reply;
    QList<QByteArray> asked;

    Reply queryMx(const QByteArray& domain) override
    {
        asked.append(domain);
        return reply;
    }

    // A DNS answer message as a name server sends it: the question for `domain` and one MX record
    // per exchange. Each exchange's host is written with a compression pointer to the question's
    // name when it ends in `domain`, as servers do.
    static QByteArray mxAnswer(const QByteArray& domain, const QList<QPair<int, QByteArray>>& exchanges)
    {
        QByteArray m;
        const auto u16 = [&m](int v) {
            m.append(char((v >> 8) & 0xFF));
            m.append(char(v & 0xFF));
        };
        const auto labels = [&m](const QByteArray& name) {
            for (const QByteArray& label : name.split('.')) {
                if (label.isEmpty())
                    continue;
                m.append(char(label.size()));
                m.append(label);
            }
        };
        u16(0x1234); // id
        u16(0x8180); // response, recursion desired and available, no error
        u16(1); // questions
        u16(int(exchanges.size())); // answers
        u16(0);
        u16(0);
        labels(domain);
        m.append('\0');
        u16(15); // MX
        u16(1); // IN
        for (const auto& [preference, host] : exchanges) {
            u16(0xC00C); // the question's name
            u16(15);
            u16(1);
            u16(0);
            u16(3600); // TTL
            QByteArray rdata;
            rdata.append(char((preference >> 8) & 0xFF));
            rdata.append(char(preference & 0xFF));
            const QByteArray suffix = '.' + domain;
            QByteArray saved;
            saved.swap(m);
            if (host.endsWith(suffix)) {
                labels(host.chopped(suffix.size()));
                m.append(char(0xC0));
                m.append(char(0x0C));
            } else {
                labels(host);
                m.append('\0');
            }
            rdata.append(m);
            m.swap(saved);
            u16(int(rdata.size()));
            m.append(rdata);
        }
        return m;
    }
};
