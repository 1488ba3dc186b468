#pragma once

#include <QString>
#include <functional>

// A copy of one file that is either whole and checked under its own name or not there at all.
// The bytes are written under a hidden name beside the target, forced onto the disk, read back
// from the disk and compared with the source; only then may the copy take the target's name.
// A stick pulled out, a full or write-protected disk or a bad write leaves at most a hidden
// leftover that nothing takes for a copy, and an earlier file of the target's name untouched.
class VerifiedCopy final {
public:
    // Bytes done of the whole work (writing and reading back).
    using Progress = std::function<void(qint64 done, qint64 total)>;

    VerifiedCopy(const QString& source, const QString& target);
    // A staged copy that was not taken into use is removed.
    ~VerifiedCopy();
    VerifiedCopy(const VerifiedCopy&) = delete;
    VerifiedCopy& operator=(const VerifiedCopy&) = delete;

    // Writes and checks the staged copy. False: error() tells why and nothing is left behind.
    bool write(const Progress& progress = {});
    // The checked copy under its hidden name, until commit() or discard().
    const QString& staged() const { return m_staged; }
    // Gives the staged copy the target's name, replacing a file of that name in one step.
    bool commit();
    void discard();

    // The system's error number of the failed step, and what failed in Finnish.
    int errorNumber() const { return m_errorNumber; }
    const QString& error() const { return m_error; }

    // Removes hidden leftovers of earlier copies of `fileName` that never finished.
    static void removeLeftovers(const QString& folder, const QString& fileName);

private:
    bool fail(int number, const QString& what);

    QString m_source;
    QString m_target;
    QString m_staged;
    int m_errorNumber = 0;
    QString m_error;
};
