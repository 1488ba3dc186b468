#include "core/Resolver.h"

#include <arpa/nameser.h>
#include <netdb.h>
#include <netinet/in.h>
#include <resolv.h>

#include <cstring>

namespace {

LibcResolver g_libc;
Resolver* g_installed = nullptr;

} // namespace

Resolver& Resolver::instance() { return g_installed ? *g_installed : g_libc; }

void Resolver::install(Resolver* resolver) { g_installed = resolver; }

Resolver::Reply LibcResolver::queryMx(const QByteArray& domain)
{
    Reply reply;
    struct __res_state state;
    std::memset(&state, 0, sizeof state);
    if (res_ninit(&state) != 0)
        return reply;
    // The window waits for the answer: a few seconds at most when no server can be reached.
    state.retrans = 2;
    state.retry = 2;
    unsigned char answer[NS_MAXMSG];
    const int length = res_nquery(&state, domain.constData(), ns_c_in, ns_t_mx, answer, sizeof answer);
    if (length > 0) {
        reply.status = Status::Answer;
        reply.message = QByteArray(reinterpret_cast<const char*>(answer), qMin(length, int(sizeof answer)));
    } else {
        switch (state.res_h_errno) {
        case HOST_NOT_FOUND:
            reply.status = Status::NoSuchDomain;
            break;
        case NO_DATA:
            reply.status = Status::NoData;
            break;
        default:
            reply.status = Status::NoAnswer;
            break;
        }
    }
    res_nclose(&state);
    return reply;
}
