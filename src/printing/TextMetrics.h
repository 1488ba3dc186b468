#pragma once

#include "printing/PageModel.h"

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <array>
#include <atomic>
#include <memory>
#include <mutex>

// Text widths of the report fonts, read from the Liberation TrueType files that the PDF embeds
// and the screen draws with, so that the layout places text the same way for the screen, the
// printer and the PDF.
class TextMetrics final {
public:
    // The advances of one font style at 1 point, as the PDF's width arrays give them (whole
    // thousandths of an em); a character the font lacks has the font's missing width. Read from
    // the font a block of 256 characters at a time, when first asked for.
    class Advances final {
    public:
        explicit Advances(const QString& file);
        ~Advances();
        Advances(const Advances&) = delete;
        Advances& operator=(const Advances&) = delete;

        float operator[](char16_t c) const
        {
            if (!m_ready[c >> 8].load(std::memory_order_acquire))
                read(c >> 8);
            return m_widths[c];
        }
        // The same for the first 256 characters, which are read at once.
        float first256(unsigned char c) const { return m_widths[c]; }

    private:
        struct Face;
        void read(int block) const;

        std::unique_ptr<Face> m_face;
        mutable std::mutex m_mutex;
        mutable std::array<std::atomic<bool>, 256> m_ready {};
        mutable std::array<float, 65536> m_widths {};
    };

    // Width in points of the page text (UTF-8) in `font`.
    static float width(const PageFont& font, const char* text, qsizetype length);
    static float width(const PageFont& font, const QByteArray& text)
    {
        return width(font, text.constData(), text.size());
    }
    static float width(const PageFont& font, QStringView text);

    static const Advances& advances(FontFamily family, bool bold, bool italic);

    // The TrueType file of a style ("/usr/share/fonts/truetype/liberation/LiberationSans-Bold.ttf");
    // empty when it is not installed.
    static QString fontFile(FontFamily family, bool bold, bool italic);
    // "Liberation Serif", …
    static QString screenFamily(FontFamily family);
};
