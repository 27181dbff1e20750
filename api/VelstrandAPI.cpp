#include "api/VelstrandAPI.h"

#include "logging/Log.h"
#include "toolkit/HttpClient.h"

#include <QtGlobal>

namespace {

const QLatin1String kPathPrefix("/api/v1/");

QJsonArray idObjects(const QStringList& cloneIds)
{
    QJsonArray array;
    for (const QString& id : cloneIds)
        array.append(QJsonObject{{"id", id}});
    return array;
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

ApiResponse VelstrandAPI::read(const char* operation, const QJsonObject& params) const
{
    return sendPostRequest(kPathPrefix + operation, params, toolkit::Exchange::Read);
}

bool VelstrandAPI::fetch(const char* operation, const QJsonObject& params, RawAnswer* answer) const
{
    RawAnswer received;
    const ApiResponse response =
        sendRawRequest(kPathPrefix + operation, params, toolkit::Exchange::Read, &received);
    if (received.body)
        *answer = received;
    else
        LOG_D << operation << ": " << response.message;
    return bool(received.body);
}

bool VelstrandAPI::change(const char* operation, const QJsonObject& params) const
{
    return sendPostRequest(kPathPrefix + operation, params, toolkit::Exchange::Write).success;
}

bool VelstrandAPI::getGlobalConfig(const QString& token, QString* configJson) const
{
    const auto response = read("config/get-global", {{"token", token}});
    if (!response.success)
        return false;
    *configJson = QString::fromUtf8(response.data.toJson(QJsonDocument::Compact));
    return response.data.isObject();
}

bool VelstrandAPI::getDeviceList(const QString& token, RawAnswer* answer) const
{
    return fetch("device/list", {{"token", token}}, answer);
}

bool VelstrandAPI::confirmDevice(const QString& token, const QString& androidId) const
{
    return change("device/confirm",
                  {{"token", token}, {"device_info", QJsonObject{{"android_id", androidId}}}});
}

bool VelstrandAPI::deleteDevice(const QString& token, const QString& androidId) const
{
    return change("device/delete",
                  {{"token", token}, {"device_info", QJsonObject{{"android_id", androidId}}}});
}

bool VelstrandAPI::saveDeviceConfig(const QString& token, const QString& androidId,
                                    const QJsonObject& deviceConfig) const
{
    return change("device/save-config",
                  {{"token", token}, {"android_id", androidId}, {"device_config", deviceConfig}});
}

bool VelstrandAPI::getUserInfo(const QString& token, QJsonObject* userInfo) const
{
    const auto response = read("user/get-info", {{"token", token}});
    LOG_D << "doc: " << response.data;
    return takeObject(response, userInfo);
}

bool VelstrandAPI::getCloneList(const QString& token, const QString& androidId, RawAnswer* answer) const
{
    return fetch("clone/list", {{"token", token}, {"android_id", androidId}}, answer);
}

bool VelstrandAPI::addClones(const QString& token, const QString& network, const QJsonArray& clones) const
{
    return change("clone/add", {{"token", token}, {"network", network}, {"clones", clones}});
}

bool VelstrandAPI::updateGlobalConfig(const QString& token, const QJsonObject& globalConfig) const
{
    LOG_D;
    return change("config/update-global", {{"token", token}, {"global_config", globalConfig}});
}

bool VelstrandAPI::getReports(const QString& token, const QJsonArray& dateList, QJsonObject* reports) const
{
    return takeObject(read("reports/get", {{"token", token}, {"date_list", dateList}}), reports);
}

bool VelstrandAPI::upsertFarmProfile(const QString& token, const QJsonObject& farmProfile) const
{
    return change("user/upsert-farm-profile", {{"token", token}, {"farm_profile", farmProfile}});
}

bool VelstrandAPI::resetLiveClones(const QString& token, const QStringList& cloneIds) const
{
    return change("clone/reset-live", {{"token", token}, {"clones", idObjects(cloneIds)}});
}

bool VelstrandAPI::deleteClones(const QString& token, const QStringList& cloneIds) const
{
    return change("clone/delete", {{"token", token}, {"clones", idObjects(cloneIds)}});
}

bool VelstrandAPI::updateCloneFarmProfile(const QString& token, const QStringList& cloneIds,
                                          const QString& farmProfile) const
{
    return change("clone/update-farm-profile",
                  {{"token", token}, {"farm_profile", farmProfile}, {"clones", idObjects(cloneIds)}});
}
