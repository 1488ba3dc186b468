#include "PdfWriter.h"

#include "OutputFile.h"
#include "ReportDocument.h"
#include "ReportEngine.h"
#include "ReportError.h"
#include "TextMetrics.h"

#include <QFile>
#include <hpdf.h>
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
    QString reason() const
    {
        if (m_failure.error == HPDF_FILE_IO_ERROR || m_failure.error == HPDF_FILE_OPEN_ERROR)
            return QStringLiteral("tiedostoa ei voi kirjoittaa (levy täynnä tai kansio suojattu?).");
        return QStringLiteral("PDF-kirjaston virhe 0x%1/%2.")
            .arg(m_failure.error, 0, 16)
            .arg(m_failure.detail);
    }

private:
    Failure m_failure;
    HPDF_Doc m_pdf;
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
    HPDF_SetCompressionMode(doc, pages <= CompressUpToPages ? HPDF_COMP_ALL : HPDF_COMP_NONE);
    HPDF_SetInfoAttr(doc, HPDF_INFO_CREATOR, "Vorkam");
    HPDF_SetInfoAttr(doc, HPDF_INFO_TITLE, WinAnsi::fromUnicode(document.title()).constData());

    std::vector<HPDF_Font> fonts;
    for (const PageFont& f : document.fonts())
        fonts.push_back(
            HPDF_GetFont(doc, TextMetrics::pdfFontName(f.family, f.bold, f.italic), "WinAnsiEncoding"));
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
        int current = -1;
        for (const TextRun& run : page.runs) {
            if (run.font != current) {
                current = run.font;
                HPDF_Page_SetFontAndSize(p, fonts[run.font], document.fonts()[run.font].size);
            }
            HPDF_Page_TextOut(p, run.x, height - run.y, page.runBytes(run));
        }
        HPDF_Page_EndText(p);
        if (progress && !progress(i + 1, pages))
            throw ReportCancelled();
    }
    if (!pdf.failed())
        HPDF_SaveToFile(doc, QFile::encodeName(out.temporaryPath()).constData());
    if (pdf.failed())
        throw ReportError(OutputFile::failure(path, pdf.reason()));
    out.commit();
}

} // namespace PdfWriter
