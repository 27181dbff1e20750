#pragma once

#include "api/APIBase.h"

#include <QJsonArray>
#include <QStringList>

/// The service's operations. Each blocks until it is answered and returns whether the service carried it out;
/// out arguments are written on success only. Nothing throws. Every request carries the user's token. Any
/// thread.
class VelstrandAPI : public APIBase
{
    Q_OBJECT

public:
    /// Reads the origin and the trust anchors from VELSTRAND_SERVICE_URL and VELSTRAND_CA_FILE in the
    /// environment; the defaults are the origin that was compiled in and the system's store.
    explicit VelstrandAPI(QObject* parent = nullptr);

    /// @p configJson becomes the configuration as compact JSON text. A success with data of another shape is
    /// written too, but the result is false.
    bool getGlobalConfig(const QString& token, QString* configJson) const;
    /// The two lists are handed out unread: true means that there is an answer, whatever it says.
    bool getDeviceList(const QString& token, RawAnswer* answer) const;
    bool confirmDevice(const QString& token, const QString& androidId) const;
    bool deleteDevice(const QString& token, const QString& androidId) const;
    bool saveDeviceConfig(const QString& token, const QString& androidId,
                          const QJsonObject& deviceConfig) const;
    bool getUserInfo(const QString& token, QJsonObject* userInfo) const;
    /// @p androidId limits the list to one device; empty for all.
    bool getCloneList(const QString& token, const QString& androidId, RawAnswer* answer) const;
    bool addClones(const QString& token, const QString& network, const QJsonArray& clones) const;
    bool updateGlobalConfig(const QString& token, const QJsonObject& globalConfig) const;
    bool getReports(const QString& token, const QJsonArray& dateList, QJsonObject* reports) const;
    bool upsertFarmProfile(const QString& token, const QJsonObject& farmProfile) const;
    bool resetLiveClones(const QString& token, const QStringList& cloneIds) const;
    bool deleteClones(const QString& token, const QStringList& cloneIds) const;
    bool updateCloneFarmProfile(const QString& token, const QStringList& cloneIds,
                                const QString& farmProfile) const;

    /// Uploads the file at @p filePath as version @p version of the definitions. @p errorText, if given, is
    /// set when the file cannot be read or the upload is not answered.
    bool pushDefinition(const QString& token, int version, const QString& filePath,
                        QString* errorText = nullptr) const;
    /// Fetches version @p version of the definitions and writes the text of the archive's first entry to the
    /// log.
    bool getDefinition(const QString& token, int version) const;

private:
    /// The answer to an operation that changes nothing, and so may be repeated.
    ApiResponse read(const char* operation, const QJsonObject& params) const;
    /// The same without a look into the answer; whether there is one.
    bool fetch(const char* operation, const QJsonObject& params, RawAnswer* answer) const;
    /// Sends a change, once at most; whether the service has carried it out.
    bool change(const char* operation, const QJsonObject& params) const;
};
