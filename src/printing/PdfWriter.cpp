#include "printing/PdfWriter.h"

#include "printing/OutputFile.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"
#include "printing/ReportError.h"
#include "printing/TextMetrics.h"

#include "printing/PageText.h"

#include <QDateTime>
#include <QFile>
#include <array>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <hpdf.h>
#include <hpdf_pages.h>
#include <initializer_list>
#include <map>
#include <mutex>
#include <thread>
#include <tuple>
#include <vector>
#include <zlib.h>

namespace {

struct Failure {
    HPDF_STATUS error = HPDF_OK;
    HPDF_STATUS detail = HPDF_OK;
};

void onError(HPDF_STATUS error, HPDF_STATUS detail, void* user)
{
    auto* f = static_cast<Failure*>(user);
    if (f->error == HPDF_OK) {
        f->error = error;
        f->detail = detail;
    }
}

class Pdf final {
public:
    Pdf()
        : m_pdf(HPDF_New(onError, &m_failure))
    {
    }
    ~Pdf() { HPDF_Free(m_pdf); }
    Pdf(const Pdf&) = delete;
    Pdf& operator=(const Pdf&) = delete;

    HPDF_Doc get() const { return m_pdf; }
    bool failed() const { return !m_pdf || m_failure.error != HPDF_OK; }
    // The library's own error, for the second line of the message.
    QString detail() const
    {
        return QStringLiteral("PDF-kirjaston virhe 0x%1/%2.")
            .arg(m_failure.error, 0, 16)
            .arg(m_failure.detail);
    }

private:
    Failure m_failure;
    HPDF_Doc m_pdf;
};

// A number given in hundredths, as PDF numbers are written ("123.45", "-0.5", "7"), at `p`;
// gives the end. At most 24 characters.
char* writeNumber(char* p, qint64 hundredths)
{
    if (hundredths < 0) {
        *p++ = '-';
        hundredths = -hundredths;
    }
    char digits[20];
    int n = 0;
    qint64 whole = hundredths / 100;
    do {
        digits[n++] = char('0' + whole % 10);
        whole /= 10;
    } while (whole > 0);
    while (n > 0)
        *p++ = digits[--n];
    const int cents = int(hundredths % 100);
    if (cents != 0) {
        *p++ = '.';
        *p++ = char('0' + cents / 10);
        if (cents % 10 != 0)
            *p++ = char('0' + cents % 10);
    }
    return p;
}

qint64 hundredths(float value) { return qint64(std::lround(double(value) * 100.0)); }

// One style's fonts in the document: the TrueType font in its single-byte form (Windows-1252),
// which most text needs, and its 16-bit form for every other letter, made when first needed.
// The glyphs each form printed are remembered, so that only those are embedded.
struct StyleFonts {
    const char* name = nullptr; // the loaded TrueType font
    HPDF_Font simple = nullptr;
    HPDF_Font wide = nullptr;
    std::array<bool, 256> simpleUsed {};
    std::vector<bool> wideUsed;
};

// One byte of a PDF string: parentheses and backslashes are escaped, and a carriage return,
// which would be read as a line end.
void putEscaped(char*& p, char b)
{
    if (b == '(' || b == ')' || b == '\\' || b == '\r')
        *p++ = '\\';
    *p++ = b == '\r' ? 'r' : b;
}

// Writes `length` bytes of UTF-8 page text as a PDF string of the simple font's single bytes;
// false when a character has none, and nothing is written.
bool appendSimple(QByteArray& out, const char* text, quint32 length, StyleFonts& style)
{
    const qsizetype start = out.size();
    out.resize(start + 2 * qsizetype(length) + 2);
    char* p = out.data() + start;
    *p++ = '(';
    const char* s = text;
    const char* end = text + length;
    while (s < end) {
        int b = static_cast<unsigned char>(*s);
        if (b < 0x80) {
            ++s;
        } else {
            b = PageText::winAnsi(PageText::next(s));
            if (b < 0) {
                out.resize(start);
                return false;
            }
        }
        style.simpleUsed[size_t(b)] = true;
        putEscaped(p, char(b));
    }
    *p++ = ')';
    out.resize(p - out.constData());
    return true;
}

// The same as two bytes a character, for the 16-bit font whose codes are the characters'.
void appendWide(QByteArray& out, const char* text, quint32 length, StyleFonts& style)
{
    const qsizetype start = out.size();
    out.resize(start + 4 * qsizetype(length) + 2);
    char* p = out.data() + start;
    *p++ = '(';
    const char* s = text;
    const char* end = text + length;
    while (s < end) {
        const char16_t c = PageText::next(s);
        style.wideUsed[c] = true;
        putEscaped(p, char(c >> 8));
        putEscaped(p, char(c & 0xFF));
    }
    *p++ = ')';
    out.resize(p - out.constData());
}

void appendText(QByteArray& out, const char* text) { out.append(text, qsizetype(strlen(text))); }

// An operator after its numbers, given in hundredths: "1.5 w\n", "12 -16 Td ". `op` carries its
// own separator after it.
void appendOperator(QByteArray& out, std::initializer_list<qint64> hundredthsOf, const char* op)
{
    Q_ASSERT(hundredthsOf.size() <= 4);
    char buffer[4 * 25];
    char* p = buffer;
    for (const qint64 n : hundredthsOf) {
        p = writeNumber(p, n);
        *p++ = ' ';
    }
    out.append(buffer, p - buffer);
    appendText(out, op);
}

// The page's content stream, compressed; its dictionary says so (the library adds the filter
// only to streams it compresses itself).
HPDF_STATUS writeFlateFilter(HPDF_Dict, HPDF_Stream stream)
{
    return HPDF_Stream_WriteStr(stream, "/Filter /FlateDecode\012");
}

// Pages whose content streams are compressed together. Their buffers are reused from batch to
// batch and only ever allocated and freed by the writing thread.
struct Batch {
    static constexpr int Size = 32;
    int first = 0; // the first page's index
    int count = 0;
    std::array<QByteArray, Size> content;
    std::array<QByteArray, Size> compressed; // empty when compressing failed
};

void deflate(Batch& batch)
{
    for (int k = 0; k < batch.count; ++k) {
        const QByteArray& in = batch.content[size_t(k)];
        QByteArray& out = batch.compressed[size_t(k)];
        uLongf size = compressBound(uLong(in.size()));
        out.resize(qsizetype(size));
        // The fastest level: a report's text compresses to a third at a fraction of the default's
        // time.
        const int result = compress2(reinterpret_cast<Bytef*>(out.data()), &size,
            reinterpret_cast<const Bytef*>(in.constData()), uLong(in.size()), 1);
        out.resize(result == Z_OK ? qsizetype(size) : 0);
    }
}

// Compresses batches of pages on the second core while the first lays out the next ones. The
// batches go round: filled by the writer, compressed here, stored into the PDF by the writer.
class Compressor final {
public:
    using Store = std::function<void(const Batch&)>;
    explicit Compressor(Store store)
        : m_store(std::move(store))
        , m_thread([this] { run(); })
    {
        for (Batch& b : m_batches)
            m_free.push_back(&b);
    }
    ~Compressor()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_stop = true;
        }
        m_changed.notify_all();
        m_thread.join();
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    // A batch to fill; the batches compressed meanwhile are stored first.
    Batch& next()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            storeDone(lock);
            if (!m_free.empty())
                break;
            m_changed.wait(lock, [this] { return !m_done.empty(); });
        }
        Batch* b = m_free.front();
        m_free.pop_front();
        b->count = 0;
        return *b;
    }
    void submit(Batch& batch)
    {
        const std::lock_guard lock(m_mutex);
        m_todo.push_back(&batch);
        m_changed.notify_all();
    }
    // Waits for every batch submitted and stores it.
    void finish()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_todo.empty() && !m_busy; });
        storeDone(lock);
    }

