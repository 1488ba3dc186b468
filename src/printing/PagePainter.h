#pragma once

class QPainter;
class ReportDocument;

// Draws one page of a report with QPainter, for the preview window and printers. The painter's
// coordinates are points from the page's top left corner (the caller scales to its device);
// text is drawn where the layout put it, in the Liberation fonts the layout measured with.
namespace PagePainter {

void paint(QPainter& painter, const ReportDocument& document, int pageIndex);

} // namespace PagePainter
