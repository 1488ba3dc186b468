#pragma once

#include <QString>

class QLabel;
class QListWidget;

// The steps that the management and the restore windows share: find the stick, list its day
// folders newest first, and list the copies of the chosen day.
class StickDays final {
public:
    struct Controls {
        QLabel* lblVaihe1;
        QLabel* lblVapaaTilaStatus;
        QLabel* lblVaihe2;
        QListWidget* lstPaiva;
        QLabel* lblVaihe3;
        QListWidget* lstTietokanta;
    };
    // `chooseDay` ends the step-2 text and `choose` the step-3 text: what the user is to choose
    // (to restore, to delete).
    StickDays(const Controls& controls, const QString& chooseDay, const QString& choose);

    // False, with the first step saying so, when this computer cannot tell sticks from disks.
    bool supported() const;
    // Back to the first step: lists emptied and later steps disabled.
    void forgetStick();
    // Step 1 and 2: finds the stick and lists its days; tells when there are none.
    void find();
    // Step 3: the copies of the chosen day.
    void showDay();

    const QString& mountPoint() const { return m_mountPoint; }
    // The chosen day's folder ("20240312"), or empty. The list shows it as a date.
    QString day() const;

private:
    Controls m_ui;
    QString m_chooseDay;
    QString m_choose;
    QString m_mountPoint;
};
