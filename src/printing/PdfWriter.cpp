#include "PdfWriter.h"

#include "OutputFile.h"
#include "ReportDocument.h"
#include "ReportEngine.h"
#include "ReportError.h"
#include "TextMetrics.h"

#include <QDateTime>
#include <QFile>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <hpdf.h>
#include <hpdf_pages.h>
#include <vector>

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

// Large reports are written uncompressed: compressing costs more time than their size saves.
constexpr int CompressUpToPages = 1000;

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

// One text run's operators, moving from the previous run's position: "dx dy Td (text) Tj".
void appendRun(QByteArray& out, qint64 dx, qint64 dy, const char* text, quint32 length)
{
    const qsizetype start = out.size();
    out.resize(start + 2 * 24 + 2 * qsizetype(length) + 16);
    char* p = out.data() + start;
    p = writeNumber(p, dx);
    *p++ = ' ';
    p = writeNumber(p, dy);
    memcpy(p, " Td (", 5);
    p += 5;
    for (quint32 i = 0; i < length; ++i) {
        const char c = text[i];
        // Parentheses and backslashes are escaped in a PDF string.
        if (c == '(' || c == ')' || c == '\\')
            *p++ = '\\';
        *p++ = c;
    }
    memcpy(p, ") Tj\n", 5);
    p += 5;
    out.resize(p - out.constData());
}

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
    HPDF_SetCompressionMode(doc, pages <= CompressUpToPages ? HPDF_COMP_ALL : HPDF_COMP_NONE);
    HPDF_SetInfoAttr(doc, HPDF_INFO_CREATOR, "Vorkam");
    HPDF_SetInfoAttr(doc, HPDF_INFO_TITLE, WinAnsi::fromUnicode(document.title()).constData());
    // The association is the document's author; the report is dated when it is written.
    if (!document.titleLines().isEmpty())
        HPDF_SetInfoAttr(
            doc, HPDF_INFO_AUTHOR, WinAnsi::fromUnicode(document.titleLines().first()).constData());
    const QDateTime now = QDateTime::currentDateTime();
    const int offset = now.offsetFromUtc();
    HPDF_Date created { now.date().year(), now.date().month(), now.date().day(), now.time().hour(),
        now.time().minute(), now.time().second(),
        offset > 0       ? '+'
            : offset < 0 ? '-'
                         : 'Z',
        std::abs(offset) / 3600, std::abs(offset) % 3600 / 60 };
    HPDF_SetInfoDateAttr(doc, HPDF_INFO_CREATION_DATE, created);

    std::vector<HPDF_Font> fonts;
    for (const PageFont& f : document.fonts())
        fonts.push_back(
            HPDF_GetFont(doc, TextMetrics::pdfFontName(f.family, f.bold, f.italic), "WinAnsiEncoding"));
    QByteArray content;
    content.reserve(64 * 1024);
    const float width = float(document.pageSize().width());
    const float height = float(document.pageSize().height());

    for (int i = 0; i < pages && !pdf.failed(); ++i) {
        const ReportPage page = document.page(i);
        HPDF_Page p = HPDF_AddPage(doc);
        HPDF_Page_SetWidth(p, width);
        HPDF_Page_SetHeight(p, height);
        float lineWidth = -1;
        for (const PageRule& r : page.rules) {
            if (r.width != lineWidth) {
                if (lineWidth >= 0)
                    HPDF_Page_Stroke(p);
                HPDF_Page_SetLineWidth(p, r.width);
                lineWidth = r.width;
            }
            HPDF_Page_MoveTo(p, r.x1, height - r.y1);
            HPDF_Page_LineTo(p, r.x2, height - r.y2);
        }
        if (lineWidth >= 0)
            HPDF_Page_Stroke(p);
        HPDF_Page_BeginText(p);
        // The library places each run through several calls that format, measure and track the
        // text position; a long report has millions of runs. The font is chosen through the
        // library, so that it stands in the page's resources, and each run's position and text
        // are written straight into the page's content stream.
        HPDF_Stream stream = static_cast<HPDF_PageAttr>(p->attr)->stream;
        content.clear();
        int current = -1;
        // Td moves from the start of the previous line, the first from the page's origin; the
        // moves are whole hundredths of a point, so that rounding never adds up down a page.
        qint64 lastX = 0;
        qint64 lastY = 0;
        for (const TextRun& run : page.runs) {
            if (run.font != current) {
                if (!content.isEmpty())
                    HPDF_Stream_Write(stream, reinterpret_cast<const HPDF_BYTE*>(content.constData()),
                        HPDF_UINT(content.size()));
                content.clear();
                current = run.font;
                HPDF_Page_SetFontAndSize(p, fonts[run.font], document.fonts()[run.font].size);
            }
            const qint64 x = hundredths(run.x);
            const qint64 y = hundredths(height - run.y);
            appendRun(content, x - lastX, y - lastY, page.runBytes(run), run.length);
            lastX = x;
            lastY = y;
        }
        if (!content.isEmpty())
            HPDF_Stream_Write(
                stream, reinterpret_cast<const HPDF_BYTE*>(content.constData()), HPDF_UINT(content.size()));
        HPDF_Page_EndText(p);
        if (progress && !progress(i + 1, pages))
            throw ReportCancelled();
    }
    if (!pdf.failed())
        HPDF_SaveToFile(doc, QFile::encodeName(out.temporaryPath()).constData());
    if (pdf.failed())
        throw ReportError(OutputFile::failure(
            path, out.writeFailure(QStringLiteral("PDF-tiedostoa ei voitu kirjoittaa.\n") + pdf.detail())));
    out.commit();
}

} // namespace PdfWriter
