#pragma once

#include <QString>
#include <functional>

class ReportDocument;

// Writes a report as PDF with the Liberation fonts embedded (only the glyphs printed), every
// letter as typed, page by page from the page model, each page compressed.
namespace PdfWriter {

// Called after each page with the pages done and the total; false cancels.
using Progress = std::function<bool(int page, int pages)>;

// Writes `path` whole or not at all: a ReportError tells why it could not be written, a cancel
// throws ReportCancelled. An existing file is replaced only by a complete new one.
void write(const ReportDocument& document, const QString& path, const Progress& progress = {});

} // namespace PdfWriter
