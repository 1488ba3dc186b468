#include "app/frmMain.h"
#include "ui_frmMain.h"

#include "accounts/frmTilitNew.h"
#include "backup/frmBackup.h"
#include "backup/frmBackupManagement.h"
#include "backup/frmBackupRestore.h"
#include "banking/BankImportWindow.h"
#include "core/DBC.h"
#include "core/DatabaseCommands.h"
#include "core/DatabaseMaintenance.h"
#include "core/Dialogs.h"
#include "core/Paths.h"
#include "core/ProgramEnd.h"
#include "core/ProgramSettings.h"
#include "service/frmService.h"
#include "settings/frmAsetukset.h"
#include "statements/frmNewTulosJaTase.h"
#include "ui/frmAbout.h"
#include "ui/frmOhje.h"
#include "vouchers/frmNewTositteet.h"
#include "yearchange/frmKaudenVaihto.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QUrl>

namespace {

QPixmap logo()
{
    QPixmap pixmap(96, 96);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(QColor(0x1f, 0x4e, 0x79));
    p.setPen(Qt::NoPen);
    p.drawRoundedRect(QRectF(4, 4, 88, 88), 18, 18);
    p.setPen(Qt::white);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setPixelSize(64);
    font.setBold(true);
    p.setFont(font);
    p.drawText(QRectF(4, 4, 88, 88), Qt::AlignCenter, QStringLiteral("V"));
    return pixmap;
}

} // namespace

frmMain::frmMain(QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmMain>())
{
    ui->setupUi(this);
    ui->cAboutLumetra->setIcon(QIcon(logo()));
    setWindowIcon(QIcon(logo()));
    // The keyboard starts on the vouchers; Enter presses the button that has the focus.
    for (QPushButton* b : { ui->cTositteet, ui->cTilit, ui->cTulosJaTase, ui->cKayttotuki, ui->cSulje })
        b->setAutoDefault(true);
    ui->cAboutLumetra->setFocusPolicy(Qt::TabFocus);
    ui->cSulje->setShortcut(QKeySequence(QStringLiteral("Alt+F4")));

    // Windows and commands that arrive in later versions are shown but cannot be chosen yet;
    // the working windows open once the start-up has opened a database.
    for (QWidget* w : { static_cast<QWidget*>(ui->cTositteet), static_cast<QWidget*>(ui->cTilit),
             static_cast<QWidget*>(ui->cTulosJaTase) })
        w->setEnabled(false);
    for (QAction* a : { ui->mTositteet, ui->mTulosJaTase, ui->mTilit, ui->mAvausviennit,
             ui->mTilinpaatosviennit, ui->mVarmistus, ui->mKopiotikkuVarmistus, ui->mVarmistusKansioon,
             ui->mMuokkaaTietokantaa, ui->mLuoTietokantaNykyisesta, ui->mService, ui->mTilikaudenVaihto })
        a->setEnabled(false);

    // The voucher command opens the current voucher window whatever VanhatTositteet says:
    // Vorkam has no older window.
    connect(ui->cTositteet, &QPushButton::clicked, this, [this] { openWindow(Window::Tositteet); });
    connect(ui->mTositteet, &QAction::triggered, this, [this] { openWindow(Window::Tositteet); });
    connect(ui->mAvausviennit, &QAction::triggered, this, [this] { openWindow(Window::Avausviennit); });
    connect(ui->mTilinpaatosviennit, &QAction::triggered, this,
        [this] { openWindow(Window::Tilinpaatosviennit); });
    connect(ui->cTilit, &QPushButton::clicked, this, [this] { openWindow(Window::Tilit); });
    // The statement window opens whatever VanhatMallit says, as the voucher window does.
    connect(ui->cTulosJaTase, &QPushButton::clicked, this, [this] { openWindow(Window::TulosJaTase); });
    connect(ui->mTulosJaTase, &QAction::triggered, this, [this] { openWindow(Window::TulosJaTase); });
    connect(ui->mTiliote, &QAction::triggered, this, [this] { openWindow(Window::Tiliote); });
    connect(ui->mTilit, &QAction::triggered, this, [this] { openWindow(Window::Tilit); });
    connect(ui->cKayttotuki, &QPushButton::clicked, this, &frmMain::openManual);
    connect(ui->cSulje, &QPushButton::clicked, this, &frmMain::endProgram);
    connect(ui->mSulje, &QAction::triggered, this, &frmMain::endProgram);
    connect(ui->cAboutLumetra, &QToolButton::clicked, this, &frmMain::showAbout);
    connect(ui->mTietoja, &QAction::triggered, this, &frmMain::showAbout);
    connect(ui->mVarmistus, &QAction::triggered, this, &frmMain::backupAndReorganize);
    connect(ui->mPalautus, &QAction::triggered, this, &frmMain::restore);
    connect(ui->mKopiotikkuVarmistus, &QAction::triggered, this, &frmMain::stickBackup);
    connect(ui->mKopioTikkuHallinta, &QAction::triggered, this, &frmMain::stickManagement);
    connect(ui->mKopiotikkuPalautus, &QAction::triggered, this, &frmMain::stickRestore);
    connect(ui->mAsetukset, &QAction::triggered, this, &frmMain::openSettings);
    connect(ui->mMuokkaaTietokantaa, &QAction::triggered, this, &frmMain::editDatabase);
    connect(ui->mTilikaudenVaihto, &QAction::triggered, this, &frmMain::changeFiscalYear);
    connect(ui->mService, &QAction::triggered, this, [this] { openWindow(Window::Service); });
    using Source = DatabaseCreation::Source;
    const std::pair<QAction*, Source> creations[] = {
        { ui->mLuoTietokantaMallistaYhdistys, Source::Yhdistys },
        { ui->mLuoTietokantaMallistaAOY, Source::AOY },
        { ui->mLuoTietokantaMallistaMetalli, Source::Metalli },
        { ui->mLuoTietokantaMallistaLions, Source::Lions },
        { ui->mLuoTietokantaNykyisesta, Source::Nykyinen },
    };
    for (const auto& [action, source] : creations)
        connect(action, &QAction::triggered, this, [this, source = source] { createDatabase(source); });
}

