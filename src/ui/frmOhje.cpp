#include "ui/frmOhje.h"

#include "core/Dialogs.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QTextBrowser>
#include <QTextDocument>
#include <QToolBar>

#include <algorithm>

frmOhje::frmOhje(const QUrl& page, QWidget* parent)
    : QMainWindow(parent)
    , m_home(page)
{
    setObjectName(QStringLiteral("frmOhje"));
    setWindowTitle(QStringLiteral("Käyttöohje"));
    resize(820, 640);

    m_browser = new QTextBrowser(this);
    m_browser->setObjectName(QStringLiteral("tbOhje"));
    // Pages of the manual open here; links out of it go to the desktop's own program.
    m_browser->setOpenLinks(true);
    m_browser->setOpenExternalLinks(false);
    connect(m_browser, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) {
        if (!url.isLocalFile() && !url.isRelative())
            Dialogs::instance().openUrl(url);
    });
    setCentralWidget(m_browser);

    auto* bar = addToolBar(QStringLiteral("Ohje"));
    bar->setObjectName(QStringLiteral("tbOhjeToiminnot"));
    bar->setMovable(false);
    QAction* takaisin = bar->addAction(QStringLiteral("< Takaisin"), m_browser, &QTextBrowser::backward);
    takaisin->setObjectName(QStringLiteral("mTakaisin"));
    takaisin->setShortcut(QKeySequence::Back);
    takaisin->setEnabled(false);
    QAction* eteen = bar->addAction(QStringLiteral("Eteenpäin >"), m_browser, &QTextBrowser::forward);
    eteen->setObjectName(QStringLiteral("mEteenpain"));
    eteen->setShortcut(QKeySequence::Forward);
    eteen->setEnabled(false);
    QAction* sisallys = bar->addAction(QStringLiteral("Sisällys"), m_browser, &QTextBrowser::home);
    sisallys->setObjectName(QStringLiteral("mSisallys"));
    connect(m_browser, &QTextBrowser::backwardAvailable, takaisin, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, eteen, &QAction::setEnabled);
    bar->addSeparator();
    bar->addWidget(new QLabel(QStringLiteral("Etsi: "), bar));
    m_haku = new QLineEdit(bar);
    m_haku->setObjectName(QStringLiteral("tHaku"));
    m_haku->setClearButtonEnabled(true);
    m_haku->setMaximumWidth(220);
    bar->addWidget(m_haku);
    connect(m_haku, &QLineEdit::returnPressed, this, [this] {
        if (!etsi(m_haku->text()))
            Dialogs::instance().beep();
    });
    QAction* find = new QAction(this);
    find->setShortcut(QKeySequence::Find);
    connect(find, &QAction::triggered, m_haku, [this] {
        m_haku->setFocus();
        m_haku->selectAll();
    });
    addAction(find);
    bar->addSeparator();
    QAction* selain = bar->addAction(QStringLiteral("Avaa selaimessa"), this, &frmOhje::avaaSelaimessa);
    selain->setObjectName(QStringLiteral("mAvaaSelaimessa"));
    QAction* sulje = new QAction(this);
    sulje->setShortcut(QKeySequence(Qt::Key_Escape));
    connect(sulje, &QAction::triggered, this, &QWidget::close);
    addAction(sulje);

    m_browser->setSearchPaths({ QFileInfo(page.toLocalFile()).absolutePath() });
    m_browser->setSource(page);
}

bool frmOhje::etsi(const QString& text)
{
    if (text.isEmpty())
        return false;
    if (m_browser->find(text))
        return true;
    // Past the last one on this page: the following pages of the manual in the order of its
    // contents, then this page again from the top.
    const QStringList pages = sivut();
    const QString current = QFileInfo(m_browser->source().path()).fileName();
    const qsizetype at = std::max<qsizetype>(pages.indexOf(current), 0);
    const QString folder = QFileInfo(m_home.toLocalFile()).absolutePath();
    for (qsizetype step = 1; step < pages.size(); ++step) {
        const QString file = folder + u'/' + pages[(at + step) % pages.size()];
        QFile page(file);
        if (!page.open(QIODevice::ReadOnly))
            continue;
        QTextDocument document;
        document.setHtml(QString::fromUtf8(page.readAll()));
        if (document.toPlainText().contains(text, Qt::CaseInsensitive)) {
            m_browser->setSource(QUrl::fromLocalFile(file));
            return m_browser->find(text);
        }
    }
    m_browser->moveCursor(QTextCursor::Start);
    return m_browser->find(text);
}

QStringList frmOhje::sivut() const
{
    const QFileInfo home(m_home.toLocalFile());
    QFile index(home.absoluteFilePath());
    const QString contents = index.open(QIODevice::ReadOnly) ? QString::fromUtf8(index.readAll()) : QString();
    QStringList pages = home.absoluteDir().entryList({ QStringLiteral("*.html") }, QDir::Files, QDir::Name);
    // The contents page first, then the chapters as the contents list them.
    const auto place = [&](const QString& page) {
        if (page == home.fileName())
            return qsizetype(-1);
        const qsizetype at = contents.indexOf(QStringLiteral("href=\"") + page);
        return at < 0 ? contents.size() : at;
    };
    std::stable_sort(
        pages.begin(), pages.end(), [&](const QString& a, const QString& b) { return place(a) < place(b); });
    return pages;
}

void frmOhje::avaaSelaimessa()
{
    Dialogs::instance().openUrl(m_browser->source().isValid() ? m_browser->source() : m_home);
}
