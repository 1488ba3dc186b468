#pragma once

#include <QDialog>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmKaudenVaihto;
}

// The fiscal year change: the current year's dates and those after the change, the
// balance-sheet template whose accounts give the opening entries, and the stages of the
// change on a progress bar. The work is FiscalYearChange's.
class frmKaudenVaihto final : public QDialog {
    Q_OBJECT

public:
    explicit frmKaudenVaihto(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmKaudenVaihto() override;

    // True once the year has been changed.
    bool vaihdettu() const { return m_vaihdettu; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void naytaKaudet();
    void taytaMallit();
    void vaihda();
    void setKaynnissa(bool kaynnissa);

    std::unique_ptr<Ui::frmKaudenVaihto> ui;
    QSqlDatabase m_db;
    bool m_kaynnissa = false;
    bool m_vaihdettu = false;
};
