#include "printing/frmEsikatselu.h"

#include "core/Dialogs.h"
#include "printing/CsvWriter.h"
#include "printing/PdfWriter.h"
#include "printing/PrintOptions.h"
#include "printing/ReportDocument.h"
#include "printing/ReportEngine.h"
#include "printing/ReportError.h"
#include "printing/ReportPageView.h"
#include "printing/ReportRunner.h"
#include "printing/XlsxWriter.h"
#include "ui/WaitCursor.h"

#include <QDir>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>

frmEsikatselu::frmEsikatselu(std::unique_ptr<ReportDocument> document, QWidget* parent)
    : QMainWindow(parent)
    , m_document(std::move(document))
{
    setObjectName(QStringLiteral("frmEsikatselu"));
    setWindowTitle(QStringLiteral("Esikatselu - ") + m_document->title());
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    auto* row = new QHBoxLayout;
    layout->addLayout(row);

    QPushButton* ensimmainen = button(QStringLiteral("cEnsimmainen"), QStringLiteral("|<"),
        QKeySequence(Qt::Key_Home), QStringLiteral("Ensimmäinen sivu (Home)"));
    QPushButton* edellinen = button(QStringLiteral("cEdellinen"), QStringLiteral("<"),
        QKeySequence(Qt::Key_PageUp), QStringLiteral("Edellinen sivu (Page Up)"));
    m_sivu = new QLabel(this);
    m_sivu->setObjectName(QStringLiteral("lblSivu"));
    m_sivu->setMinimumWidth(100);
    m_sivu->setAlignment(Qt::AlignCenter);
    QPushButton* seuraava = button(QStringLiteral("cSeuraava"), QStringLiteral(">"),
        QKeySequence(Qt::Key_PageDown), QStringLiteral("Seuraava sivu (Page Down)"));
    QPushButton* viimeinen = button(QStringLiteral("cViimeinen"), QStringLiteral(">|"),
        QKeySequence(Qt::Key_End), QStringLiteral("Viimeinen sivu (End)"));
    QPushButton* pienenna = button(QStringLiteral("cPienenna"), QStringLiteral("-"), QKeySequence::ZoomOut,
        QStringLiteral("Pienennä (Ctrl+-)"));
    QPushButton* suurenna = button(QStringLiteral("cSuurenna"), QStringLiteral("+"), QKeySequence::ZoomIn,
        QStringLiteral("Suurenna (Ctrl++)"));
    QPushButton* tulosta = button(QStringLiteral("cTulosta"), QStringLiteral("&Tulosta..."),
        QKeySequence::Print, QStringLiteral("Tulosta tulostimelle (Ctrl+P)"));
    QPushButton* pdf = button(QStringLiteral("cPdf"), QStringLiteral("P&DF..."), QKeySequence(),
        QStringLiteral("Tallenna PDF-tiedostoksi"));
    QPushButton* csv = button(QStringLiteral("cCsv"), QStringLiteral("&CSV..."), QKeySequence(),
        QStringLiteral("Tallenna rivit CSV-tiedostoksi"));
    QPushButton* xlsx = button(QStringLiteral("cXlsx"), QStringLiteral("&XLSX..."), QKeySequence(),
        QStringLiteral("Tallenna rivit Excel-taulukoksi"));
    QPushButton* sulje = button(QStringLiteral("cSulje"), QStringLiteral("&Sulje"),
        QKeySequence(Qt::Key_Escape), QStringLiteral("Sulje esikatselu (Esc)"));
    // Two rows, the page's and the file's, so that the window fits a small screen.
    for (QWidget* w : std::initializer_list<QWidget*> {
             ensimmainen, edellinen, m_sivu, seuraava, viimeinen, pienenna, suurenna })
        row->addWidget(w);
    row->addStretch();
    auto* files = new QHBoxLayout;
    layout->addLayout(files);
    for (QWidget* w : std::initializer_list<QWidget*> { tulosta, pdf, csv, xlsx })
        files->addWidget(w);
    files->addStretch();
    files->addWidget(sulje);

    m_view = new ReportPageView(*m_document, this);
    m_scroll = new QScrollArea(this);
    m_scroll->setObjectName(QStringLiteral("scrlSivu"));
    m_scroll->setAlignment(Qt::AlignHCenter);
    m_scroll->setBackgroundRole(QPalette::Dark);
    m_scroll->setWidget(m_view);
    layout->addWidget(m_scroll);
    setCentralWidget(central);

    connect(ensimmainen, &QPushButton::clicked, this, [this] { naytaSivu(0); });
    connect(edellinen, &QPushButton::clicked, this, [this] { naytaSivu(sivu() - 1); });
    connect(seuraava, &QPushButton::clicked, this, [this] { naytaSivu(sivu() + 1); });
    connect(viimeinen, &QPushButton::clicked, this, [this] { naytaSivu(m_document->pageCount() - 1); });
    connect(pienenna, &QPushButton::clicked, this, [this] { m_view->setZoom(m_view->zoom() / 1.25); });
    connect(suurenna, &QPushButton::clicked, this, [this] { m_view->setZoom(m_view->zoom() * 1.25); });
    connect(tulosta, &QPushButton::clicked, this, &frmEsikatselu::tulosta);
    connect(pdf, &QPushButton::clicked, this, [this] { tallenna(QStringLiteral("pdf")); });
    connect(csv, &QPushButton::clicked, this, [this] { tallenna(QStringLiteral("csv")); });
    connect(xlsx, &QPushButton::clicked, this, [this] { tallenna(QStringLiteral("xlsx")); });
    connect(sulje, &QPushButton::clicked, this, &QWidget::close);

    m_view->setZoom(1.0);
    naytaSivu(0);
    // As large as a page wants, within the screen it opens on (its frame and the panels included).
    QSize size(900, 1000);
    if (const QScreen* screen = parent ? parent->screen() : QGuiApplication::primaryScreen())
        size = size.boundedTo(screen->availableGeometry().size() - QSize(40, 60));
    resize(size);
}

