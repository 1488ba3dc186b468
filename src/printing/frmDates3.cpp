#include "frmDates3.h"

frmDates3::frmDates3(QWidget* parent)
    : frmDates2(parent)
{
    setObjectName(QStringLiteral("frmDates3"));
}
