#include "printing/ReportRunner.h"

#include "core/Dialogs.h"
#include "printing/PagePainter.h"
#include "printing/PdfWriter.h"
#include "printing/PrintOptions.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"
#include "printing/ReportError.h"
#include "ui/WaitCursor.h"

#include "printing/frmEsikatselu.h"
#include "printing/frmTulostus.h"
#include <QCursor>

#include <QApplication>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressDialog>

namespace {

// A progress bar that shows only when the work takes a while, and a cancel that the work asks
// about between steps.
class Progress final {
public:
    Progress(QWidget* parent, const QString& text)
        : m_dialog(text, QStringLiteral("Peruuta"), 0, 0, parent)
    {
        m_dialog.setWindowTitle(QStringLiteral("Vorkam"));
        m_dialog.setWindowModality(Qt::WindowModal);
        m_dialog.setMinimumDuration(700);
        m_dialog.setAutoClose(false);
        m_dialog.setAutoReset(false);
    }
    bool step(int done, int total = 0)
    {
        if (m_dialog.maximum() != total)
            m_dialog.setMaximum(total);
        m_dialog.setValue(total > 0 ? done : 0);
        QCoreApplication::processEvents();
        return !m_dialog.wasCanceled();
    }
    void setText(const QString& text) { m_dialog.setLabelText(text); }

private:
    QProgressDialog m_dialog;
};

std::function<bool()>& printerCheck()
{
    static std::function<bool()> check;
    return check;
}

} // namespace

namespace ReportRunner {

void print(QWidget* parent, const QSqlDatabase& db, ReportJob job)
{
    frmTulostus dialog(parent);
    if (dialog.exec() != QDialog::Accepted || PrintOptions::current().cancelled)
        return;
    PrintOptions::applyTo(job);
    run(parent, db, job);
}

void run(QWidget* parent, const QSqlDatabase& db, const ReportJob& job)
{
    std::unique_ptr<ReportDocument> document;
    try {
        Progress progress(parent, QStringLiteral("Raporttia %1 laaditaan...").arg(job.reportFile));
        WaitCursor wait;
        document = ReportEngine::run(db, job, [&progress](int rows) { return progress.step(rows); });
    } catch (const ReportCancelled&) {
        return;
    } catch (const ReportError& e) {
        Dialogs::instance().error(e.text());
        return;
    }
    if (job.destination == Destination::Printer) {
        printDocument(parent, *document, job.copies);
        return;
    }
    auto* preview = new frmEsikatselu(std::move(document), parent);
    preview->setWindowFlag(Qt::Window);
    preview->setAttribute(Qt::WA_DeleteOnClose);
    preview->show();
    preview->raise();
    preview->activateWindow();
}

bool printerAvailable()
{
    return printerCheck() ? printerCheck()() : !QPrinterInfo::availablePrinters().isEmpty();
}

void setPrinterCheck(std::function<bool()> check) { printerCheck() = std::move(check); }

QString noPrinterText()
{
    return QStringLiteral("Tulostinta ei löydy. Valitse tulostuskohteeksi Ikkuna ja tallenna raportti "
                          "esikatselusta PDF-tiedostoksi.");
}

bool printDocument(QWidget* parent, const ReportDocument& document, int copies)
{
    if (!printerAvailable()) {
        Dialogs::instance().information(noPrinterText());
        return false;
    }
    QPrinter printer(QPrinter::HighResolution);
    if (!PrintOptions::current().printerName.isEmpty())
        printer.setPrinterName(PrintOptions::current().printerName);
    printer.setDocName(document.title());
    printer.setCopyCount(qMax(1, copies));
    printer.setFullPage(true);
    printer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4),
        document.landscape() ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF()));
    QPainter painter;
    if (!printer.isValid() || !painter.begin(&printer)) {
        Dialogs::instance().error(
            QStringLiteral("Tulostinta %1 ei voitu käyttää.").arg(printer.printerName()));
        return false;
    }
    Progress progress(parent, QStringLiteral("Tulostetaan..."));
    const double scale = printer.resolution() / 72.0;
    for (int i = 0; i < document.pageCount(); ++i) {
        if (i > 0)
            printer.newPage();
        painter.save();
        painter.scale(scale, scale);
        PagePainter::paint(painter, document, i);
        painter.restore();
        if (!progress.step(i + 1, document.pageCount())) {
            printer.abort();
            return false;
        }
    }
    return painter.end();
}

void writePdf(QWidget* parent, const ReportDocument& document, const QString& path)
{
    Progress progress(parent, QStringLiteral("Kirjoitetaan PDF-tiedostoa..."));
    WaitCursor wait;
    PdfWriter::write(document, path,
        [&progress](int page, int pages) { return page % 20 != 0 || progress.step(page, pages); });
}

} // namespace ReportRunner
