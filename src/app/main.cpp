#include "DBC.h"
#include "Dialogs.h"
#include "QtDialogs.h"
#include "frmMain.h"

#include <QApplication>
#include <QLocale>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vorkam"));
    QApplication::setApplicationDisplayName(QStringLiteral("Vorkam"));
    QApplication::setApplicationVersion(QStringLiteral(VORKAM_VERSION));
    // Amounts and dates are Finnish whatever the machine's own language.
    if (QLocale::system().territory() != QLocale::Finland)
        QLocale::setDefault(QLocale(QLocale::Finnish, QLocale::Finland));

    QtDialogs dialogs;
    Dialogs::install(&dialogs);

    int rc = 0;
    {
        frmMain window;
        window.startUp();
        window.show();
        rc = QApplication::exec();
    }
    DBC::instance().SuljeDB();
    Dialogs::install(nullptr);
    return rc;
}
