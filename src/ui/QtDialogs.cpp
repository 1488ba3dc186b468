#include "ui/QtDialogs.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

namespace {

const QString Title = QStringLiteral("Vorkam");

void showBox(QMessageBox::Icon icon, const QString& text)
{
    QMessageBox box(icon, Title, text, QMessageBox::Ok, QApplication::activeWindow());
    box.exec();
}

} // namespace

void QtDialogs::information(const QString& text) { showBox(QMessageBox::Information, text); }

void QtDialogs::plain(const QString& text) { showBox(QMessageBox::NoIcon, text); }

void QtDialogs::error(const QString& text) { showBox(QMessageBox::Critical, text); }

bool QtDialogs::question(const QString& text)
{
    QMessageBox box(
        QMessageBox::Question, Title, text, QMessageBox::Yes | QMessageBox::No, QApplication::activeWindow());
    box.button(QMessageBox::Yes)->setText(QStringLiteral("&Kyllä"));
    box.button(QMessageBox::No)->setText(QStringLiteral("&Ei"));
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes;
}

std::optional<QString> QtDialogs::input(const QString& prompt, const QString& defaultText)
{
    QInputDialog box(QApplication::activeWindow());
    box.setWindowTitle(Title);
    box.setLabelText(prompt);
    box.setTextValue(defaultText);
    box.setOkButtonText(QStringLiteral("OK"));
    box.setCancelButtonText(QStringLiteral("Peruuta"));
    if (box.exec() != QDialog::Accepted)
        return std::nullopt;
    return box.textValue();
}

QString QtDialogs::openFileName(const QString& title, const QString& filter, const QString& start)
{
    return QFileDialog::getOpenFileName(QApplication::activeWindow(), title, start, filter);
}

QString QtDialogs::saveFileName(const QString& title, const QString& filter, const QString& start)
{
    // Vorkam asks its own question before replacing a file.
    return QFileDialog::getSaveFileName(
        QApplication::activeWindow(), title, start, filter, nullptr, QFileDialog::DontConfirmOverwrite);
}

void QtDialogs::beep() { QApplication::beep(); }

void QtDialogs::openUrl(const QUrl& url)
{
    if (!QDesktopServices::openUrl(url))
        information(QStringLiteral("Sivua ei voitu avata: %1").arg(url.toDisplayString()));
}
