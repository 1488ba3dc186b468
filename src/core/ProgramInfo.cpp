#include "core/ProgramInfo.h"

#include <QtGlobal>
#include <blkid/blkid.h>
#include <curl/curl.h>
#include <hpdf.h>
#include <sqlite3.h>
#include <xlsxwriter.h>

namespace ProgramInfo {

QString version() { return QStringLiteral(VORKAM_VERSION); }

QString licence() { return QStringLiteral("GNU GPL, versio 3 tai uudempi"); }

std::vector<Library> libraries()
{
    const char* blkid = nullptr;
    blkid_get_library_version(&blkid, nullptr);
    return {
        { QStringLiteral("Qt"), QString::fromLatin1(qVersion()),
            QStringLiteral("LGPL 3 (Qt Charts: GPL 3)") },
        { QStringLiteral("SQLite"), QString::fromLatin1(sqlite3_libversion()),
            QStringLiteral("vapaa käyttö (public domain)") },
        { QStringLiteral("libharu (PDF)"), QString::fromLatin1(HPDF_GetVersion()),
            QStringLiteral("zlib/libpng") },
        { QStringLiteral("libxlsxwriter (XLSX)"), QStringLiteral(LXW_VERSION), QStringLiteral("BSD 2") },
        { QStringLiteral("libcurl (huoltotiedoston lähetys)"),
            QString::fromLatin1(curl_version_info(CURLVERSION_NOW)->version),
            QStringLiteral("curl (MIT-tyyppinen)") },
        { QStringLiteral("mdbtools libmdb (vanhat Jet-tiedostot)"), QStringLiteral(VORKAM_LIBMDB_VERSION),
            QStringLiteral("LGPL 2 tai uudempi") },
        { QStringLiteral("libblkid (muistitikut)"), QString::fromLatin1(blkid ? blkid : "?"),
            QStringLiteral("LGPL 2.1 tai uudempi") },
        { QStringLiteral("Liberation-fontit (tulosteet)"), QString(), QStringLiteral("SIL OFL 1.1") },
    };
}

QString librariesText()
{
    QString text;
    for (const Library& l : libraries())
        text += QStringLiteral("%1 %2 — %3\n").arg(l.name, l.version, l.licence);
    return text;
}

} // namespace ProgramInfo
