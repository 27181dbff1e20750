#include "devservice/DevService.h"

#include "devservice/Contract.h"
#include "devservice/SampleFarm.h"
#include "devservice/TlsServer.h"
#include "devservice/Transfers.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <thread>

namespace devservice {
namespace {

const QString pushPath = QStringLiteral("/api/v1/definitions/push");

/// The answer of a fault that does not carry the request out.
Answer faultyAnswer(Fault fault)
{
    Answer answer;
    switch (fault) {
    case Fault::NotJson:
        answer.body = "the farm is out for lunch";
        break;
    case Fault::WrongShape:
        answer = done(QStringLiteral("a text where nobody expects one"));
        break;
    case Fault::HttpError:
        answer.status = 500;
        answer.type = "text/html";
        answer.body = "<html><body><h1>Internal Server Error</h1></body></html>";
        break;
    case Fault::Refuse:
        answer = refused(403, QStringLiteral("refused"));
        break;
    default:
        break;
    }
    return answer;
}

} // namespace

class DevService::Impl
{
public:
    explicit Impl(Options givenOptions)
        : options(std::move(givenOptions)),
          version(options.packageVersion > 0 ? options.packageVersion : VELSTRAND_BUILD_NUMBER),
          packagePath(QStringLiteral("/packages/velstrand_%1.zip").arg(version)),
          contract(makeSampleFarm(options.devices, options.clones, version, packagePath)),
          latencyMs(options.latencyMs)
    {
    }

    ~Impl() { stop(); }

    bool start();
    void stop();
    void route();
    template <typename Perform>
    void serve(const httplib::Request& request, httplib::Response& response, Perform perform);
    void send(const Answer& answer, bool cut, bool acceptsGzip, httplib::Response& response) const;
    Answer downloadOrRefusal(const httplib::Request& request) const;
    QString origin() const { return QStringLiteral("https://localhost:%1").arg(port); }
    Fault faultOf(const QString& path) const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return faults.value(path, Fault::None);
    }

    const Options options;
    const int version;
    const QString packagePath;
    Contract contract;
    std::atomic<int> latencyMs;
    /// Guards the three below: connections write and read them, tests read and write them.
    mutable std::mutex mutex;
    QVector<Request> requests;
    QHash<QString, Fault> faults;
    QHash<QString, Answer> replies;
    QTemporaryDir folder;
    QString caFile;
    QString errorText;
    int port = 0;
    std::unique_ptr<TlsServer> server;
    std::thread listener;
};

bool DevService::Impl::start()
{
    if (!options.packageFile.isEmpty() && !QFile(options.packageFile).open(QIODevice::ReadOnly)) {
        errorText = QStringLiteral("cannot read the package ") + options.packageFile;
        return false;
    }
    const Certificate certificate = makeCertificate();
    QFile pem(folder.filePath(QStringLiteral("ca.pem")));
    if (!certificate.isValid() || !folder.isValid() || !pem.open(QIODevice::WriteOnly) ||
        pem.write(certificate.authorityPem) != certificate.authorityPem.size() || !pem.flush()) {
        errorText = QStringLiteral("cannot make the certificate in ") + folder.path();
        return false;
    }
    caFile = pem.fileName();
    server = std::make_unique<TlsServer>(certificate);
    port = server->is_valid() ? server->bindLoopback(options.port) : -1;
    if (port <= 0) {
        errorText = QStringLiteral("cannot listen on port %1").arg(options.port);
        return false;
    }
    server->setHandshakeLatency(latencyMs);

    Farm farm = contract.farm();
    QJsonValueRef path = farm.globalConfig[QStringLiteral("velstrand_manager_app_path")];
    if (path.toString() == packagePath) {
        path = QString(origin() + packagePath);
        contract.setFarm(farm);
    }

    route();
    listener = std::thread([this] { server->listen_after_bind(); });
    // The library cannot be stopped before it runs.
    while (!server->is_running()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

void DevService::Impl::stop()
{
    if (listener.joinable()) {
        server->stopNow();
        listener.join();
    }
}

void DevService::Impl::route()
{
    server->Post(pushPath.toStdString(), [this](const httplib::Request& request, httplib::Response& response,
                                                const httplib::ContentReader& reader) {
        DefinitionsPush push;
        const bool isForm = readPush(request, reader, &push);
        serve(request, response, [&] {
            return isForm ? contract.answer(push)
                          : refused(400, QStringLiteral("the body must be a whole form"));
        });
    });
    server->Post("/.*", [this](const httplib::Request& request, httplib::Response& response) {
        serve(request, response, [&] {
            return contract.answer(QString::fromStdString(request.path),
                                   QByteArray::fromStdString(request.get_header_value("Content-Type")),
                                   QByteArray::fromStdString(request.body));
        });
    });
    const auto other = [this](const httplib::Request& request, httplib::Response& response) {
        serve(request, response, [&] { return downloadOrRefusal(request); });
    };
    server->Get("/.*", other).Put("/.*", other).Patch("/.*", other).Delete("/.*", other);
    server->set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.body.empty() && !response.content_provider_) {
            const QByteArray body =
                refused(response.status, QStringLiteral("the request cannot be read")).body;
            response.set_content(body.toStdString(), "application/json");
        }
    });
}

