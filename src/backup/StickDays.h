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
    // `choose` ends the step-3 text: what the user is to choose among the day's copies.
    StickDays(const Controls& controls, const QString& choose);

    // False, with the first step saying so, when this computer cannot tell sticks from disks.
    bool supported() const;
    // Back to the first step: lists emptied and later steps disabled.
    void clear();
    // Step 1 and 2: finds the stick and lists its days; tells when there are none.
    void find();
    // Step 3: the copies of the chosen day.
    void showDay();

    const QString& mountPoint() const { return m_mountPoint; }
    // The chosen day, or empty.
    QString day() const;

private:
    Controls m_ui;
    QString m_choose;
    QString m_mountPoint;
};
