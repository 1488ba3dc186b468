#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtEndian>

#include <optional>
#include <utility>

// The old-format sample books beside the project, and the damage tests do to copies of them.
namespace JetFixtures {

inline QString path(const QString& name) { return QStringLiteral(VORKAM_SHARED_DIR "/fixtures/jet/") + name; }
inline bool present(const QString& name = QStringLiteral("seura-jet4.mdb"))
{
    return QFile::exists(path(name));
}

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

// The only data page of a table of `rows` rows, with its definition page; nullopt unless one fits.
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

// A Jet 4 file with the database password `password`. Jet scrambles the header with a stream
// cipher, so a character XORed into the scrambled bytes is stored in the password as it is.
inline QByteArray withPassword(QByteArray file, const QByteArray& password)
{
    for (qsizetype i = 0; i < password.size(); ++i)
        file[0x42 + 2 * i] = char(file.at(0x42 + 2 * i) ^ password.at(i));
    return file;
}

} // namespace JetFixtures
