#pragma once

#include <QByteArray>
#include <QString>

// The text of printed pages: UTF-8, so that every letter typed prints as typed. Line breaks and
// tabs become blanks, and a character beyond the fonts' 16-bit range (an emoji) becomes "?".
namespace PageText {

void append(QByteArray& out, const QString& text);
QByteArray fromUnicode(const QString& text);
inline QString toUnicode(const char* text, qsizetype length) { return QString::fromUtf8(text, length); }
inline QString toUnicode(const QByteArray& text) { return QString::fromUtf8(text); }

// The character at `p`, which moves past it. The page text is valid UTF-8 of 16-bit characters.
inline char16_t next(const char*& p)
{
    const auto b = static_cast<unsigned char>(*p++);
    if (b < 0x80)
        return b;
    if (b < 0xE0)
        return char16_t(((b & 0x1F) << 6) | (static_cast<unsigned char>(*p++) & 0x3F));
    const auto b1 = static_cast<unsigned char>(*p++);
    const auto b2 = static_cast<unsigned char>(*p++);
    return char16_t(((b & 0x0F) << 12) | ((b1 & 0x3F) << 6) | (b2 & 0x3F));
}

// The byte length of the character that starts with `lead`.
inline int charLength(char lead)
{
    const auto b = static_cast<unsigned char>(lead);
    return b < 0x80 ? 1 : b < 0xE0 ? 2 : 3;
}

// The byte of `c` in the single-byte set of the PDF's simple fonts (Windows-1252); -1 when it
// has none, and the text goes through the font's 16-bit form instead.
int winAnsi(char16_t c);

} // namespace PageText
