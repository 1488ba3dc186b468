#include "service/ServiceMailer.h"

#include "service/ServiceMail.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <curl/curl.h>
#include <functional>
#include <mutex>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr qint64 ChunkBytes = 57 * 1024; // whole base64 lines

// The message as the server receives it: the head, the attachment in base64 lines, the tail.
struct Reader {
    QByteArray head;
    QByteArray tail;
    QFile file;
    qint64 fileSize = 0;
    qint64 fileSent = 0;
    int phase = 0; // 0 head, 1 attachment, 2 tail, 3 done
    QByteArray pending;
    qsizetype pendingAt = 0;
    bool readFailed = false;
    // Told of the attachment's bytes read so far, at most every half per cent and at its end.
    std::function<void(qint64 sent, qint64 total)> progress;
    qint64 reported = -1;

    void report()
    {
        if (fileSent != reported && (fileSent == fileSize || fileSent - reported >= fileSize / 200 + 1)) {
            reported = fileSent;
            progress(fileSent, fileSize);
        }
    }

    // Fills `pending` with the next piece; false at the end or on a read failure.
    bool refill()
    {
        pending.clear();
        pendingAt = 0;
        while (pending.isEmpty()) {
            switch (phase) {
            case 0:
                pending = head;
                phase = 1;
                break;
            case 1: {
                if (fileSent >= fileSize) {
                    report();
                    phase = 2;
                    break;
                }
                const QByteArray chunk = file.read(std::min(ChunkBytes, fileSize - fileSent));
                if (chunk.isEmpty()) {
                    readFailed = true;
                    return false;
                }
                fileSent += chunk.size();
                pending = ServiceMail::encodeLines(chunk);
                report();
                break;
            }
            case 2:
                pending = tail;
                phase = 3;
                break;
            default:
                return false;
            }
        }
        return true;
    }
};

QString adviceFor(CURLcode code, long response, const ServiceMail::Server& server, int timeout)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return QStringLiteral("Palvelinta %1 ei löydy. Tarkista SMTP palvelimen nimi asetuksista.")
            .arg(server.host);
    case CURLE_COULDNT_CONNECT:
        return QStringLiteral("Palvelimeen %1 (portti %2) ei saatu yhteyttä.")
            .arg(server.host)
            .arg(server.port);
    case CURLE_OPERATION_TIMEDOUT:
        return QStringLiteral("Palvelin ei vastannut %1 sekunnissa.").arg(timeout);
    case CURLE_LOGIN_DENIED:
        return QStringLiteral("Palvelin ei hyväksynyt käyttäjätunnusta tai salasanaa.");
    case CURLE_USE_SSL_FAILED:
        return QStringLiteral("Palvelin ei tarjoa salattua yhteyttä: salasanaa ei lähetetä salaamatta.");
    default:
        break;
    }
    if (response == 530)
        return QStringLiteral("Palvelin vaatii käyttäjätunnuksen ja salasanan.");
    if (response == 552)
        return QStringLiteral("Liite on palvelimelle liian suuri.");
    if (response >= 550 && response <= 553)
        return QStringLiteral("Palvelin ei hyväksynyt osoitetta.");
    return QString();
}

} // namespace

struct ServiceMailer::Job {
    Request request;
    std::atomic<bool> cancelled { false };
    CURLM* multi = nullptr;
    Reader reader;
    int timeout = 30;
    // The connection's socket while it is open, so that a cancel can cut it: the mail library
    // waits for the server's last answer without looking at the stop request in time.
    std::mutex socketLock;
    curl_socket_t socket = CURL_SOCKET_BAD;
};

ServiceMailer::ServiceMailer(QObject* parent)
    : QObject(parent)
{
}

ServiceMailer::~ServiceMailer() { cancel(); }

