#include "devservice/DevService.h"

#include "devservice/Certificate.h"
#include "devservice/Checks.h"

#include <QFile>

#include <algorithm>
#include <exception>

namespace devservice {

DevService::DevService(Options options)
    : m_options(std::move(options)),
      m_version(m_options.packageVersion > 0 ? m_options.packageVersion : VELSTRAND_BUILD_NUMBER),
      m_packagePath(QStringLiteral("/packages/velstrand_%1.zip").arg(m_version))
{
    setLatency(m_options.latencyMs);
}

bool DevService::start()
{
    if (!m_options.packageFile.isEmpty() && !QFile(m_options.packageFile).open(QIODevice::ReadOnly)) {
        m_errorText = "cannot read the package " + m_options.packageFile;
        return false;
    }
    const Certificate certificate = makeCertificate();
    QFile pem(caFile());
    if (!certificate.isValid() || !m_folder.isValid() || !pem.open(QIODevice::WriteOnly) ||
        pem.write(certificate.authorityPem) != certificate.authorityPem.size() || !pem.flush()) {
        m_errorText = "cannot make the certificate in " + m_folder.path();
        return false;
    }
    try {
        m_port = m_server.listen(certificate, m_options.port);
    } catch (const std::exception&) {
        m_errorText = QStringLiteral("cannot listen on port %1").arg(m_options.port);
        return false;
    }
    setFarm(makeSampleFarm(m_options.devices, m_options.clones, m_version, origin() + m_packagePath));
    m_server.start([this](Exchange& exchange) { return serve(exchange); });
    return true;
}

/// Reads and keeps the request, carries it out and answers it, or does what the fault of its path demands.
bool DevService::serve(Exchange& exchange)
{
    Request& request = exchange.request;
    const bool isPush = request.method == "POST" && request.path == definitionsPushPath;
    DefinitionsPush push;
    if (isPush) {
        push = readPush(exchange);
    } else {
        request.body = exchange.readAll();
    }
    const Behaviour behaviour = behaviourFor(request.path);
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_requests.append(request);
    }
    const auto perform = [&] {
        if (behaviour.reply) {
            return *behaviour.reply;
        }
        try {
            return isPush ? m_contract.answer(push) : answerOf(exchange);
        } catch (const Refusal& refusal) {
            return refused(refusal.status, refusal.message);
        }
    };
    switch (behaviour.fault) {
    case Fault::None:
        return exchange.send(perform(), Exchange::Whole);
    case Fault::Cut:
        return exchange.send(perform(), Exchange::FirstHalf);
    case Fault::NotJson:
        return exchange.send({200, "application/json", "the farm is out for lunch"}, Exchange::Whole);
    case Fault::WrongShape:
        return exchange.send(done("a text where nobody expects one"), Exchange::Whole);
    case Fault::NoBody:
        return exchange.send({}, Exchange::Whole);
    case Fault::HttpError:
        return exchange.send({500, "text/html", "<html><body><h1>Internal Server Error</h1></body></html>"},
                             Exchange::Whole);
    case Fault::Refuse:
        return exchange.send(refused(403, "refused"), Exchange::Whole);
    case Fault::DropAfterwards:
        return exchange.send(perform(), Exchange::Nothing);
    case Fault::Hang:
        break;
    }
    while (behaviourFor(request.path).fault == Fault::Hang) {
        exchange.wait(20);
    }
    return false;
}

/// Carries out a request that is no definitions push.
Answer DevService::answerOf(const Exchange& exchange)
{
    const Request& request = exchange.request;
    const bool isDownload = request.method == "GET" && request.path == m_packagePath;
    QFile file(m_options.packageFile);
    if (!isDownload || m_options.packageFile.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return m_contract.answer(request.method, request.path, exchange.header("Content-Type"), request.body);
    }
    Answer answer;
    answer.type = "application/zip";
    answer.body = file.readAll();
    answer.bytesPerSecond = m_options.packageBytesPerSecond;
    return answer;
}

void DevService::setFault(const QString& path, Fault fault)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_behaviours[path].fault = fault;
}

void DevService::setReply(const QString& path, int status, const QByteArray& json)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_behaviours[path].reply = {status, "application/json", json};
}

void DevService::clearFaults()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_behaviours.clear();
}

DevService::Behaviour DevService::behaviourFor(const QString& path) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_behaviours.value(path);
}

QVector<Request> DevService::requests() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
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
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_requests.clear();
}

} // namespace devservice
