#pragma once

#include <QDialog>
#include <QSqlDatabase>

class QListWidget;
class QListWidgetItem;
class QPushButton;

// The findings of the voucher check, one line each. Choosing a line (double click or Enter)
// asks for that voucher to be shown in the voucher window.
class frmTositeTarkistusVirheet final : public QDialog {
    Q_OBJECT

public:
    // Runs the check at once, unless the database settings are not in order. `korjaa` off
    // leaves orphan entries in place (the books are open for reading only).
    frmTositeTarkistusVirheet(const QSqlDatabase& db, bool korjaa, QWidget* parent = nullptr);

    // Runs the check and lists what it found.
    void Tarkista();

signals:
    void voucherChosen(qint32 toId);

private:
    void valittu(QListWidgetItem* item);

    QSqlDatabase m_db;
    bool m_korjaa;
    QListWidget* m_lista = nullptr;
};