Answer DevService::Impl::downloadOrRefusal(const httplib::Request& request) const
{
    const QString path = QString::fromStdString(request.path);
    if (Contract::knows(path)) {
        return refused(405, QStringLiteral("the method must be POST"));
    }
    if (request.method != "GET" || path != packagePath || options.packageFile.isEmpty()) {
        return refused(404, QStringLiteral("unknown path: ") + path);
    }
    Answer answer;
    answer.type = "application/zip";
    answer.file = options.packageFile;
    return answer;
}

/// Keeps the request, has it performed and answers it, or does what the fault of its path demands.
template <typename Perform>
void DevService::Impl::serve(const httplib::Request& request, httplib::Response& response, Perform perform)
{
    Connection& connection = *Connection::current();
    Request kept;
    kept.method = QString::fromStdString(request.method);
    kept.path = QString::fromStdString(request.path);
    kept.body = QByteArray::fromStdString(request.body);
    kept.remotePort = request.remote_port;
    bool acceptsGzip = false;
    const QByteArrayList head = connection.headLines();
    for (int i = 1; i < head.size(); ++i) {
        const QString line = QString::fromUtf8(head.at(i));
        const QString name = line.section(':', 0, 0);
        const QString value = line.section(':', 1).trimmed();
        kept.headerLines.append(line);
        kept.headers.insert(name, value);
        acceptsGzip |= name.compare(QLatin1String("Accept-Encoding"), Qt::CaseInsensitive) == 0 &&
                       value.contains(QLatin1String("gzip"));
    }
    Fault fault = Fault::None;
    bool prepared = false;
    Answer answer;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        fault = faults.value(kept.path, Fault::None);
        prepared = replies.contains(kept.path);
        answer = replies.value(kept.path);
        requests.append(kept);
    }

    if (fault == Fault::Hang) {
        while (faultOf(kept.path) == Fault::Hang && connection.pause(20)) {
        }
        connection.drop();
        return;
    }
    const bool performs = fault == Fault::None || fault == Fault::Cut || fault == Fault::DropAfterwards;
    if (!performs) {
        answer = faultyAnswer(fault);
    } else if (!prepared) {
        answer = perform();
    }
    connection.pause(latencyMs);
    if (fault == Fault::DropAfterwards) {
        connection.drop();
        return;
    }
    send(answer, fault == Fault::Cut, acceptsGzip, response);
}

/// Puts the answer into @p response; with @p cut in such a way that only its first half is sent.
void DevService::Impl::send(const Answer& answer, bool cut, bool acceptsGzip,
                            httplib::Response& response) const
{
    response.status = answer.status;
    const std::string type = answer.type.toStdString();
    if (!answer.file.isEmpty()) {
        const qint64 size = QFile(answer.file).size();
        response.set_content_provider(
            static_cast<size_t>(size), type,
            fileProvider(answer.file, cut ? size / 2 : size, options.packageBytesPerSecond));
        return;
    }
    const bool packed = acceptsGzip && !answer.gzip.isEmpty();
    const QByteArray body = packed ? answer.gzip : answer.body;
    if (packed) {
        response.set_header("Content-Encoding", "gzip");
    }
    if (cut) {
        response.set_content_provider(static_cast<size_t>(body.size()), type,
                                      [body](size_t, size_t, httplib::DataSink& sink) {
                                          sink.write(body.constData(), static_cast<size_t>(body.size() / 2));
                                          return false;
                                      });
    } else {
        response.set_content(body.constData(), static_cast<size_t>(body.size()), type);
    }
}

DevService::DevService(Options options) : d(std::make_unique<Impl>(std::move(options))) {}

DevService::~DevService() = default;

bool DevService::start()
{
    return d->start();
}

QString DevService::errorText() const
{
    return d->errorText;
}

QString DevService::origin() const
{
    return d->origin();
}

int DevService::port() const
{
    return d->port;
}

QString DevService::caFile() const
{
    return d->caFile;
}

QString DevService::adminToken() const
{
    return sampleAdminToken;
}

QString DevService::userToken() const
{
    return sampleUserToken;
}

Farm DevService::farm() const
{
    return d->contract.farm();
}

void DevService::setFarm(const Farm& farm)
{
    d->contract.setFarm(farm);
}

void DevService::setFault(const QString& path, Fault fault)
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->faults.insert(path, fault);
}

void DevService::setReply(const QString& path, int status, const QByteArray& json)
{
    Answer answer;
    answer.status = status;
    answer.body = json;
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->replies.insert(path, answer);
}

void DevService::clearFaults()
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->faults.clear();
    d->replies.clear();
}

void DevService::setLatency(int ms)
{
    d->latencyMs = ms;
    if (d->server) {
        d->server->setHandshakeLatency(ms);
    }
}

QVector<Request> DevService::requests() const
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    return d->requests;
}

QVector<Request> DevService::requests(const QString& path) const
{
    QVector<Request> result = requests();
    result.erase(std::remove_if(result.begin(), result.end(),
                                [&path](const Request& request) { return request.path != path; }),
                 result.end());
    return result;
}

void DevService::clearRequests()
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->requests.clear();
}

int DevService::connections() const
{
    return d->server ? d->server->connections() : 0;
}

} // namespace devservice
