#pragma once

#include "Money.h"
#include "cAlkusaldot.h"

#include <QObject>
#include <QString>
#include <memory>

// One account of the chart of accounts: a row of the tl table. Loads, saves and deletes the
// row, walks the chart in number order, knows whether it has been changed and can undo the
// changes made since it was read. A changed account saves itself when it is released.
class cTili final : public QObject {
    Q_OBJECT

public:
    explicit cTili(QObject* parent = nullptr);
    ~cTili() override;

    // Restores the fields as they were when the account was created or last read.
    void Undo();

    // The object stands for no account: the end marker of navigation or a row not found.
    // While set, every getter gives the empty value and Read, Save and Delete do nothing.
    bool IsEmpty() const { return m_fields.isEmpty; }
    void setIsEmpty(bool value) { m_fields.isEmpty = value; }

    // tlID; 0 for an account not yet saved.
    qint32 id() const { return m_fields.isEmpty ? 0 : m_id; }

    QString Nimi() const { return m_fields.isEmpty ? QString() : m_fields.nimi; }
    // Cut to 50 characters. Every assignment to a saved account raises NameChanged.
    void setNimi(const QString& value);
    QString Kuvaus() const { return m_fields.isEmpty ? QString() : m_fields.kuvaus; }
    // Cut to 255 characters.
    void setKuvaus(const QString& value);
    qint32 Numero() const { return m_fields.isEmpty ? 0 : m_fields.numero; }
    // Every assignment to a saved account raises NameChanged.
    void setNumero(qint32 value);
    Money Alkusaldo() const { return m_fields.isEmpty ? Money() : m_fields.alkusaldo; }
    void setAlkusaldo(Money value);
    Money Loppusaldo() const { return m_fields.isEmpty ? Money() : m_fields.loppusaldo; }
    void setLoppusaldo(Money value);

    // Set only by assignments that change a value; cleared by a successful Save.
    bool isChanged() const { return m_changed; }

    // The sums of the account's opening entries in this and the previous fiscal year.
    cAlkusaldot Alkusaldot() const;

    // Loads the row with this tlID. A missing row blanks the object and gives false.
    bool Read(qint32 id);
    // Writes the account when forced or changed; a new account gets its tlID. Empty name and
    // description are stored as a single blank. The number and name are not checked here.
    bool Save(bool force = false);
    // Removes the row; the object keeps its fields.
    bool Delete();

    // Navigation in account-number order. Each returns a new object, with IsEmpty set past
    // either end. GetFirst and GetLast see only numbers above 0; GetPrevious goes below.
    std::unique_ptr<cTili> GetFirst() const;
    std::unique_ptr<cTili> GetPrevious() const;
    std::unique_ptr<cTili> GetNext() const;
    std::unique_ptr<cTili> GetLast() const;

    // The database's description of the last failed operation.
    const QString& lastError() const { return m_lastError; }

signals:
    void NameChanged(const QString& Nimi, qint32 Numero, qint32 id);

private:
    struct Fields {
        QString nimi;
        QString kuvaus;
        qint32 numero = 0;
        Money alkusaldo;
        Money loppusaldo;
        bool print = false;
        bool isEmpty = false;
        bool operator==(const Fields&) const = default;
    };

    void reset();
    std::unique_ptr<cTili> navigate(const QString& sql, bool bindNumber) const;

    bool m_changed = false;
    qint32 m_id = 0;
    Fields m_fields;
    // The fields as they were at creation or the last Read: what Undo returns to.
    Fields m_undo;
    // The fields as they stand in the database: after Undo the changed flag tells whether
    // they still differ.
    Fields m_stored;
    mutable QString m_lastError;
};
