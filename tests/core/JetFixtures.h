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
template <typename T> T le(const QByteArray& file, qsizetype at)
{
    return qFromLittleEndian<T>(file.constData() + at);
}

// The first data page of a table of `rows` rows, with its definition page; nullopt when none.
inline std::optional<std::pair<int, int>> dataPageWithRows(const QByteArray& file, int rows)
{
    for (int p = 1; p < pageCount(file); ++p) {
        const qsizetype at = qsizetype(p) * PageSize;
        const quint32 definition = le<quint32>(file, at + 4);
        const qsizetype def = qsizetype(definition) * PageSize;
        if (file.at(at) == 0x01 && le<quint16>(file, at + 0x0c) == rows && definition > 0 && def < file.size()
            && file.at(def) == 0x02 && le<quint32>(file, def + 16) == quint32(rows))
            return std::make_pair(p, int(definition));
    }
    return std::nullopt;
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
