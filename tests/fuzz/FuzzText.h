#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// The fuzzer's bytes as the texts a user or an old file may hand Vorkam: read as UTF-8 (what
// Vorkam writes) and as Latin-1 (what older files hold).
inline QByteArray fuzzBytes(const uint8_t* data, size_t size)
{
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

template <typename Check> void forEachReading(const uint8_t* data, size_t size, Check check)
{
    const QByteArray bytes = fuzzBytes(data, size);
    check(QString::fromUtf8(bytes));
    check(QString::fromLatin1(bytes));
}

// A broken promise is a finding like a crash: say what and stop, so that the input is kept.
#define FUZZ_CHECK(condition, what)                                                                          \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "Rikkoutunut lupaus: %s\n", what);                                          \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (false)
