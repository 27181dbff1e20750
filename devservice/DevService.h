#pragma once

#include "devservice/Contract.h"
#include "devservice/HttpsServer.h"
#include "devservice/SampleFarm.h"

#include <QTemporaryDir>

#include <optional>

/// A stand-in for the remote service: a real HTTPS server on the loopback address that speaks the whole
/// contract over a farm held in memory. For trying the program, for its tests and for its benchmarks.
namespace devservice {

struct Options {
    int devices = 40;
    int clones = 1500;
    /// The round trip to the service in milliseconds: added to every answer, and twice (TCP and TLS) to the
    /// opening of a connection.
    int latencyMs = 0;
    /// 0 takes a free port.
    int port = 0;
    /// An update package that is offered for download, and the build number it is offered as; the manager
    /// version of the configuration is packageVersion then, otherwise the build number of this source.
    QString packageFile;
    int packageVersion = 0;
    /// Rate of package downloads in bytes a second; 0 for no limit.
    int packageBytesPerSecond = 0;
};

/// What the service does wrong for one path, until told otherwise.
enum class Fault {
    None,
    /// Accepts the request and does not answer; breaks off when the fault is lifted.
    Hang,
    /// Announces more bytes than it sends, then closes the connection.
    Cut,
    /// Status 200 and a body that is no JSON.
    NotJson,
    /// Status 200 and {"success": true} with data of a shape that no operation takes.
    WrongShape,
    /// Status 200 and no body.
    NoBody,
    /// Status 500 and an HTML page.
    HttpError,
    /// Status 403 and an envelope that says no.
    Refuse,
    /// Carries the request out, then closes the connection without an answer.
    DropAfterwards,
};

class DevService
{
public:
    explicit DevService(Options options = {});

    /// Makes the sample farm and listens; false with errorText() set when it cannot. Destruction stops the
    /// server and waits for its threads.
    bool start();
    QString errorText() const { return m_errorText; }

    /// "https://localhost:PORT"
    QString origin() const { return QStringLiteral("https://localhost:%1").arg(m_port); }
    int port() const { return m_port; }
    /// PEM file with the certificate that clients must trust; removed with the service.
    QString caFile() const { return m_folder.filePath("ca.pem"); }
    QString adminToken() const { return sampleAdminToken; }
    QString userToken() const { return sampleUserToken; }

    /// A copy of the farm as it stands. Any thread.
    Farm farm() const { return m_contract.farm(); }
    /// Replaces the farm. Any thread.
    void setFarm(const Farm& farm) { m_contract.setFarm(farm); }
    /// Sets what goes wrong for @p path ("/api/v1/..."). Any thread.
    void setFault(const QString& path, Fault fault);
    /// Answers requests to @p path with just this, unless a fault is set for it. Any thread.
    void setReply(const QString& path, int status, const QByteArray& json);
    /// Back to answering everything as the contract says.
    void clearFaults();
    void setLatency(int ms) { m_server.setLatency(ms); }
    /// Every request since the start or since clearRequests(), in order of arrival.
    QVector<Request> requests() const;
    /// The same, of one path.
    QVector<Request> requests(const QString& path) const;
    void clearRequests();
    /// Connections accepted since the start.
    int connections() const { return m_server.connections(); }

private:
    /// What the service does for one path.
    struct Behaviour {
        Fault fault = Fault::None;
        std::optional<Answer> reply;
    };

    bool serve(Exchange& exchange);
    Answer answerOf(const Exchange& exchange);
    Behaviour behaviourFor(const QString& path) const;

    const Options m_options;
    const int m_version;
    const QString m_packagePath;
    QTemporaryDir m_folder;
    QString m_errorText;
    int m_port = 0;
    Contract m_contract;
    mutable std::mutex m_mutex;
    /// Both guarded by the mutex: connections write and read them, tests read and write them.
    QVector<Request> m_requests;
    QHash<QString, Behaviour> m_behaviours;
    /// Last, so that its threads have ended before anything that they use goes.
    HttpsServer m_server;
};

} // namespace devservice
