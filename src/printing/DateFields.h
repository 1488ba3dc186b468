#pragma once

#include <QDate>
#include <QObject>

class QLineEdit;
class QWidget;

// The start and end date fields that the date dialogs share: they show the remembered report
// period, check each date against the fiscal year when the field is left (the message, and the
// focus stays), and check both again before the dialog goes on.
class DateFields final : public QObject {
    Q_OBJECT

public:
    // Leaving a field for `cancel` does not check it: the user is going away.
    DateFields(QLineEdit* alku, QLineEdit* loppu, QWidget* cancel, QObject* parent);

    // Both dates accepted and in order; otherwise the reason is shown and the focus put on the
    // field at fault. The accepted period becomes the program's report period.
    bool hyvaksy();

private:
    bool tarkista(QLineEdit* field);

    QLineEdit* m_alku;
    QLineEdit* m_loppu;
    QWidget* m_cancel;
    bool m_checking = false;
};
