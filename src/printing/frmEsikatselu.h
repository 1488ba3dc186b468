#pragma once

#include <QMainWindow>
#include <memory>

class QLabel;
class QPushButton;
class QScrollArea;
class ReportDocument;
class ReportPageView;

// Vorkam's own print preview: the pages of a report drawn on demand, paging with the keyboard
// (Page Up/Down, Home, End), zoom (Ctrl++ and Ctrl+-), printing and saving as PDF, CSV or XLSX.
class frmEsikatselu final : public QMainWindow {
    Q_OBJECT

public:
    frmEsikatselu(std::unique_ptr<ReportDocument> document, QWidget* parent = nullptr);
    ~frmEsikatselu() override;

    const ReportDocument& document() const { return *m_document; }
    int sivu() const;
    void naytaSivu(int page);

private:
    QPushButton* button(
        const QString& name, const QString& text, const QKeySequence& key, const QString& tip);
    void tallenna(const QString& muoto);
    void tulosta();

    std::unique_ptr<ReportDocument> m_document;
    ReportPageView* m_view = nullptr;
    QScrollArea* m_scroll = nullptr;
    QLabel* m_sivu = nullptr;
};
