#include "printing/ReportPageView.h"

#include "printing/PagePainter.h"
#include "printing/ReportDocument.h"

#include <QPainter>

ReportPageView::ReportPageView(const ReportDocument& document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
{
    setObjectName(QStringLiteral("pvSivu"));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

double ReportPageView::pixelsPerPoint() const { return m_zoom * logicalDpiX() / 72.0; }

void ReportPageView::setPage(int page)
{
    m_page = qBound(0, page, m_document.pageCount() - 1);
    update();
}

void ReportPageView::setZoom(double zoom)
{
    m_zoom = qBound(0.25, zoom, 4.0);
    resize(sizeHint());
    updateGeometry();
    update();
}

QSize ReportPageView::sizeHint() const { return (m_document.pageSize() * pixelsPerPoint()).toSize(); }

void ReportPageView::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), Qt::white);
    p.scale(pixelsPerPoint(), pixelsPerPoint());
    PagePainter::paint(p, m_document, m_page);
}
