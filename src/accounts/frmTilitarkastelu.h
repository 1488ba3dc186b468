#pragma once

#include "accounts/AccountLookup.h"
#include "accounts/cTiliTarkastelut.h"

#include <QMainWindow>
#include <QSqlDatabase>
#include <memory>

namespace Ui {
class frmTilitarkastelu;
}
class TextTableModel;

// The account inspection: the entries of the chosen account in date order with their voucher's
// number, date and description, the amount on its side and the running balance, 19 rows at a
// time with totals below; printed as "tilitark.rpt" from the rows of the last computation. A
// row double-clicked (or Enter) asks for its voucher to be shown (tositeValittu).
class frmTilitarkastelu final : public QMainWindow {
    Q_OBJECT

public:
    // Preselects the account tlID `tili` and computes it at once; 0 preselects nothing.
    explicit frmTilitarkastelu(const QSqlDatabase& db, qint32 tili = 0, QWidget* parent = nullptr);
    ~frmTilitarkastelu() override;

    static constexpr int NakyvatRivit = 19;

    // The account chosen in the list; 0 when none.
    qint32 tili() const;
    void valitseTili(qint32 tili);
    void Paivita();
    void Tulosta();

signals:
    void tositeValittu(qint32 toId);

private:
    void avaaRivi(const QModelIndex& index);

    std::unique_ptr<Ui::frmTilitarkastelu> ui;
    QSqlDatabase m_db;
    AccountLookup m_tilit;
    TextTableModel* m_model = nullptr;
    std::vector<cTiliTarkastelut::Rivi> m_rivit;
    // The account whose rows tlTarkastelut holds, as its list shows it; empty before a run.
    QString m_laskettu;
    Money m_loppusaldo; // its balance after the last line
};
