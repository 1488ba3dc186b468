#include "service/frmService.h"
#include "ui_frmService.h"

#include "core/Dialogs.h"
#include "core/ProgramSettings.h"
#include "ui/CommandWiring.h"
#include "ui/EnterAsTab.h"
#include "ui/WaitCursor.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QShortcut>

namespace {

const QString Failed = QStringLiteral("Huoltotiedoston lähetys epäonnistui.");

} // namespace

frmService::frmService(const QSqlDatabase& db, QWidget* parent)
    : QMainWindow(parent)
    , ui(std::make_unique<Ui::frmService>())
    , m_db(db)
    , m_books(ProgramSettings::installation().Database)
{
    ui->setupUi(this);
    ui->lblOhje->setText(
        QStringLiteral("Huoltotiedostona lähetetään käytössä oleva kirjanpito %1 sähköpostin "
                       "liitteenä Vorkamin tukeen, joka tarvitsee sen selvittääkseen ohjelman "
                       "virheen tai korjatakseen vioittuneen tiedoston.")
            .arg(QFileInfo(m_books).fileName()));
    ui->lblOhje->setToolTip(QDir::toNativeSeparators(m_books));
    ui->tReceiver->setText(ProgramSettings::installation().HuoltoOsoite);
    ui->tSender->setText(ProgramSettings::bookkeeping().Email);
    ui->pbarSendProgress->setRange(0, 100);
    ui->pbarSendProgress->setValue(0);
    showLogin(false);
    EnterAsTab::install(this);
    connectCommand(ui->cSend, ui->mSend, this, &frmService::send);
    connectCommand(ui->cCancel, ui->mClose, this, &QWidget::close);
    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);
    connect(&m_mailer, &ServiceMailer::SendProgress, this, &frmService::progress);
    connect(&m_mailer, &ServiceMailer::SendCompletedSuccessfully, this, &frmService::completed);
    connect(&m_mailer, &ServiceMailer::SendFailed, this, &frmService::failed);
    if (ui->tSender->text().trimmed().isEmpty())
        ui->tSender->setFocus();
    else
        ui->tMessage->setFocus();
}

frmService::~frmService()
{
    m_mailer.cancel();
    endSend();
}

void frmService::send()
{
    if (m_mailer.busy())
        return;
    const QString sender = ui->tSender->text().trimmed();
    const QString receiver = ui->tReceiver->text().trimmed();
    const QString smtp = ProgramSettings::bookkeeping().SMTP;
    const QString refusal = ServiceMail::refusal(sender, receiver, smtp);
    if (!refusal.isEmpty()) {
        Dialogs::instance().information(refusal);
        if (!ServiceMail::isAddress(sender))
            ui->tSender->setFocus();
        else if (!ServiceMail::isAddress(receiver))
            ui->tReceiver->setFocus();
        return;
    }

    ui->pbarSendProgress->setValue(0);
    ui->cSend->setEnabled(false);
    ui->mSend->setEnabled(false);
    m_wait = std::make_unique<WaitCursor>();
    // The books may be written while the mail goes: what is sent is a copy taken now.
    m_snapshot = std::make_unique<ServiceMail::Snapshot>(m_db, m_books, m_snapshotFolder);
    if (!m_snapshot->ok()) {
        const QString why = m_snapshot->message();
        endSend();
        Dialogs::instance().error(Failed + u'\n' + why);
        return;
    }
    ServiceMailer::Request request;
    request.server = smtp;
    request.sender = sender;
    request.receiver = receiver;
    request.subject = ServiceMail::subject(
        ServiceMail::userName(), ProgramSettings::bookkeeping().Seurannimi, QDate::currentDate());
    request.text = ui->tMessage->toPlainText();
    request.attachment = m_snapshot->path();
    if (!ui->tUserName->isHidden()) {
        request.userName = ui->tUserName->text().trimmed();
        request.password = ui->tPassword->text();
    }
    m_mailer.send(request);
}

void frmService::progress(qint64 sent, qint64 total)
{
    ui->pbarSendProgress->setValue(total > 0 ? int(sent * 100 / total) : 100);
}

void frmService::completed()
{
    endSend();
    ui->pbarSendProgress->setValue(100);
    Dialogs::instance().information(QStringLiteral("Huoltotiedosto lähetettiin onnistuneesti."));
}

void frmService::failed(const QString& reason)
{
    const ServiceMailer::Failure& failure = m_mailer.failure();
    endSend();
    ui->pbarSendProgress->setValue(0);
    QString text = Failed + u'\n' + reason;
    if (!failure.advice.isEmpty())
        text += u'\n' + failure.advice;
    if (failure.loginNeeded && ui->tUserName->isHidden())
        text += QStringLiteral("\nKirjoita palvelimen käyttäjätunnus ja salasana ja lähetä uudelleen.");
    Dialogs::instance().error(text);
    if (failure.loginNeeded) {
        showLogin(true);
        (ui->tUserName->text().isEmpty() ? ui->tUserName : ui->tPassword)->setFocus();
    }
}

void frmService::endSend()
{
    m_wait.reset();
    m_snapshot.reset();
    ui->cSend->setEnabled(true);
    ui->mSend->setEnabled(true);
}

void frmService::showLogin(bool visible)
{
    for (QWidget* w : { static_cast<QWidget*>(ui->lblUserName), static_cast<QWidget*>(ui->tUserName),
             static_cast<QWidget*>(ui->lblPassword), static_cast<QWidget*>(ui->tPassword) })
        w->setVisible(visible);
}

void frmService::closeEvent(QCloseEvent* event)
{
    // Closing stops a send; nothing of it is left behind.
    m_mailer.cancel();
    endSend();
    event->accept();
}
