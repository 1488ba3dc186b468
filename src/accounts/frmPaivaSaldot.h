#pragma once

#include "accounts/AccountLookup.h"
#include "accounts/DailyBalances.h"

#include <QMainWindow>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmPaivaSaldot;
}
class TextTableModel;

// The daily balances of the chosen account over the fiscal year (both ends included): a row
// per day with entries, 19 at a time, "Ei tapahtumia." when there are none, and beside the rows
// the balance at the end of each day as a step line. Nothing is written and nothing printed.
class frmPaivaSaldot final : public QMainWindow {
    Q_OBJECT

public:
    // Preselects the account tlID `tili` and computes it at once; 0 preselects nothing.
    explicit frmPaivaSaldot(const QSqlDatabase& db, qint32 tili = 0, QWidget* parent = nullptr);
    ~frmPaivaSaldot() override;

    static constexpr int NakyvatRivit = 19;

    qint32 tili() const;
    void valitseTili(qint32 tili);
    void Paivita();
    const std::vector<DailyBalances::Rivi>& rivit() const { return m_rivit; }

private:
    std::unique_ptr<Ui::frmPaivaSaldot> ui;
    QSqlDatabase m_db;
    AccountLookup m_tilit;
    TextTableModel* m_model = nullptr;
    std::vector<DailyBalances::Rivi> m_rivit;
};
