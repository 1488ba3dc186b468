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

// The attachment as the mail library reads it for its base64 part, counting what went out.
struct Attachment {
    QFile file;
    qint64 size = 0;
    qint64 sent = 0;
    bool readFailed = false;
    // Told of the bytes read so far, at most every half per cent and at the end.
    std::function<void(qint64 sent, qint64 total)> progress;
    qint64 reported = -1;

    void report()
    {
        if (sent != reported && (sent == size || sent - reported >= size / 200 + 1)) {
            reported = sent;
            progress(sent, size);
        }
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
        return QStringLiteral(
            "Palvelin ilmoitti, että käyttäjätunnus tai salasana on väärä. Tarkista ne ja lähetä uudelleen.");
    case CURLE_PEER_FAILED_VERIFICATION:
        return QStringLiteral(
            "Palvelimen %1 varmennetta ei voitu todentaa, joten yhteys ei ole luotettava. Tarkista SMTP "
            "palvelimen nimi asetuksista.")
            .arg(server.host);
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
    Attachment attachment;
    int timeout = 30;
    QByteArray caFile;
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
    m_job->caFile = QFile::encodeName(m_caFile);
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
    Attachment& attachment = job->attachment;
    attachment.file.setFileName(r.attachment);
    if (!attachment.file.open(QIODevice::ReadOnly)) {
        fail(attachment.file.errorString(), QStringLiteral("Liitettä %1 ei voi lukea.").arg(r.attachment),
            false);
        return;
    }
    attachment.size = attachment.file.size();
    // Posted as each piece is read: the last piece may be followed at once by a long wait for the
    // server's answer inside the mail library.
    attachment.progress = [this, generation](qint64 sent, qint64 total) {
        QMetaObject::invokeMethod(
            this,
            [this, generation, sent, total] {
                if (generation == m_generation && busy())
                    emit SendProgress(sent, total);
            },
            Qt::QueuedConnection);
    };
    // The library never asks for the bytes of an empty file: all of it has gone out.
    if (attachment.size == 0)
        attachment.report();

    CURL* curl = curl_easy_init();
    char errors[CURL_ERROR_SIZE] = {};
    const QByteArray url = server->url();
    const QByteArray from = '<' + r.sender.toUtf8() + '>';
    const QByteArray to = '<' + r.receiver.toUtf8() + '>';
    const QByteArray user = r.userName.toUtf8();
    const QByteArray password = r.password.toUtf8();
    curl_slist* recipients = curl_slist_append(nullptr, to.constData());
    curl_slist* headers = nullptr;
    for (const QByteArray& header :
        ServiceMail::headers(r.sender, r.receiver, r.subject, QDateTime::currentDateTimeUtc()))
        headers = curl_slist_append(headers, header.constData());

    // The message: the text, then the books as an attachment read piece by piece; the mail
    // library writes the multipart form and the base64 lines.
    curl_mime* mime = curl_mime_init(curl);
    curl_mimepart* text = curl_mime_addpart(mime);
    const QByteArray body = ServiceMail::textPart(r.text);
    curl_mime_data(text, body.constData(), size_t(body.size()));
    curl_mime_type(text, "text/plain; charset=UTF-8");
    curl_mime_encoder(text, "base64");
    using ReadFunction = size_t (*)(char*, size_t, size_t, void*);
    const ReadFunction read = [](char* buffer, size_t size, size_t count, void* data) -> size_t {
        auto* state = static_cast<Job*>(data);
        if (state->cancelled)
            return CURL_READFUNC_ABORT;
        Attachment& a = state->attachment;
        if (a.sent >= a.size) {
            a.report();
            return 0;
        }
        const qint64 n = a.file.read(buffer, std::min<qint64>(qint64(size * count), a.size - a.sent));
        if (n <= 0) {
            a.readFailed = true;
            return CURL_READFUNC_ABORT;
        }
        a.sent += n;
        a.report();
        return size_t(n);
    };
    using SeekFunction = int (*)(void*, curl_off_t, int);
    const SeekFunction seek = [](void* data, curl_off_t offset, int origin) -> int {
        Attachment& a = static_cast<Job*>(data)->attachment;
        if (origin != SEEK_SET || !a.file.seek(offset))
            return CURL_SEEKFUNC_CANTSEEK;
        a.sent = offset;
        return CURL_SEEKFUNC_OK;
    };
    curl_mimepart* part = curl_mime_addpart(mime);
    curl_mime_data_cb(part, curl_off_t(attachment.size), read, seek, nullptr, job.get());
    curl_mime_type(part, "application/octet-stream");
    curl_mime_encoder(part, "base64");
    const QByteArray disposition = ServiceMail::attachmentDisposition(QFileInfo(r.attachment).fileName());
    curl_mime_headers(part, curl_slist_append(nullptr, disposition.constData()), 1);

    curl_easy_setopt(curl, CURLOPT_URL, url.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_FROM, from.constData());
    curl_easy_setopt(curl, CURLOPT_MAIL_RCPT, recipients);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(curl, CURLOPT_MIMEPOST, mime);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errors);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    // A server that does not answer fails the send instead of holding it forever.
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, long(job->timeout));
    curl_easy_setopt(curl, CURLOPT_SERVER_RESPONSE_TIMEOUT, long(job->timeout));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, long(job->timeout));
    if (!job->caFile.isEmpty())
        curl_easy_setopt(curl, CURLOPT_CAINFO, job->caFile.constData());
    if (!user.isEmpty()) {
        curl_easy_setopt(curl, CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl, CURLOPT_PASSWORD, password.constData());
    }
    // STARTTLS whenever the server offers it; a password goes to another machine only encrypted.
    if (!server->implicitTls())
        curl_easy_setopt(curl, CURLOPT_USE_SSL,
            long(!user.isEmpty() && !server->local() ? CURLUSESSL_ALL : CURLUSESSL_TRY));

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
    curl_mime_free(mime);
    curl_slist_free_all(headers);
    curl_slist_free_all(recipients);
    const QString readError = attachment.file.errorString();
    attachment.file.close();

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
    if (attachment.readFailed)
        reason = QStringLiteral("Liitteen %1 lukeminen keskeytyi: %2").arg(r.attachment, readError);
    fail(reason, adviceFor(result, response, *server, job->timeout),
        result == CURLE_LOGIN_DENIED || response == 530);
}
