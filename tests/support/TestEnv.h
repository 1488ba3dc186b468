#pragma once

#include <QByteArray>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

// A private world for one test: program folder, data folder and ini file in a temporary
// folder, fresh settings, no open database, the real file operations, and a program end that
// is only counted.
class TestEnv final {
public:
    TestEnv();
    ~TestEnv();

    QString path(const QString& relative) const { return m_dir.path() + u'/' + relative; }
    QString programDir() const { return path(QStringLiteral("bin")); }
    QString iniFile() const { return path(QStringLiteral("config/Vorkam/lxvorkam.ini")); }

    void writeIni(const QByteArray& content) const;
    QString readIni() const { return QString::fromUtf8(readFile(iniFile())); }
    int programEnds() const { return m_programEnds; }

    enum class Layout { Oldest, Current };
    // A new association database at `file` with a few accounts, vouchers and entries.
    static bool createDatabase(const QString& file, Layout layout = Layout::Current);
    // Runs `statements` on `file` in turn; false, with the failing statement told, at the first
    // that fails.
    static bool exec(const QString& file, const QStringList& statements);
    static QByteArray readFile(const QString& file);
    static bool writeFile(const QString& file, const QByteArray& bytes);

private:
    QTemporaryDir m_dir;
    int m_programEnds = 0;
};

// A row of a data-driven test whose columns are all texts, each given in UTF-8.
template <typename... Texts> void textRow(const char* tag, const Texts*... texts)
{
    (QTest::newRow(tag) << ... << QString::fromUtf8(texts));
}

// Runs `work` with a short-lived connection to `file`.
template <typename Work> void withDatabase(const QString& file, Work work)
{
    const QString name = QStringLiteral("test_with_database");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(file);
        db.open();
        work(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}
