#pragma once

#include "devservice/DevService.h"
#include "devservice/Envelope.h"

#include <mutex>

namespace devservice {

/// What a definitions push brought.
struct DefinitionsPush {
    QString token;
    /// Names of the parts without and with a file name, in order.
    QStringList fields;
    QStringList files;
    QByteArray version;
    QString fileName;
    qint64 size = 0;
    QByteArray sha256;
};

/// The rules of the service: checks requests, changes the farm and words the answers. Any thread.
class Contract
{
public:
    explicit Contract(Farm farm);

    Farm farm() const;
    void setFarm(const Farm& farm);

    /// True for the paths that a JSON request may be posted to, and for the definitions push.
    static bool knows(const QString& path);
    /// Answers a JSON request.
    Answer answer(const QString& path, const QByteArray& contentType, const QByteArray& body);
    Answer answer(const DefinitionsPush& push);

private:
    struct Operation;
    static const QVector<Operation>& operations();

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

    void requireUser(const QString& token, bool administrator) const;
    int deviceIndex(const QJsonValue& androidId) const;
    int deviceInfoIndex(const QJsonObject& body) const;
    void setDevice(int index, const QString& key, const QJsonValue& value);
    void setOnClones(const QJsonObject& body, const QString& key, const QJsonValue& value);
    QVector<int> cloneIndexes(const QJsonObject& body) const;

    mutable std::mutex m_mutex;
    Farm m_farm;
    /// The whole lists as answers; an empty body when the list has changed since.
    Answer m_deviceList;
    Answer m_cloneList;
    int m_nextCloneNumber = 0;
};

} // namespace devservice
