#pragma once

#include "core/Resolver.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QSemaphore>

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
    // Set: each answer waits until the test releases the gate, as a slow name service would.
    QSemaphore* gate = nullptr;

    Reply queryMx(const QByteArray& domain) override
    {
        if (gate)
            gate->acquire();
        asked.append(domain);
        return reply;
    }

    // A DNS answer message as a name server sends it: the question for `domain` and one MX record
    // per exchange, names written in full (tst_MailServerQuery has an answer with pointers).
    static QByteArray mxAnswer(const QByteArray& domain, const QList<QPair<int, QByteArray>>& exchanges)
    {
        const auto u16 = [](int v) { return QByteArray(1, char((v >> 8) & 0xFF)) + char(v & 0xFF); };
        const auto name = [](const QByteArray& dotted) {
            QByteArray bytes;
            for (const QByteArray& label : dotted.split('.'))
                if (!label.isEmpty())
                    bytes.append(char(label.size())).append(label);
            return bytes.append('\0');
        };
        // Id; a response without error; one question; the answers; no other records.
        QByteArray m = u16(0x1234) + u16(0x8180) + u16(1) + u16(int(exchanges.size())) + u16(0) + u16(0);
        m += name(domain) + u16(15) + u16(1); // MX, IN
        for (const auto& [preference, host] : exchanges) {
            const QByteArray data = u16(preference) + name(host);
            // Owner: a pointer to the question's name; MX, IN, TTL 3600.
            m += u16(0xC00C) + u16(15) + u16(1) + u16(0) + u16(3600) + u16(int(data.size())) + data;
        }
        return m;
    }
};