frmEsikatselu::~frmEsikatselu() = default;

QPushButton* frmEsikatselu::button(
    const QString& name, const QString& text, const QKeySequence& key, const QString& tip)
{
    auto* b = new QPushButton(text, this);
    b->setObjectName(name);
    b->setToolTip(tip);
    b->setAutoDefault(false);
    // A button without a letter of its own is pressed by its key; one with a letter keeps the
    // letter and gets the key beside it.
    if (QKeySequence::mnemonic(text).isEmpty()) {
        b->setShortcut(key);
    } else if (!key.isEmpty()) {
        auto* shortcut = new QShortcut(key, this);
        connect(shortcut, &QShortcut::activated, b, &QPushButton::click);
    }
    return b;
}

int frmEsikatselu::sivu() const { return m_view->page(); }

void frmEsikatselu::naytaSivu(int page)
{
    m_view->setPage(page);
    m_sivu->setText(QStringLiteral("Sivu %1 / %2").arg(m_view->page() + 1).arg(m_document->pageCount()));
    m_scroll->ensureVisible(0, 0);
}

void frmEsikatselu::tallenna(const QString& muoto)
{
    const QString filter = muoto == u"pdf" ? QStringLiteral("PDF-tiedosto (*.pdf)")
        : muoto == u"csv"                  ? QStringLiteral("CSV-tiedosto (*.csv)")
                                           : QStringLiteral("Excel-taulukko (*.xlsx)");
    QString file
        = Dialogs::instance().saveFileName(QStringLiteral("Tallenna raportti"), filter, QDir::homePath());
    if (file.isEmpty())
        return;
    if (!file.endsWith(u'.' + muoto, Qt::CaseInsensitive))
        file += u'.' + muoto;
    try {
        if (muoto == u"pdf")
            ReportRunner::writePdf(this, *m_document, file);
        else if (muoto == u"csv")
            CsvWriter::write(*m_document, file);
        else
            XlsxWriter::write(*m_document, file);
    } catch (const ReportError& e) {
        Dialogs::instance().error(e.text());
    } catch (const ReportCancelled&) {
    }
}

void frmEsikatselu::tulosta()
{
    ReportRunner::printDocument(this, *m_document, PrintOptions::current().copies);
}
