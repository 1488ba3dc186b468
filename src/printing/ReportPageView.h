#pragma once

#include <QWidget>

class ReportDocument;

// One page of a report on screen, drawn from the page model when it is painted.
class ReportPageView final : public QWidget {
    Q_OBJECT

public:
    explicit ReportPageView(const ReportDocument& document, QWidget* parent = nullptr);

    int page() const { return m_page; }
    void setPage(int page);
    double zoom() const { return m_zoom; }
    void setZoom(double zoom);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double pixelsPerPoint() const;

    const ReportDocument& m_document;
    int m_page = 0;
    double m_zoom = 1.0;
};
