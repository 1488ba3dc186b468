#include "WinAnsi.h"

namespace {

// Bytes 0x80–0x9F; 0 where the code page has no character.
constexpr char16_t High[32] = { 0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030,
    0x0160, 0x2039, 0x0152, 0, 0x017D, 0, 0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC,
    0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178 };

} // namespace

namespace WinAnsi {

char encode(char16_t c)
{
    if (c < 0x20)
        return ' ';
    if (c < 0x7F || (c >= 0xA0 && c <= 0xFF))
        return char(c);
    for (int i = 0; i < 32; ++i)
        if (High[i] == c && c != 0)
            return char(0x80 + i);
    return '?';
}

void append(QByteArray& out, const QString& text)
{
    const qsizetype start = out.size();
    out.resize(start + text.size());
    char* p = out.data() + start;
    for (const QChar ch : text)
        *p++ = encode(ch.unicode());
}

QByteArray fromUnicode(const QString& text)
{
    QByteArray out;
    append(out, text);
    return out;
}

char16_t decode(unsigned char byte)
{
    if (byte >= 0x80 && byte < 0xA0)
        return High[byte - 0x80] ? High[byte - 0x80] : u'?';
    return char16_t(byte);
}

QString toUnicode(const char* text, qsizetype length)
{
    QString out(length, Qt::Uninitialized);
    QChar* p = out.data();
    for (qsizetype i = 0; i < length; ++i)
        p[i] = QChar(decode(static_cast<unsigned char>(text[i])));
    return out;
}

} // namespace WinAnsi
