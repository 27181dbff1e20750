#pragma once

#include "devservice/DefinitionsPush.h"
#include "devservice/Envelope.h"

#include <QHash>
#include <QJsonArray>
#include <QVector>

#include <mutex>

namespace devservice {

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

/// The rules of the service: checks requests, changes the farm and words the answers. Any thread.
class Contract
{
public:
    Farm farm() const;
    void setFarm(const Farm& farm);

    /// Answers a request for @p path that is no definitions push; throws a Refusal.
    Answer answer(const QString& method, const QString& path, const QString& contentType,
                  const QByteArray& body);
    /// The same for a definitions push.
    Answer answer(const DefinitionsPush& push);

private:
    enum Who { Anybody, User, Administrator };
    struct Operation;
    static const Operation operations[];

    Answer getUserInfo(const QJsonObject& body);
    Answer getGlobalConfig(const QJsonObject& body);
    Answer updateGlobalConfig(const QJsonObject& body);
    Answer deviceList(const QJsonObject& body);
    Answer confirmDevice(const QJsonObject& body);
    Answer deleteDevice(const QJsonObject& body);
    Answer saveDeviceConfig(const QJsonObject& body);
    Answer cloneList(const QJsonObject& body);
    Answer addClones(const QJsonObject& body);
    Answer resetClones(const QJsonObject& body);
    Answer deleteClones(const QJsonObject& body);
    Answer updateCloneProfile(const QJsonObject& body);
    Answer getReports(const QJsonObject& body);
    Answer upsertFarmProfile(const QJsonObject& body);
    Answer getDefinitions(const QJsonObject& body);

    void requireUser(const QString& token, Who who) const;
    int deviceIndex(const QJsonValue& androidId) const;
    void setDevice(const QJsonValue& androidId, const QString& key, const QJsonValue& value);
    void setOnClones(const QJsonObject& body, const QString& key, const QJsonValue& value);
    QVector<int> cloneIndexes(const QJsonObject& body) const;

    mutable std::mutex m_mutex;
    Farm m_farm;
    /// The whole lists as answers; an empty body when the list has changed since.
    Answer m_deviceList;
    Answer m_cloneList;
};

} // namespace devservice
