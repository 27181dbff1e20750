#include "api/VelstrandAPI.h"

#include "logging/Log.h"
#include "toolkit/HttpClient.h"

#include <QtGlobal>

using toolkit::Exchange;

namespace {

QJsonObject withToken(const QString& token)
{
    return {{"token", token}};
}

QJsonArray idObjects(const QStringList& cloneIds)
{
    QJsonArray array;
    for (const QString& id : cloneIds)
        array.append(QJsonObject{{"id", id}});
    return array;
}

bool takeArray(const ApiResponse& response, QJsonArray* array)
{
    if (!response.success || !response.data.isArray())
        return false;
    *array = response.data.array();
    return true;
}

bool takeObject(const ApiResponse& response, QJsonObject* object)
{
    if (!response.success || !response.data.isObject())
        return false;
    *object = response.data.object();
    return true;
}

} // namespace

VelstrandAPI::VelstrandAPI(QObject* parent) : APIBase(parent)
{
    QString origin = qEnvironmentVariable("VELSTRAND_SERVICE_URL");
    if (origin.isEmpty())
        origin = QStringLiteral(VELSTRAND_SERVICE_URL);
    while (origin.endsWith(QLatin1Char('/')))
        origin.chop(1);
    setBaseUrl(origin);
    setTrustAnchors(qEnvironmentVariable("VELSTRAND_CA_FILE"));
}

bool VelstrandAPI::getGlobalConfig(const QString& token, QString* configJson) const
{
    const auto response =
        sendPostRequest(QStringLiteral("/api/v1/config/get-global"), withToken(token), Exchange::Read);
    if (!response.success)
        return false;
    *configJson = QString::fromUtf8(response.data.toJson(QJsonDocument::Compact));
    return response.data.isObject();
}

bool VelstrandAPI::getDeviceList(const QString& token, QJsonArray* array) const
{
    return takeArray(sendPostRequest(QStringLiteral("/api/v1/device/list"), withToken(token), Exchange::Read),
                     array);
}

bool VelstrandAPI::confirmDevice(const QString& token, const QString& androidId) const
{
    auto params = withToken(token);
    params.insert("device_info", QJsonObject{{"android_id", androidId}});
    return sendPostRequest(QStringLiteral("/api/v1/device/confirm"), params, Exchange::Write).success;
}

bool VelstrandAPI::deleteDevice(const QString& token, const QString& androidId) const
{
    auto params = withToken(token);
    params.insert("device_info", QJsonObject{{"android_id", androidId}});
    return sendPostRequest(QStringLiteral("/api/v1/device/delete"), params, Exchange::Write).success;
}

bool VelstrandAPI::saveDeviceConfig(const QString& token, const QString& androidId,
                                    const QJsonObject& deviceConfig) const
{
    auto params = withToken(token);
    params.insert("android_id", androidId);
    params.insert("device_config", deviceConfig);
    return sendPostRequest(QStringLiteral("/api/v1/device/save-config"), params, Exchange::Write).success;
}

bool VelstrandAPI::getUserInfo(const QString& token, QJsonObject* userInfo) const
{
    const auto response =
        sendPostRequest(QStringLiteral("/api/v1/user/get-info"), withToken(token), Exchange::Read);
    LOG_D << "doc: " << response.data;
    return takeObject(response, userInfo);
}

bool VelstrandAPI::getCloneList(const QString& token, const QString& androidId, QJsonArray* array) const
{
    auto params = withToken(token);
    params.insert("android_id", androidId);
    return takeArray(sendPostRequest(QStringLiteral("/api/v1/clone/list"), params, Exchange::Read), array);
}

bool VelstrandAPI::addClones(const QString& token, const QString& network, const QJsonArray& clones) const
{
    auto params = withToken(token);
    params.insert("network", network);
    params.insert("clones", clones);
    return sendPostRequest(QStringLiteral("/api/v1/clone/add"), params, Exchange::Write).success;
}

bool VelstrandAPI::updateGlobalConfig(const QString& token, const QJsonObject& globalConfig) const
{
    LOG_D;
    auto params = withToken(token);
    params.insert("global_config", globalConfig);
    return sendPostRequest(QStringLiteral("/api/v1/config/update-global"), params, Exchange::Write).success;
}

bool VelstrandAPI::getReports(const QString& token, const QJsonArray& dateList, QJsonObject* reports) const
{
    auto params = withToken(token);
    params.insert("date_list", dateList);
    return takeObject(sendPostRequest(QStringLiteral("/api/v1/reports/get"), params, Exchange::Read),
                      reports);
}

bool VelstrandAPI::upsertFarmProfile(const QString& token, const QJsonObject& farmProfile) const
{
    auto params = withToken(token);
    params.insert("farm_profile", farmProfile);
    return sendPostRequest(QStringLiteral("/api/v1/user/upsert-farm-profile"), params, Exchange::Write)
        .success;
}

bool VelstrandAPI::resetLiveClones(const QString& token, const QStringList& cloneIds) const
{
    auto params = withToken(token);
    params.insert("clones", idObjects(cloneIds));
    return sendPostRequest(QStringLiteral("/api/v1/clone/reset-live"), params, Exchange::Write).success;
}

bool VelstrandAPI::deleteClones(const QString& token, const QStringList& cloneIds) const
{
    auto params = withToken(token);
    params.insert("clones", idObjects(cloneIds));
    return sendPostRequest(QStringLiteral("/api/v1/clone/delete"), params, Exchange::Write).success;
}

bool VelstrandAPI::updateCloneFarmProfile(const QString& token, const QStringList& cloneIds,
                                          const QString& farmProfile) const
{
    auto params = withToken(token);
    params.insert("farm_profile", farmProfile);
    params.insert("clones", idObjects(cloneIds));
    return sendPostRequest(QStringLiteral("/api/v1/clone/update-farm-profile"), params, Exchange::Write)
        .success;
}
