#pragma once

#include "frmDates2.h"

// The second of the two plain period dialogs: the same fields, buttons and checks as frmDates2,
// for the reports that ask their period through it.
class frmDates3 final : public frmDates2 {
    Q_OBJECT

public:
    explicit frmDates3(QWidget* parent = nullptr);
};
