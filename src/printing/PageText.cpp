#include "printing/PageText.h"

namespace {

// Bytes 0x80–0x9F of Windows-1252; 0 where the code page has no character.
constexpr char16_t High[32] = { 0x20AC, 0, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030,
    0x0160, 0x2039, 0x0152, 0, 0x017D, 0, 0, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC,
    0x2122, 0x0161, 0x203A, 0x0153, 0, 0x017E, 0x0178 };

} // namespace

namespace PageText {

int winAnsi(char16_t c)
{
    if ((c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c <= 0xFF))
        return c;
    for (int i = 0; i < 32; ++i)
        if (High[i] == c && c != 0)
            return 0x80 + i;
    return -1;
}

void append(QByteArray& out, const QString& text)
{
    const qsizetype start = out.size();
    out.resize(start + 3 * text.size());
    char* p = out.data() + start;
    const char16_t* s = reinterpret_cast<const char16_t*>(text.constData());
    const char16_t* end = s + text.size();
    while (s < end) {
        char16_t c = *s++;
        if (c < 0x20 || c == 0x7F) {
            c = u' ';
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            // A character beyond 16 bits (a pair), or half of one.
            if (c <= 0xDBFF && s < end && *s >= 0xDC00 && *s <= 0xDFFF)
                ++s;
            c = u'?';
        }
        if (c < 0x80) {
            *p++ = char(c);
        } else if (c < 0x800) {
            *p++ = char(0xC0 | (c >> 6));
            *p++ = char(0x80 | (c & 0x3F));
        } else {
            *p++ = char(0xE0 | (c >> 12));
            *p++ = char(0x80 | ((c >> 6) & 0x3F));
            *p++ = char(0x80 | (c & 0x3F));
        }
    }
    out.resize(p - out.constData());
}

QByteArray fromUnicode(const QString& text)
{
    QByteArray out;
    append(out, text);
    return out;
}

} // namespace PageText