private:
    void storeDone(std::unique_lock<std::mutex>& lock)
    {
        while (!m_done.empty()) {
            Batch* b = m_done.front();
            m_done.pop_front();
            lock.unlock();
            m_store(*b);
            lock.lock();
            m_free.push_back(b);
        }
    }
    void run()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [this] { return m_stop || !m_todo.empty(); });
            if (m_todo.empty())
                return;
            Batch* b = m_todo.front();
            m_todo.pop_front();
            m_busy = true;
            lock.unlock();
            deflate(*b);
            lock.lock();
            m_busy = false;
            m_done.push_back(b);
            m_changed.notify_all();
        }
    }

    Store m_store;
    std::array<Batch, 4> m_batches;
    std::deque<Batch*> m_free, m_todo, m_done;
    bool m_busy = false;
    bool m_stop = false;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread; // last: it starts when everything else is ready
};

} // namespace

namespace PdfWriter {

void write(const ReportDocument& document, const QString& path, const Progress& progress)
{
    OutputFile out(path);
    Pdf pdf;
    if (pdf.failed())
        throw ReportError(OutputFile::failure(path, QStringLiteral("PDF-kirjastoa ei voitu alustaa.")));
    HPDF_Doc doc = pdf.get();
    const int pages = document.pageCount();
    HPDF_SetCompressionMode(doc, HPDF_COMP_NONE);
    HPDF_UseUTFEncodings(doc);
    HPDF_SetCurrentEncoder(doc, "UTF-8");
    HPDF_SetInfoAttr(doc, HPDF_INFO_CREATOR, "Vorkam");
    HPDF_SetInfoAttr(doc, HPDF_INFO_TITLE, document.title().toUtf8().constData());
    // The association is the document's author; the report is dated when it is written.
    if (!document.titleLines().isEmpty())
        HPDF_SetInfoAttr(doc, HPDF_INFO_AUTHOR, document.titleLines().first().toUtf8().constData());
    const QDateTime now = QDateTime::currentDateTime();
    const int offset = now.offsetFromUtc();
    HPDF_Date created { now.date().year(), now.date().month(), now.date().day(), now.time().hour(),
        now.time().minute(), now.time().second(),
        offset > 0       ? '+'
            : offset < 0 ? '-'
                         : 'Z',
        std::abs(offset) / 3600, std::abs(offset) % 3600 / 60 };
    HPDF_SetInfoDateAttr(doc, HPDF_INFO_CREATION_DATE, created);

    // The fonts are embedded, each style once whatever its sizes.
    std::map<std::tuple<FontFamily, bool, bool>, StyleFonts> styles;
    std::vector<StyleFonts*> fonts;
    for (const PageFont& f : document.fonts()) {
        StyleFonts& style = styles[{ f.family, f.bold, f.italic }];
        if (!style.name) {
            const QString file = TextMetrics::fontFile(f.family, f.bold, f.italic);
            if (file.isEmpty())
                throw ReportError(OutputFile::failure(path,
                    QStringLiteral("Tulostuksen fonttia %1 ei löytynyt. Asenna paketti fonts-liberation.")
                        .arg(TextMetrics::screenFamily(f.family))));
            style.name = HPDF_LoadTTFontFromFile(doc, QFile::encodeName(file).constData(), HPDF_TRUE);
            style.simple = style.name ? HPDF_GetFont(doc, style.name, "WinAnsiEncoding") : nullptr;
            if (!style.simple)
                throw ReportError(OutputFile::failure(
                    path, QStringLiteral("Fonttia %1 ei voitu lukea.\n").arg(file) + pdf.detail()));
        }
        fonts.push_back(&style);
    }
    const float width = float(document.pageSize().width());
    const float height = float(document.pageSize().height());
    std::vector<HPDF_Stream> streams(size_t(pages), nullptr);
    bool compressed = true;
    Compressor compressor([&](const Batch& b) {
        for (int k = 0; k < b.count; ++k) {
            const QByteArray& data = b.compressed[size_t(k)];
            compressed = compressed && !data.isEmpty();
            HPDF_Stream_Write(streams[size_t(b.first + k)],
                reinterpret_cast<const HPDF_BYTE*>(data.constData()), HPDF_UINT(data.size()));
        }
    });
    Batch* batch = nullptr;

    for (int i = 0; i < pages && !pdf.failed(); ++i) {
        const ReportPage page = document.page(i);
        HPDF_Page p = HPDF_AddPage(doc);
        HPDF_Page_SetWidth(p, width);
        HPDF_Page_SetHeight(p, height);
        // The library draws through calls that format, measure and track every operator; a long
        // report has millions of runs. Fonts are chosen through it, so that they stand in the
        // page's resources, and the page's operators are written here and compressed whole.
        const auto attr = static_cast<HPDF_PageAttr>(p->attr);
        streams[size_t(i)] = attr->stream;
        attr->contents->write_fn = writeFlateFilter;
        if (!batch) {
            batch = &compressor.next();
            batch->first = i;
        }
        QByteArray& content = batch->content[size_t(batch->count++)];
        content.resize(0);
        float lineWidth = -1;
        for (const PageRule& r : page.rules) {
            if (r.width != lineWidth) {
                if (lineWidth >= 0)
                    appendText(content, "S\n");
                appendOperator(content, { hundredths(r.width) }, "w\n");
                lineWidth = r.width;
            }
            // "x1 y1 m x2 y2 l"
            appendOperator(content, { hundredths(r.x1), hundredths(height - r.y1) }, "m ");
            appendOperator(content, { hundredths(r.x2), hundredths(height - r.y2) }, "l\n");
        }
        if (lineWidth >= 0)
            appendText(content, "S\n");
        appendText(content, "BT\n");
        int current = -1; // the font chosen: its index, times two, plus one for the 16-bit form
        // Td moves from the start of the previous line, the first from the page's origin; the
        // moves are whole hundredths of a point, so that rounding never adds up down a page.
        qint64 lastX = 0;
        qint64 lastY = 0;
        for (const TextRun& run : page.runs) {
            const qint64 x = hundredths(run.x);
            const qint64 y = hundredths(height - run.y);
            StyleFonts& style = *fonts[run.font];
            const qsizetype before = content.size();
            const int chosen = current;
            for (const bool wide : { false, true }) {
                const int wanted = 2 * run.font + (wide ? 1 : 0);
                if (wanted != current) {
                    if (wide && !style.wide) {
                        style.wide = HPDF_GetFont(doc, style.name, "UTF-8");
                        style.wideUsed.assign(65536, false);
                        if (!style.wide)
                            break;
                    }
                    appendText(content, "/");
                    appendText(content, HPDF_Page_GetLocalFontName(p, wide ? style.wide : style.simple));
                    content.append(' ');
                    appendOperator(content, { hundredths(document.fonts()[run.font].size) }, "Tf\n");
                    current = wanted;
                }
                appendOperator(content, { x - lastX, y - lastY }, "Td ");
                if (wide)
                    appendWide(content, page.runBytes(run), run.length, style);
                else if (!appendSimple(content, page.runBytes(run), run.length, style)) {
                    content.resize(before);
                    current = chosen;
                    continue;
                }
                appendText(content, " Tj\n");
                break;
            }
            lastX = x;
            lastY = y;
        }
        appendText(content, "ET\n");
        if (batch->count == Batch::Size || i + 1 == pages) {
            compressor.submit(*batch);
            batch = nullptr;
        }
        if (progress && !progress(i + 1, pages))
            throw ReportCancelled();
    }
    compressor.finish();
    if (!compressed)
        throw ReportError(OutputFile::failure(path, QStringLiteral("PDF-sivuja ei voitu pakata.")));
    // Only the glyphs printed are embedded: the library learns them by measuring the text.
    for (auto& [key, style] : styles) {
        QByteArray bytes;
        for (int b = 0; b < 256; ++b)
            if (style.simpleUsed[size_t(b)])
                bytes.append(char(b));
        if (!bytes.isEmpty())
            HPDF_Font_TextWidth(
                style.simple, reinterpret_cast<const HPDF_BYTE*>(bytes.constData()), HPDF_UINT(bytes.size()));
        if (style.wide) {
            QString characters;
            for (int c = 0; c < 65536; ++c)
                if (style.wideUsed[size_t(c)])
                    characters.append(QChar(char16_t(c)));
            const QByteArray utf8 = characters.toUtf8();
            if (!utf8.isEmpty())
                HPDF_Font_TextWidth(
                    style.wide, reinterpret_cast<const HPDF_BYTE*>(utf8.constData()), HPDF_UINT(utf8.size()));
        }
    }
    if (!pdf.failed())
        HPDF_SaveToFile(doc, QFile::encodeName(out.temporaryPath()).constData());
    if (pdf.failed())
        throw ReportError(OutputFile::failure(
            path, out.writeFailure(QStringLiteral("PDF-tiedostoa ei voitu kirjoittaa.\n") + pdf.detail())));
    out.commit();
}

} // namespace PdfWriter
