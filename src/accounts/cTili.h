#pragma once

#include "accounts/cAlkusaldot.h"
#include "core/Money.h"
#include "core/Record.h"

#include <QObject>
#include <QString>
#include <memory>

struct TiliValues {
    QString nimi;
    QString kuvaus;
    qint32 numero = 0;
    Money alkusaldo;
    Money loppusaldo;
    bool print = false;
    bool operator==(const TiliValues&) const = default;
};

// One account of the chart of accounts: a row of the tl table. Loads, saves and deletes the
// row, walks the chart in number order, knows whether it has been changed and can undo the
// changes made since it was read. A changed account saves itself when it is released.
// Database errors throw DatabaseError to the window, which tells the user.
class cTili final : public QObject, public Record<TiliValues> {
    Q_OBJECT

public:
    explicit cTili(const QSqlDatabase& db, QObject* parent = nullptr);
    ~cTili() override;

    // tlID; 0 for an account not yet saved, and while IsEmpty.
    qint32 id() const { return IsEmpty() ? 0 : key(); }

    // While IsEmpty every getter gives the empty value.
    QString Nimi() const { return IsEmpty() ? QString() : m_v.nimi; }
    // Cut to 50 characters. Every assignment to a saved account raises NameChanged.
    void setNimi(const QString& value);
    QString Kuvaus() const { return IsEmpty() ? QString() : m_v.kuvaus; }
    // Cut to 255 characters.
    void setKuvaus(const QString& value);
    qint32 Numero() const { return IsEmpty() ? 0 : m_v.numero; }
    // Every assignment to a saved account raises NameChanged.
    void setNumero(qint32 value);
    Money Alkusaldo() const { return IsEmpty() ? Money() : m_v.alkusaldo; }
    void setAlkusaldo(Money value) { assign(m_v.alkusaldo, value); }
    Money Loppusaldo() const { return IsEmpty() ? Money() : m_v.loppusaldo; }
    void setLoppusaldo(Money value) { assign(m_v.loppusaldo, value); }

    // Whether the ledger and the chart of accounts print the account (tlPrint).
    bool Tulostetaan() const { return !IsEmpty() && m_v.print; }
    void setTulostetaan(bool value) { assign(m_v.print, value); }

    bool isChanged() const { return Dirty(); }

    // The sums of the account's opening entries in this and the previous fiscal year.
    cAlkusaldot Alkusaldot() const;

    // Navigation in account-number order. Each returns a new object, with IsEmpty set past
    // either end. GetFirst and GetLast see only numbers above 0; GetPrevious goes below.
    std::unique_ptr<cTili> GetFirst() const;
    std::unique_ptr<cTili> GetPrevious() const;
    std::unique_ptr<cTili> GetNext() const;
    std::unique_ptr<cTili> GetLast() const;

signals:
    void NameChanged(const QString& Nimi, qint32 Numero, qint32 id);

protected:
    std::optional<TiliValues> selectRow(qint32 id) const override;
    qint32 insertRow() override;
    void updateRow() override;
    void deleteRow() override;
    QString releaseFailure() const override;

private:
    enum class Step { First, Previous, Next, Last };
    std::unique_ptr<cTili> navigate(Step step) const;
    void bindValues(QSqlQuery& q) const;
};
