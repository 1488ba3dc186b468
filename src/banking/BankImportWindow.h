#pragma once

#include "accounts/AccountLookup.h"
#include "banking/BankImport.h"

#include <QAbstractTableModel>
#include <QSqlDatabase>
#include <QWidget>
#include <vector>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

// The lines of a statement with their proposals: the chosen ones checked, the counter-account
// editable by number or name as in the voucher window.
class BankLinesModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Valittu, Paiva, Summa, Osapuoli, Viesti, Tili, Peruste, ColumnCount };

    BankLinesModel(const AccountLookup& accounts, QObject* parent);

    void setPlan(BankImport::Plan plan);
    BankImport::Plan& plan() { return m_plan; }
    std::vector<size_t> chosen() const;
    // Gives the rows without an account the account `tlId`.
    void fillMissing(qint32 tlId);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

private:
    const AccountLookup& m_accounts;
    BankImport::Plan m_plan;
    std::vector<bool> m_chosen;
};

// "Tiliotteen tuonti": a camt.053 or TITO statement read, its lines proposed as vouchers and
// the chosen ones stored in one transaction.
class BankImportWindow final : public QWidget {
    Q_OBJECT

public:
    explicit BankImportWindow(const QSqlDatabase& db, QWidget* parent = nullptr);

    // Reads `path` and shows its proposals; false when the statement was refused.
    bool readStatement(const QString& path);
    // Stores the checked lines; false when nothing was stored.
    bool storeChosen();
    BankLinesModel& model() { return *m_model; }

private:
    void chooseFile();
    void repropose();
    void showSummary();
    qint32 bankAccount() const;

    QSqlDatabase m_db;
    AccountLookup m_accounts;
    std::optional<BankStatement> m_statement;
    BankLinesModel* m_model = nullptr;
    QComboBox* m_tili = nullptr;
    QLineEdit* m_tiedosto = nullptr;
    QTableView* m_rivit = nullptr;
    QLabel* m_yhteenveto = nullptr;
    QPushButton* m_tallenna = nullptr;
};
