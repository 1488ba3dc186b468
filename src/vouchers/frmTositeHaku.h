#pragma once

#include <QDialog>
#include <QSqlDatabase>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;

// Finds vouchers by an entry amount or a word of the description and hands the chosen one to
// the voucher window: after exec(), valittuTosite() is its key, or 0 when none was chosen.
class frmTositeHaku final : public QDialog {
    Q_OBJECT

public:
    explicit frmTositeHaku(const QSqlDatabase& db, QWidget* parent = nullptr);

    qint32 valittuTosite() const { return m_valittu; }

    void Search();
    void Open();
    void Undo();

protected:
    void reject() override;

private:
    QSqlDatabase m_db;
    qint32 m_valittu = 0;
    QLineEdit* m_arvo = nullptr;
    QLineEdit* m_selite = nullptr;
    QListWidget* m_lista = nullptr;
    QLabel* m_tulos = nullptr;
};
