#include "backup/Drives.h"

#include "backup/SystemDrives.h"

namespace {
Drives* g_installed = nullptr;
}

Drives& Drives::instance()
{
    static SystemDrives system;
    return g_installed ? *g_installed : system;
}

void Drives::install(Drives* drives) { g_installed = drives; }
