#include "core/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSqlQuery>
#include <QVariant>

namespace {

QString sectionOf(const QByteArray& line)
{
    const QByteArray t = line.trimmed();
    if (t.size() >= 2 && t.startsWith('[') && t.endsWith(']'))
        return QString::fromUtf8(t.mid(1, t.size() - 2)).trimmed();
    return {};
}

bool splitKeyValue(const QByteArray& line, QString* key, QString* value)
{
    const QByteArray t = line.trimmed();
    if (t.isEmpty() || t.startsWith(';') || t.startsWith('#') || t.startsWith('['))
        return false;
    const qsizetype eq = t.indexOf('=');
    if (eq <= 0)
        return false;
    *key = QString::fromUtf8(t.left(eq)).trimmed();
    if (value)
        *value = QString::fromUtf8(t.mid(eq + 1)).trimmed();
    return !key->isEmpty();
}

} // namespace

IniSettingsStore::IniSettingsStore(const QString& fileName)
    : m_fileName(fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return;
    QFile file(fileName);
    if (info.isDir() || !file.open(QIODevice::ReadOnly)) {
        m_loadProblem = QStringLiteral("Asetustiedostoa %1 ei voi lukea. Vorkam käyttää oletusasetuksia.")
                            .arg(QDir::toNativeSeparators(fileName));
        return;
    }
    const QByteArray content = file.readAll();
    m_lines = content.split('\n');
    if (!m_lines.isEmpty() && m_lines.last().isEmpty())
        m_lines.removeLast();
    for (QByteArray& line : m_lines)
        if (line.endsWith('\r'))
            line.chop(1);
}

int IniSettingsStore::findKey(const QString& wanted, int* sectionEnd) const
{
    bool inSection = false;
    int found = -1;
    if (sectionEnd)
        *sectionEnd = -1;
    for (int i = 0; i < m_lines.size(); ++i) {
        const QString sec = sectionOf(m_lines.at(i));
        if (!sec.isEmpty()) {
            inSection = sec.compare(m_section, Qt::CaseInsensitive) == 0;
            if (inSection && sectionEnd)
                *sectionEnd = i + 1;
            continue;
        }
        if (!inSection)
            continue;
        if (sectionEnd && !m_lines.at(i).trimmed().isEmpty())
            *sectionEnd = i + 1;
        QString key;
        if (found < 0 && splitKeyValue(m_lines.at(i), &key, nullptr)
            && key.compare(wanted, Qt::CaseInsensitive) == 0)
            found = i;
    }
    return found;
}

QString IniSettingsStore::read(const QString& key, const QString& defaultValue) const
{
    const int line = findKey(key, nullptr);
    if (line < 0)
        return defaultValue;
    QString k, value;
    splitKeyValue(m_lines.at(line), &k, &value);
    return value;
}

bool IniSettingsStore::write(const QString& key, const QString& value)
{
    QString clean = value;
    clean.replace(u'\n', u' ').replace(u'\r', u' ');
    const QByteArray newLine = (key + u'=' + clean).toUtf8();

    QList<QByteArray> lines = m_lines;
    int sectionEnd = -1;
    const int line = findKey(key, &sectionEnd);
    if (line >= 0) {
        lines[line] = newLine;
    } else if (sectionEnd >= 0) {
        lines.insert(sectionEnd, newLine);
    } else {
        if (!lines.isEmpty() && !lines.last().trimmed().isEmpty())
            lines.append(QByteArray());
        lines.append('[' + m_section.toUtf8() + ']');
        lines.append(newLine);
    }

    QDir().mkpath(QFileInfo(m_fileName).absolutePath());
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const QByteArray& l : lines) {
        file.write(l);
        file.write("\n");
    }
    if (!file.commit())
        return false;
    m_lines = lines;
    m_loadProblem.clear();
    return true;
}

DbSettingsStore::DbSettingsStore(const QSqlDatabase& db)
    : m_db(db)
{
}

QString DbSettingsStore::read(const QString& key, const QString& defaultValue) const
{
    QSqlQuery q(m_db);
    q.prepare(QStringLiteral(
        "SELECT setString FROM Settings WHERE lower(setSection) = lower(?) AND lower(setKey) = lower(?) "
        "ORDER BY setID"));
    q.addBindValue(m_section);
    q.addBindValue(key);
    if (!q.exec() || !q.next())
        return defaultValue;
    return q.value(0).toString();
}

bool DbSettingsStore::write(const QString& key, const QString& value)
{
    QSqlQuery q(m_db);
    // Section and key match without regard to case, as in the ini file: a row written by hand as
    // "Vorkam" is the same setting, not a reason for a second row.
    q.prepare(QStringLiteral(
        "UPDATE Settings SET setString = ? WHERE lower(setSection) = lower(?) AND lower(setKey) = lower(?)"));
    q.addBindValue(value);
    q.addBindValue(m_section);
    q.addBindValue(key);
    if (!q.exec())
        return false;
    if (q.numRowsAffected() > 0)
        return true;
    q.prepare(QStringLiteral("INSERT INTO Settings (setSection, setKey, setString) VALUES (?, ?, ?)"));
    q.addBindValue(m_section);
    q.addBindValue(key);
    q.addBindValue(value);
    return q.exec();
}