frmMain::~frmMain() = default;

void frmMain::startUp()
{
    Startup startup;
    m_startup = startup.run();
    showBooks();
    const bool open = m_startup.databaseOpen;
    for (QWidget* w : { static_cast<QWidget*>(ui->cTositteet), static_cast<QWidget*>(ui->cTilit),
             static_cast<QWidget*>(ui->cTulosJaTase) })
        w->setEnabled(open);
    for (QAction* a : { ui->mTositteet, ui->mTilit, ui->mTulosJaTase, ui->mAvausviennit,
             ui->mTilinpaatosviennit, ui->mLuoTietokantaNykyisesta, ui->mService })
        a->setEnabled(open);
    // The reorganisation, the maintenance commands and the statement import write the books: not
    // for books open for reading only.
    ui->mVarmistus->setEnabled(open && !m_startup.readOnly);
    ui->mKopiotikkuVarmistus->setEnabled(open);
    ui->mMuokkaaTietokantaa->setEnabled(open && !m_startup.readOnly);
    ui->mTilikaudenVaihto->setEnabled(open && !m_startup.readOnly);
    ui->mTiliote->setEnabled(open && !m_startup.readOnly);
    (open ? ui->cTositteet : ui->cKayttotuki)->setFocus();
}

void frmMain::showBooks()
{
    setWindowTitle(Startup::caption(m_startup.databaseOpen, m_startup.readOnly));
    if (m_startup.databaseOpen) {
        // The books' path as the user knows it: the home folder as "~".
        QString path = QDir::toNativeSeparators(ProgramSettings::installation().Database);
        const QString home = QDir::homePath();
        if (path.startsWith(home + u'/'))
            path = u'~' + path.mid(home.size());
        ui->lblSeura->setText(
            QStringLiteral("<b>%1</b><br>%2")
                .arg(ProgramSettings::bookkeeping().Seurannimi.toHtmlEscaped(), path.toHtmlEscaped()));
    } else {
        ui->lblSeura->setText(QStringLiteral("Tietokantaa ei ole avattu."));
    }
    if (m_startup.repairedOpen)
        ui->lblSeura->setText(ui->lblSeura->text()
            + QStringLiteral(
                "<br><span style=\"color:#b00000\">Tietokanta korjattiin tällä käynnistyskerralla: "
                "tarkista kirjanpito.</span>"));
}