void ServiceMailer::send(const Request& request)
{
    if (busy())
        return;
    static std::once_flag global;
    std::call_once(global, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    m_failure = Failure();
    m_job = std::make_shared<Job>();
    m_job->request = request;
    m_job->timeout = m_timeout;
    m_job->multi = curl_multi_init();
    const quint64 generation = ++m_generation;
    m_worker = std::thread([this, job = m_job, generation] { run(job, generation); });
}

void ServiceMailer::cancel()
{
    if (!busy())
        return;
    ++m_generation;
    m_job->cancelled = true;
    {
        const std::lock_guard lock(m_job->socketLock);
        if (m_job->socket != CURL_SOCKET_BAD)
            ::shutdown(m_job->socket, SHUT_RDWR);
    }
    curl_multi_wakeup(m_job->multi);
    m_worker.join();
    curl_multi_cleanup(m_job->multi);
    m_job.reset();
}

void ServiceMailer::finish(quint64 generation)
{
    if (generation != m_generation || !busy())
        return;
    m_worker.join();
    curl_multi_cleanup(m_job->multi);
    m_job.reset();
}

void ServiceMailer::run(std::shared_ptr<Job> job, quint64 generation)
{
    const Request& r = job->request;
    auto fail = [&](const QString& reason, const QString& advice, bool loginNeeded) {
        QMetaObject::invokeMethod(
            this,
            [this, generation, failure = Failure { reason, advice, loginNeeded }] {
                if (generation != m_generation)
                    return;
                finish(generation);
                m_failure = failure;
                emit SendFailed(failure.reason);
            },
            Qt::QueuedConnection);
    };

    const std::optional<ServiceMail::Server> server = ServiceMail::parseServer(r.server);
    if (!server) {
        fail(QStringLiteral("Palvelimen nimi ei kelpaa: %1").arg(r.server), QString(), false);
        return;
    }
    Reader& reader = job->reader;
    reader.file.setFileName(r.attachment);
    if (!reader.file.open(QIODevice::ReadOnly)) {
        fail(reader.file.errorString(), QStringLiteral("Liitettä %1 ei voi lukea.").arg(r.attachment), false);
        return;
    }
    reader.fileSize = reader.file.size();
    const ServiceMail::Message message = ServiceMail::compose(r.sender, r.receiver, r.subject, r.text,
        QFileInfo(r.attachment).fileName(), QDateTime::currentDateTimeUtc());
    reader.head = message.head;
    reader.tail = message.tail;
    // Posted as each piece is read: the last piece may be followed at once by a long wait for the
    // server's answer inside the mail library.
    reader.progress = [this, generation](qint64 sent, qint64 total) {
        QMetaObject::invokeMethod(
            this,
            [this, generation, sent, total] {
                if (generation == m_generation && busy())
                    emit SendProgress(sent, total);
            },
            Qt::QueuedConnection);
    };

    CURL* curl = curl_easy_init();
    char errors[CURL_ERROR_SIZE] = {};
    const QByteArray url = server->url();
    const QByteArray from = '<' + r.sender.toUtf8() + '>';
    const QByteArray to = '<' + r.receiver.toUtf8() + '>';
    const QByteArray user = r.userName.toUtf8();
    const QByteArray password = r.password.toUtf8();
    curl_slist* recipients = curl_slist_append(nullptr, to.constData());

    curl_easy_setopt(curl, CURLOPT_URL, url.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_FROM, from.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_RCPT, recipients);
    curl_easy_setopt(curl, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(curl, CURLOPT_INFILESIZE_LARGE,
        curl_off_t(reader.head.size() + ServiceMail::encodedSize(reader.fileSize) + reader.tail.size()));
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errors);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    // A server that does not answer fails the send instead of holding it forever.
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, long(job->timeout));
    curl_easy_setopt(curl, CURLOPT_SERVER_RESPONSE_TIMEOUT, long(job->timeout));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, long(job->timeout));
    if (!user.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, password.constData());
    }
    // STARTTLS whenever the server offers it; a password goes to another machine only encrypted.
    if (!server->implicitTls())
        curl_easy_setopt(curl, CURLOPT_USE_SSL,
            long(!user.isEmpty() && !server->local() ? CURLUSESSL_ALL : CURLUSESSL_TRY));

    using ReadFunction = size_t (*)(char*, size_t, size_t, void*);
    const ReadFunction read = [](char* buffer, size_t size, size_t count, void* data) -> size_t {
        auto* state = static_cast<Job*>(data);
        if (state->cancelled)
            return CURL_READFUNC_ABORT;
        Reader& out = state->reader;
        size_t written = 0;
        const size_t room = size * count;
        while (written < room) {
            if (out.pendingAt >= out.pending.size() && !out.refill())
                break;
            const size_t n = std::min(room - written, size_t(out.pending.size() - out.pendingAt));
            memcpy(buffer + written, out.pending.constData() + out.pendingAt, n);
            out.pendingAt += qsizetype(n);
            written += n;
        }
        if (out.readFailed)
            return CURL_READFUNC_ABORT;
        return written;
    };
    curl_easy_setopt(curl, CURLOPT_READFUNCTION, read);
    curl_easy_setopt(curl, CURLOPT_READDATA, job.get());
    using ProgressFunction = int (*)(void*, curl_off_t, curl_off_t, curl_off_t, curl_off_t);
    const ProgressFunction progress = [](void* data, curl_off_t, curl_off_t, curl_off_t, curl_off_t) -> int {
        return static_cast<Job*>(data)->cancelled ? 1 : 0;
    };
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, progress);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, job.get());
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    using OpenFunction = curl_socket_t (*)(void*, curlsocktype, curl_sockaddr*);
    const OpenFunction open = [](void* data, curlsocktype, curl_sockaddr* address) -> curl_socket_t {
        auto* state = static_cast<Job*>(data);
        const std::lock_guard lock(state->socketLock);
        if (state->cancelled)
            return CURL_SOCKET_BAD;
        state->socket = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
        return state->socket;
    };
    curl_easy_setopt(curl, CURLOPT_OPENSOCKETFUNCTION, open);
    curl_easy_setopt(curl, CURLOPT_OPENSOCKETDATA, job.get());
    using CloseFunction = int (*)(void*, curl_socket_t);
    const CloseFunction close = [](void* data, curl_socket_t socket) -> int {
        auto* state = static_cast<Job*>(data);
        const std::lock_guard lock(state->socketLock);
        if (state->socket == socket)
            state->socket = CURL_SOCKET_BAD;
        return ::close(socket);
    };
    curl_easy_setopt(curl, CURLOPT_CLOSESOCKETFUNCTION, close);
    curl_easy_setopt(curl, CURLOPT_CLOSESOCKETDATA, job.get());

    curl_multi_add_handle(job->multi, curl);
    CURLcode result = CURLE_OK;
    bool done = false;
    while (!done && !job->cancelled) {
        int running = 0;
        if (curl_multi_perform(job->multi, &running) != CURLM_OK) {
            result = CURLE_FAILED_INIT;
            break;
        }
        int left = 0;
        while (CURLMsg* m = curl_multi_info_read(job->multi, &left)) {
            if (m->msg == CURLMSG_DONE) {
                result = m->data.result;
                done = true;
            }
        }
        if (!done && running == 0)
            done = true;
        if (!done)
            curl_multi_poll(job->multi, nullptr, 0, 1000, nullptr);
    }
    long response = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &response);
    curl_multi_remove_handle(job->multi, curl);
    curl_easy_cleanup(curl);
    curl_slist_free_all(recipients);
    const QString readError = reader.file.errorString();
    reader.file.close();

    if (job->cancelled)
        return;
    if (result == CURLE_OK) {
        QMetaObject::invokeMethod(
            this,
            [this, generation] {
                if (generation != m_generation)
                    return;
                finish(generation);
                emit SendCompletedSuccessfully();
            },
            Qt::QueuedConnection);
        return;
    }
    QString reason = QString::fromUtf8(errors).trimmed();
    if (reason.isEmpty())
        reason = QString::fromUtf8(curl_easy_strerror(result));
    if (reader.readFailed)
        reason = QStringLiteral("Liitteen %1 lukeminen keskeytyi: %2").arg(r.attachment, readError);
    fail(reason, adviceFor(result, response, *server, job->timeout),
        result == CURLE_LOGIN_DENIED || response == 530);
}
