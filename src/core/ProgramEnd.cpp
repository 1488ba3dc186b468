#include "core/ProgramEnd.h"

#include <QCoreApplication>
#include <cstdlib>

namespace {
std::function<void()> g_handler;
}

namespace ProgramEnd {

void request()
{
    if (g_handler) {
        g_handler();
        return;
    }
    if (QCoreApplication::instance())
        QCoreApplication::exit(0);
    else
        std::exit(0);
}

void setHandler(std::function<void()> handler) { g_handler = std::move(handler); }

} // namespace ProgramEnd
