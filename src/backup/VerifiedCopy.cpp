#include "backup/VerifiedCopy.h"

#include "core/ErrorText.h"
#include "core/FileOps.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr qint64 ChunkSize = 1 << 20;
const QString LeftoverMark = QStringLiteral(".vorkam-");

// A file descriptor closed with its guard.
class Descriptor final {
public:
    explicit Descriptor(int fd)
        : m_fd(fd)
    {
    }
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_fd; }
    // Closes now; the error number of a failed close (a delayed write error), else 0.
    int close()
    {
        const int rc = ::close(m_fd);
        m_fd = -1;
        return rc == 0 ? 0 : errno;
    }

private:
    int m_fd;
};

// Reads up to `size` bytes; -1 with errno on failure.
qint64 readSome(int fd, char* buffer, qint64 size)
{
    for (;;) {
        const ssize_t n = ::read(fd, buffer, size_t(size));
        if (n >= 0 || errno != EINTR)
            return n;
    }
}

bool writeAll(int fd, const char* data, qint64 size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size_t(size));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            if (n == 0)
                errno = EIO;
            return false;
        }
        data += n;
        size -= n;
    }
    return true;
}

} // namespace

VerifiedCopy::VerifiedCopy(const QString& source, const QString& target)
    : m_source(source)
    , m_target(target)
{
}

VerifiedCopy::~VerifiedCopy() { discard(); }

bool VerifiedCopy::fail(int number, const QString& what)
{
    m_errorNumber = number;
    m_error = what + u'\n' + ErrorText::system(number);
    discard();
    return false;
}

void VerifiedCopy::discard()
{
    if (!m_staged.isEmpty())
        std::remove(QFile::encodeName(m_staged).constData());
    m_staged.clear();
}

bool VerifiedCopy::write(const Progress& progress)
{
    discard();
    m_errorNumber = 0;
    m_error.clear();
    const QFileInfo target(m_target);
    if (target.isDir())
        return fail(EISDIR, QStringLiteral("Kohde %1 on kansio.").arg(m_target));

    Descriptor source(::open(QFile::encodeName(m_source).constData(), O_RDONLY | O_CLOEXEC));
    if (source.get() < 0)
        return fail(errno, QStringLiteral("Tiedostoa %1 ei voi lukea.").arg(m_source));
    const qint64 total = QFileInfo(m_source).size();

    QByteArray name = QFile::encodeName(target.absolutePath() + QStringLiteral("/.") + target.fileName()
        + LeftoverMark + QStringLiteral("XXXXXX"));
    Descriptor staging(::mkostemp(name.data(), O_CLOEXEC));
    if (staging.get() < 0)
        return fail(errno, QStringLiteral("Kansioon %1 ei voi kirjoittaa.").arg(target.absolutePath()));
    m_staged = QFile::decodeName(name);

    const QString writeFailed
        = QStringLiteral("Kopion kirjoittaminen kohteeseen %1 ei onnistunut.").arg(m_target);
    QCryptographicHash written(QCryptographicHash::Sha256);
    QByteArray buffer(ChunkSize, Qt::Uninitialized);
    qint64 done = 0;
    for (;;) {
        const qint64 n = readSome(source.get(), buffer.data(), ChunkSize);
        if (n < 0)
            return fail(errno, QStringLiteral("Tiedoston %1 lukeminen ei onnistunut.").arg(m_source));
        if (n == 0)
            break;
        if (!writeAll(staging.get(), buffer.constData(), n))
            return fail(errno, writeFailed);
        written.addData(QByteArrayView(buffer.constData(), n));
        done += n;
        if (progress)
            progress(done, 2 * std::max(total, done));
    }
    // On the disk itself, not in the computer's memory: a stick may be pulled out next.
    if (::fsync(staging.get()) != 0)
        return fail(errno, writeFailed);
    // Read back from the disk, not from what the computer still remembers of the writes.
    ::posix_fadvise(staging.get(), 0, 0, POSIX_FADV_DONTNEED);
    if (const int error = staging.close())
        return fail(error, writeFailed);

    Descriptor check(::open(name.constData(), O_RDONLY | O_CLOEXEC));
    if (check.get() < 0)
        return fail(errno, writeFailed);
    QCryptographicHash read(QCryptographicHash::Sha256);
    qint64 readBack = 0;
    for (;;) {
        const qint64 n = readSome(check.get(), buffer.data(), ChunkSize);
        if (n < 0)
            return fail(errno, QStringLiteral("Kopion %1 tarkistus ei onnistunut.").arg(m_target));
        if (n == 0)
            break;
        read.addData(QByteArrayView(buffer.constData(), n));
        readBack += n;
        if (progress)
            progress(done + readBack, 2 * std::max(done, readBack));
    }
    if (readBack != done || read.result() != written.result())
        return fail(EIO, QStringLiteral("Kopio %1 ei vastaa alkuperäistä tiedostoa.").arg(m_target));
    return true;
}

bool VerifiedCopy::commit()
{
    if (m_staged.isEmpty())
        return false;
    // Flushed, renamed over the target, and the new name flushed with its folder.
    errno = 0;
    if (!FileOps::instance().replace(m_staged, m_target))
        return fail(
            errno != 0 ? errno : EIO, QStringLiteral("Kopiota ei voitu nimetä nimelle %1.").arg(m_target));
    m_staged.clear();
    return true;
}

void VerifiedCopy::removeLeftovers(const QString& folder, const QString& fileName)
{
    const QString prefix = u'.' + fileName + LeftoverMark;
    const QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System))
        if (name.startsWith(prefix) && name.size() == prefix.size() + 6)
            QFile::remove(dir.filePath(name));
}
