#pragma once

#include <QByteArray>
#include <QList>
#include <QSqlDatabase>
#include <QString>

// The settings component: one section of key/value texts, kept either in an ini file or in
// a database's Settings table. A missing key yields the caller's default.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    void setSection(const QString& section) { m_section = section; }
    const QString& section() const { return m_section; }

    virtual QString read(const QString& key, const QString& defaultValue) const = 0;
    // False when the value could not be stored.
    virtual bool write(const QString& key, const QString& value) = 0;

protected:
    QString m_section = QStringLiteral("VORKAM");
};

// An ini file: "[SECTION]" lines and "key=value" lines. Lines Vorkam does not understand are
// kept as they are when the file is written again, so a damaged file loses nothing.
class IniSettingsStore final : public SettingsStore {
public:
    explicit IniSettingsStore(const QString& fileName);

    QString read(const QString& key, const QString& defaultValue) const override;
    bool write(const QString& key, const QString& value) override;

    const QString& fileName() const { return m_fileName; }
    // Empty when the file was read (or does not exist yet); otherwise why it could not be read.
    const QString& loadProblem() const { return m_loadProblem; }

private:
    int findKey(const QString& key, int* sectionEnd) const;

    QString m_fileName;
    QString m_loadProblem;
    QList<QByteArray> m_lines;
};

// The Settings table of an association database: one row per (setSection, setKey).
class DbSettingsStore final : public SettingsStore {
public:
    explicit DbSettingsStore(const QSqlDatabase& db);

    QString read(const QString& key, const QString& defaultValue) const override;
    bool write(const QString& key, const QString& value) override;

private:
    QSqlDatabase m_db;
};
