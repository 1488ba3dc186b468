#include "backup/StickDays.h"

#include "backup/BackupStick.h"
#include "core/Dates.h"
#include "core/Dialogs.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QRegularExpression>

namespace {

// A day folder as the user reads it: "20240312" as "12.3.2024".
QString dayText(const QString& folder)
{
    const QDate d = QDate::fromString(folder, QStringLiteral("yyyyMMdd"));
    return d.isValid() ? Dates::format(d) : folder;
}

} // namespace

StickDays::StickDays(const Controls& controls, const QString& chooseDay, const QString& choose)
    : m_ui(controls)
    , m_chooseDay(chooseDay)
    , m_choose(choose)
{
}

bool StickDays::supported() const
{
    if (Drives::instance().supported())
        return true;
    m_ui.lblVaihe1->setText(
        QStringLiteral("Tietokoneesi ei tue %1-muistitikkuvarmistusta.").arg(BackupStick::Label));
    return false;
}

void StickDays::forgetStick()
{
    m_mountPoint.clear();
    m_ui.lstPaiva->clear();
    m_ui.lstTietokanta->clear();
    for (QWidget* w :
        std::initializer_list<QWidget*> { m_ui.lblVaihe2, m_ui.lstPaiva, m_ui.lblVaihe3, m_ui.lstTietokanta })
        w->setEnabled(false);
}

void StickDays::find()
{
    forgetStick();
    const std::optional<Volume> stick = BackupStick::find();
    if (!stick) {
        m_ui.lblVapaaTilaStatus->setText(QStringLiteral("Sopivaa muistitikkua ei löydy."));
        return;
    }
    m_mountPoint = stick->mountPoint;
    m_ui.lblVapaaTilaStatus->clear();
    m_ui.lblVaihe2->setText(BackupStick::foundText(QDir::toNativeSeparators(m_mountPoint), m_chooseDay));
    m_ui.lblVaihe2->setEnabled(true);
    const QStringList days = BackupStick::days(m_mountPoint);
    if (days.isEmpty()) {
        Dialogs::instance().information(QStringLiteral("Muistitikulta ei löydy varmuuskopioita."));
        return;
    }
    for (const QString& folder : days) {
        auto* item = new QListWidgetItem(dayText(folder), m_ui.lstPaiva);
        item->setData(Qt::UserRole, folder);
    }
    m_ui.lstPaiva->setEnabled(true);
    // The newest day is the one most often wanted.
    m_ui.lstPaiva->setCurrentRow(0);
    m_ui.lstPaiva->setFocus();
}

QString StickDays::day() const
{
    const QListWidgetItem* item = m_ui.lstPaiva->currentItem();
    return item && !m_mountPoint.isEmpty() ? item->data(Qt::UserRole).toString() : QString();
}

void StickDays::showDay()
{
    m_ui.lstTietokanta->clear();
    const QString chosen = day();
    if (chosen.isEmpty())
        return;
    // Only books: a note or another file kept beside them is no copy.
    const QStringList files = BackupStick::files(m_mountPoint, chosen)
                                  .filter(QRegularExpression(
                                      QStringLiteral("\\.mdb$"), QRegularExpression::CaseInsensitiveOption));
    m_ui.lstTietokanta->addItems(files);
    m_ui.lstTietokanta->setEnabled(!files.isEmpty());
    m_ui.lblVaihe3->setEnabled(true);
    m_ui.lblVaihe3->setText(files.isEmpty()
            ? QStringLiteral("3. Valitulle päivälle ei löydy tietokantoja.")
            : QStringLiteral("3. Valitulle päivälle %1 löytyy seuraavat tietokannat, ").arg(dayText(chosen))
                + m_choose);
}