void frmMain::openWindow(Window which)
{
    QPointer<QWidget>& slot = m_windows[int(which)];
    if (!slot) {
        const QSqlDatabase db = DBC::instance().AvaaDB();
        if (!db.isOpen()) {
            Dialogs::instance().error(QStringLiteral("Tietokantaa %1 ei voitu avata.")
                                          .arg(ProgramSettings::installation().Database));
            return;
        }
        switch (which) {
        case Window::Tositteet:
            slot = new frmNewTositteet(db, frmNewTositteet::Laji::Tavallinen, this);
            break;
        case Window::Avausviennit:
            slot = new frmNewTositteet(db, frmNewTositteet::Laji::Avaus, this);
            break;
        case Window::Tilinpaatosviennit:
            slot = new frmNewTositteet(db, frmNewTositteet::Laji::Paatos, this);
            break;
        case Window::Tilit:
            slot = new frmTilitNew(db, this);
            break;
        case Window::TulosJaTase:
            slot = new frmNewTulosJaTase(db, this);
            break;
        case Window::Tiliote:
            slot = new BankImportWindow(db, this);
            break;
        case Window::Service:
            // Read-only books may be sent too: the window only copies them.
            slot = new frmService(db, this);
            break;
        case Window::Count:
            return;
        }
        slot->setWindowFlag(Qt::Window);
        slot->setAttribute(Qt::WA_DeleteOnClose);
    }
    slot->show();
    slot->raise();
    slot->activateWindow();
}

void frmMain::openManual()
{
    const QString index = Paths::programDir() + QStringLiteral("/kayttoohje/index.html");
    if (!QFileInfo::exists(index)) {
        Dialogs::instance().error(QStringLiteral("Käyttöohjetta ei löydy:\n%1").arg(index));
        return;
    }
    if (!m_manual) {
        m_manual = new frmOhje(QUrl::fromLocalFile(index), this);
        m_manual->setWindowFlag(Qt::Window);
        m_manual->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_manual->show();
    m_manual->raise();
    m_manual->activateWindow();
}

void frmMain::showAbout()
{
    frmAbout about(this);
    about.exec();
}

void frmMain::backupAndReorganize()
{
    if (closeWorkingWindows())
        DatabaseCommands::backupAndReorganize();
}

void frmMain::restore()
{
    // A window still holding rows would save them into the restored books.
    if (closeWorkingWindows() && DatabaseCommands::restoreFromBackup())
        endProgram();
}

void frmMain::stickBackup()
{
    // The books are closed, copied and compacted: rows typed in a working window are saved first.
    if (!closeWorkingWindows())
        return;
    frmBackup backup(ProgramSettings::installation().Database, this);
    backup.exec();
}

void frmMain::stickManagement()
{
    frmBackupManagement management(this);
    management.exec();
}

void frmMain::stickRestore()
{
    // A window still holding rows would save them into the restored books.
    if (!closeWorkingWindows())
        return;
    frmBackupRestore restoring(this);
    restoring.exec();
    if (restoring.restored())
        endProgram();
}

void frmMain::openSettings()
{
    const QSqlDatabase db = m_startup.databaseOpen ? DBC::instance().AvaaDB() : QSqlDatabase();
    frmAsetukset settings(db, this);
    settings.setBeforeDatabaseChange([this] { return closeWorkingWindows(); });
    settings.exec();
    if (settings.databaseChanged()) {
        endProgram();
        return;
    }
    // A new association name shows at once, and the keyboard comes back to the main window.
    showBooks();
    activateWindow();
}

void frmMain::editDatabase()
{
    // Windows showing rows that a command deletes are left first, each with its leave check.
    DatabaseMaintenance::run(DBC::instance().AvaaDB(), [this] { return closeWorkingWindows(); });
}

void frmMain::changeFiscalYear()
{
    // The working windows hold the year's vouchers: they are left, each with its leave check,
    // before the year moves into the history.
    if (!closeWorkingWindows())
        return;
    frmKaudenVaihto window(DBC::instance().AvaaDB(), this);
    window.exec();
}

void frmMain::createDatabase(DatabaseCreation::Source source)
{
    // Rows typed in the working windows are saved before the books are copied or left.
    DatabaseCreation::run(source, [this] { return closeWorkingWindows(); });
}

bool frmMain::closeWorkingWindows()
{
    for (QPointer<QWidget>& w : m_windows) {
        if (!w)
            continue;
        if (!w->close())
            return false;
        // Deleted now, not later: its objects let go of the books before they are replaced.
        delete w.data();
    }
    return true;
}

void frmMain::endProgram()
{
    if (!closeWorkingWindows())
        return;
    DBC::instance().SuljeDB();
    ProgramEnd::request();
}

void frmMain::closeEvent(QCloseEvent* event)
{
    // The working windows close first, so that each can save or keep its unsaved changes.
    if (!closeWorkingWindows()) {
        event->ignore();
        return;
    }
    DBC::instance().SuljeDB();
    event->accept();
}
