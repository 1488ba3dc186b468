#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QMainWindow>
#include <QSqlDatabase>
#include <array>
#include <memory>

#include "accounts/cTili.h"

class QTreeWidgetItem;

namespace Ui {
class frmTilitNew;
}

// The chart of accounts: a tree of the accounts grouped by thousands of account number, the
// fields of the current account with its opening entries, and the commands to add, save,
// undo, delete and step through accounts. Everything it needs comes from the open database.
class frmTilitNew final : public QMainWindow {
    Q_OBJECT

public:
    explicit frmTilitNew(const QSqlDatabase& db, QWidget* parent = nullptr);
    ~frmTilitNew() override;

    // The account shown; an object with IsEmpty set when the chart is empty.
    const cTili& nykyinenTili() const { return *m_tili; }

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void rakennaPuu();
    // Adds an account node in number order within its group.
    QTreeWidgetItem* lisaaSolmu(int ryhma, qint32 numero, const QString& teksti);
    void valitseSolmu(qint32 id);
    void vaihdaTili(std::unique_ptr<cTili> tili);
    // Reads the account `id` and makes it the current one.
    void lueTili(qint32 id);
    void naytaTili();
    void tiliaMuutettu(const QString& nimi, qint32 numero, qint32 id);
    // Saves the current account's changes before another account takes its place. False, with
    // the reason shown, when they cannot be saved; the current account then stays.
    bool tallennaMuutokset();
    bool tarkistaMuutokset(bool poistuttaessa);
    void kerroSijoitus(qint32 id);
    void solmuValittu(QTreeWidgetItem* current, QTreeWidgetItem* previous);
    bool hyppaaNumeroon(const QString& text);

    void uusi();
    void tallenna();
    void peru();
    void poista();
    enum class Suunta { Ensimmainen, Edellinen, Seuraava, Viimeinen };
    void siirry(Suunta suunta);
    void selaa();
    // cTulosta: the list of accounts; mTulostaTilikartta: the chart against the statement templates.
    void tulostaTililuettelo();
    void tulostaTilikartta();

    std::unique_ptr<Ui::frmTilitNew> ui;
    QSqlDatabase m_db;
    std::unique_ptr<cTili> m_tili;
    // Index 0–8: the groups 1000–9000; index 9: "Muut".
    std::array<QTreeWidgetItem*, 10> m_ryhmat {};
    QHash<qint32, QTreeWidgetItem*> m_solmut;
    // Set while the window fills its own fields and tree, so that those changes are not
    // taken for the user's edits or choices.
    bool m_paivittaa = false;
    QString m_haku;
    QElapsedTimer m_hakuAika;
};
