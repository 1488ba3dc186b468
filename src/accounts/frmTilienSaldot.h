#pragma once

#include <QMainWindow>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmTilienSaldot;
}
class AccountBalancesModel;

// The account balances: every account's debit and credit sums of the current fiscal year and
// their difference, 19 rows at a time, with totals; computed on opening and on cPaivitaSaldot,
// and printed as "tilisald.rpt" from the rows of the last computation.
class frmTilienSaldot final : public QMainWindow {
    Q_OBJECT

public:
    explicit frmTilienSaldot(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmTilienSaldot() override;

    static constexpr int NakyvatRivit = 19;

    void PaivitaSaldot();
    void Tulosta();

private:
    std::unique_ptr<Ui::frmTilienSaldot> ui;
    QSqlDatabase m_db;
    AccountBalancesModel* m_model = nullptr;
};
