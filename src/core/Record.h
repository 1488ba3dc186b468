#pragma once

#include "core/DatabaseError.h"
#include "core/Dialogs.h"
#include "core/Transaction.h"

#include <QSqlDatabase>
#include <memory>
#include <optional>

// The protocol every record object shares: the held values of one row with a changed flag
// and an undo copy, IsEmpty for an object that stands for no row, Read/Save(force)/Delete,
// and save-on-release. A record works on the database it was handed when it was made.
//
// A write inside a transaction takes effect in the object (new key, clean flag, undo copy)
// at once, and is undone in the object if the transaction rolls back, so that no object
// claims a row that does not exist and no typed value is taken for stored.
//
// A derived class supplies the row's SQL (selectRow, insertRow, updateRow, deleteRow). The
// class that supplies them calls saveOnRelease() first thing in its destructor.
template <typename Values> class Record {
public:
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    bool IsEmpty() const { return m_isEmpty; }
    void setIsEmpty(bool empty) { m_isEmpty = empty; }
    // Set by a setter that changed a value; cleared by a successful save.
    bool Dirty() const { return m_dirty; }
    // The row's key; 0 while the object stands for no stored row.
    qint32 key() const { return m_key; }
    const QSqlDatabase& database() const { return m_db; }

    // Reads the row `id`; false, and the object blank, when there is no such row.
    bool Read(qint32 id)
    {
        if (m_isEmpty)
            return false;
        std::optional<Values> row = selectRow(id);
        if (!row) {
            m_key = 0;
            m_v = Values();
            m_stored = m_v;
            m_undo = m_v;
            m_dirty = false;
            return false;
        }
        setLoaded(id, *row);
        return true;
    }

    // Writes the row when forced or changed: an update of a stored row, an insert of a new one.
    // Nothing is written while IsEmpty. Throws DatabaseError.
    void Save(bool force = false)
    {
        if (m_isEmpty || (!force && !m_dirty))
            return;
        if (!shouldStore()) {
            // A row that must not be stored leaves the books if it was there.
            if (m_key != 0)
                Delete();
            return;
        }
        qint32 key = m_key;
        if (key == 0)
            key = insertRow();
        else
            updateRow();
        settle(key);
    }

    // Deletes the stored row (a new object has none). Throws DatabaseError.
    void Delete()
    {
        if (m_isEmpty)
            return;
        if (m_key != 0)
            deleteRow();
        const Snapshot before = snapshot();
        m_key = 0;
        m_dirty = false;
        m_stored = Values();
        if (m_resetOnDelete) {
            m_v = Values();
            m_undo = Values();
        }
        Transaction::onRollback(m_db, m_life, [this, before] { restore(before); });
    }

    // Puts back the undo copy. The object stays changed where that differs from the stored row.
    void Undo()
    {
        if (m_isEmpty)
            return;
        m_v = m_undo;
        m_dirty = !(m_v == m_stored);
    }

    // Makes the present values the ones Undo returns to.
    void takeUndoCopy() { m_undo = m_v; }

protected:
    explicit Record(const QSqlDatabase& db)
        : m_db(db)
    {
    }
    virtual ~Record() = default;

    // The row's values, or nullopt when there is no row `id`.
    virtual std::optional<Values> selectRow(qint32 id) const = 0;
    // Inserts the held values; gives the new key.
    virtual qint32 insertRow() = 0;
    virtual void updateRow() = 0;
    virtual void deleteRow() = 0;
    // False for values that are not stored at all (a stored row is deleted instead).
    virtual bool shouldStore() const { return true; }
    // The sentence shown when a save on release fails.
    virtual QString releaseFailure() const = 0;

    // Fills the object from a row read elsewhere (several rows read by one query).
    void setLoaded(qint32 key, const Values& values)
    {
        m_key = key;
        m_v = values;
        m_stored = values;
        m_undo = values;
        m_dirty = false;
    }

    template <typename T> void assign(T& member, const T& value)
    {
        if (!(member == value)) {
            member = value;
            m_dirty = true;
        }
    }

    // A changed object is not lost when it is released: it saves itself, and a failure is
    // told to the user, never only logged.
    void saveOnRelease() noexcept
    {
        if (m_isEmpty || !m_dirty)
            return;
        try {
            Save(false);
        } catch (const DatabaseError& e) {
            Dialogs::instance().error(e.message(releaseFailure()));
        }
    }

    Values m_v;
    // The cTili rule: the undo copy is taken when the row is read, not when it is saved.
    bool m_undoAtSave = true;
    // Vouchers and entries forget their values when deleted; an account keeps them.
    bool m_resetOnDelete = true;

private:
    struct Snapshot {
        qint32 key;
        bool dirty;
        Values v, undo, stored;
    };
    Snapshot snapshot() const { return { m_key, m_dirty, m_v, m_undo, m_stored }; }
    void restore(const Snapshot& s)
    {
        m_key = s.key;
        m_undo = s.undo;
        m_stored = s.stored;
        // Values typed since stay; the object is changed again, as nothing of it was stored.
        if (m_resetOnDelete && m_v == Values())
            m_v = s.v;
        m_dirty = s.dirty || !(m_v == m_stored);
    }
    void settle(qint32 key)
    {
        const Snapshot before = snapshot();
        m_key = key;
        m_stored = m_v;
        if (m_undoAtSave)
            m_undo = m_v;
        m_dirty = false;
        Transaction::onRollback(m_db, m_life, [this, before] { restore(before); });
    }

    QSqlDatabase m_db;
    qint32 m_key = 0;
    Values m_undo;
    // The values as they stand in the database (blank for a new object).
    Values m_stored;
    bool m_dirty = false;
    bool m_isEmpty = false;
    // Expires with the object, so that a rollback after its release does not touch it.
    std::shared_ptr<int> m_life = std::make_shared<int>(0);
};
