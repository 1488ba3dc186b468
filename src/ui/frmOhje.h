#pragma once

#include <QMainWindow>
#include <QUrl>

class QLineEdit;
class QTextBrowser;

// The user manual in Vorkam's own help window: the Finnish manual's HTML with its pictures and
// links, back and forward, the contents page, a search, and the manual in a web browser only
// when the user asks for it.
class frmOhje final : public QMainWindow {
    Q_OBJECT

public:
    // Opens `page` (a local HTML file of the manual).
    explicit frmOhje(const QUrl& page, QWidget* parent = nullptr);

    // Finds the next occurrence of the search text: on this page, then on the following pages of
    // the manual, and from the top again after the last one. False when the text does not occur.
    bool etsi(const QString& text);

private:
    void avaaSelaimessa();
    // The manual's pages: the contents page first, then the chapters in the contents' order.
    QStringList sivut() const;

    QTextBrowser* m_browser = nullptr;
    QLineEdit* m_haku = nullptr;
    QUrl m_home;
};
