#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>

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

/// One request as it arrived.
struct Request {
    QString method;
    QString path;
    /// Empty for a definitions push, whose content is summed up in the farm.
    QByteArray body;
    /// Values by name, in the spelling of the wire.
    QHash<QString, QString> headers;
    /// The same as they came over the wire, in order, one "Name: value" a line.
    QStringList headerLines;
    /// Port of the client's end: the same port means the same connection.
    int remotePort = 0;
};

/// The whole state of the farm, as the service keeps it. Records have the members of the wire form.
struct Farm {
    QJsonArray devices;
    QJsonArray clones;
    QJsonObject globalConfig;
    /// The answer to get-info, by token.
    QHash<QString, QJsonObject> users;
    /// Reports by date, "yyyy-M-d".
    QJsonObject reports;
    /// What the last definitions push brought.
    int definitionsVersion = 0;
    QString definitionsFileName;
    qint64 definitionsSize = 0;
    QByteArray definitionsSha256;
    /// The archive that the definitions fetch answers; the service makes one at start.
    QByteArray definitionsArchive;
};

class DevService
{
public:
    explicit DevService(Options options = {});
    /// Stops the server and waits for its threads.
    ~DevService();

    /// Listens; false with errorText() set when it cannot.
    bool start();
    QString errorText() const;

    /// "https://localhost:PORT"
    QString origin() const;
    int port() const;
    /// PEM file with the certificate that clients must trust; removed with the service.
    QString caFile() const;
    QString adminToken() const;
    QString userToken() const;

    /// A copy of the farm as it stands. Any thread.
    Farm farm() const;
    /// Replaces the farm. Any thread.
    void setFarm(const Farm& farm);
    /// Sets what goes wrong for @p path ("/api/v1/..."). Any thread.
    void setFault(const QString& path, Fault fault);
    /// Answers requests to @p path with just this, unless a fault is set for it. Any thread.
    void setReply(const QString& path, int status, const QByteArray& json);
    /// Back to answering everything as the contract says.
    void clearFaults();
    void setLatency(int ms);
    /// Every request since the start or since clearRequests(), in order of arrival.
    QVector<Request> requests() const;
    /// The same, of one path.
    QVector<Request> requests(const QString& path) const;
    void clearRequests();
    /// Connections accepted since the start.
    int connections() const;

private:
    class Impl;
    std::unique_ptr<Impl> d;
};

} // namespace devservice
