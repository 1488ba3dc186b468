#pragma once

#include "vouchers/VoucherTemplateEditor.h"

#include <QDialog>
#include <memory>

class QComboBox;
class QLineEdit;
class QListWidget;
class QModelIndex;
class QTableView;
class VientiPohjaModel;

// The window in which voucher templates are kept: the list of templates, and the name,
// description, quick-select number and entry patterns of the one chosen. The rules live in
// VoucherTemplateEditor.
class frmTositepohja final : public QDialog {
    Q_OBJECT

public:
    explicit frmTositepohja(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmTositepohja() override;

    const VoucherTemplateEditor& muokkaus() const { return *m_muokkaus; }

    void Uusi();
    void Tallenna();
    void Poista();
    void LisaaVienteja();

signals:
    // Templates were saved or deleted.
    void pohjatMuuttuivat();

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void naytaPohja();
    void taytaLuettelo();
    void sulkeEditori();
    void naytaVirhePaikka();

    std::unique_ptr<VoucherTemplateEditor> m_muokkaus;
    VientiPohjaModel* m_model = nullptr;
    QListWidget* m_lista = nullptr;
    QLineEdit* m_nimi = nullptr;
    QLineEdit* m_selite = nullptr;
    QComboBox* m_pikavalinta = nullptr;
    QTableView* m_rivit = nullptr;
};
