#pragma once

#include <QString>

// A report file written under a temporary name in the target's folder and renamed over the
// target only when complete, so that a failure or a cancel never leaves half a file, and an
// old file of the same name stays until the new one is whole.
class OutputFile final {
public:
    // Reserves the temporary name; throws ReportError when the folder cannot be written.
    explicit OutputFile(const QString& target);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Where to write.
    const QString& temporaryPath() const { return m_temporary; }
    // Renames the written file over the target; throws ReportError on failure.
    void commit();

    // "Tiedostoa X ei voitu kirjoittaa: reason"
    static QString failure(const QString& target, const QString& reason);
    // Why a file could not be written, in Finnish, from the system's error number (errno): a full
    // disk, a folder without the right to write, a read-only disk, a file in use; otherwise a
    // Finnish sentence with the system's own text on a line of its own.
    static QString reason(int error);
    // The failure of writing the temporary file, for a library that does not tell why: a full
    // disk or a folder that cannot be written, judged from the folder; else `fallback`.
    QString writeFailure(const QString& fallback) const;

private:
    QString m_target;
    QString m_temporary;
    bool m_committed = false;
};
