#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtEndian>

#include <cstring>
#include <optional>
#include <utility>

// The old-format sample books beside the project, and the damage tests do to copies of them.
namespace JetFixtures {

inline QString path(const QString& name) { return QStringLiteral(VORKAM_SHARED_DIR "/fixtures/jet/") + name; }
inline bool present() { return QFile::exists(path(QStringLiteral("seura-jet4.mdb"))); }

constexpr int PageSize = 4096;

inline int pageCount(const QByteArray& file) { return int(file.size() / PageSize); }
inline quint16 u16(const QByteArray& file, qsizetype at)
{
    return qFromLittleEndian<quint16>(file.constData() + at);
}
inline quint32 u32(const QByteArray& file, qsizetype at)
{
    return qFromLittleEndian<quint32>(file.constData() + at);
}

// The one data page of the table that has `rows` rows in all, and its table's definition
// page; nullopt when no table or more than one fits.
inline std::optional<std::pair<int, int>> dataPageWithRows(const QByteArray& file, int rows)
{
    std::optional<std::pair<int, int>> found;
    for (int p = 1; p < pageCount(file); ++p) {
        const qsizetype at = qsizetype(p) * PageSize;
        if (file.at(at) != 0x01 || u16(file, at + 0x0c) != rows)
            continue;
        const quint32 definition = u32(file, at + 4);
        const qsizetype def = qsizetype(definition) * PageSize;
        if (definition > 0 && def < file.size() && file.at(def) == 0x02
            && u32(file, def + 16) == quint32(rows)) {
            if (found)
                return std::nullopt;
            found = std::make_pair(p, int(u32(file, at + 4)));
        }
    }
    return found;
}

// Overwrites one page with noise.
inline QByteArray garbled(QByteArray file, int page)
{
    for (qsizetype i = qsizetype(page) * PageSize; i < qsizetype(page + 1) * PageSize && i < file.size(); ++i)
        file[i] = char(0xA5 ^ (i & 0xFF));
    return file;
}

inline void rc4(QByteArray& bytes, qsizetype from, int length)
{
    const unsigned char key[] = { 0xc7, 0xda, 0x39, 0x6b };
    unsigned char s[256];
    for (int i = 0; i < 256; ++i)
        s[i] = static_cast<unsigned char>(i);
    for (int i = 0, j = 0; i < 256; ++i) {
        j = (j + s[i] + key[i % 4]) & 0xff;
        std::swap(s[i], s[j]);
    }
    for (int n = 0, i = 0, j = 0; n < length; ++n) {
        i = (i + 1) & 0xff;
        j = (j + s[i]) & 0xff;
        std::swap(s[i], s[j]);
        bytes[from + n] = char(bytes.at(from + n) ^ s[(s[i] + s[j]) & 0xff]);
    }
}

// A Jet 4 file with the database password `password` set the way Jet stores it: in the
// scrambled header, masked by the creation date.
inline QByteArray withPassword(QByteArray file, const QByteArray& password)
{
    rc4(file, 0x18, 128);
    double created = 0;
    std::memcpy(&created, file.constData() + 0x72, 8);
    const quint32 days = quint32(qint32(created));
    for (int i = 0; i < 40; ++i) {
        const char c = i % 2 == 0 && i / 2 < password.size() ? password.at(i / 2) : 0;
        file[0x42 + i] = char(c ^ char(days >> (8 * (i % 4))));
    }
    rc4(file, 0x18, 128);
    return file;
}

} // namespace JetFixtures
