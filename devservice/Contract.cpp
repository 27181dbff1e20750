#include "devservice/Contract.h"

#include "devservice/Checks.h"

#include <QDate>
#include <QJsonDocument>

#include <algorithm>
#include <limits>

namespace devservice {
namespace {

constexpr int administrator = 255;
constexpr char token[] = "token";

} // namespace

struct Contract::Operation {
    const char* path;
    Who who;
    /// What the body looks like, without the token.
    const char* shape;
    Answer (Contract::*run)(const QJsonObject&);
};

const Contract::Operation Contract::operations[] = {
    {"/api/v1/user/get-info", Anybody, "{}", &Contract::getUserInfo},
    {"/api/v1/user/upsert-farm-profile", User, R"({"farm_profile":{"name":"","farm_action_config":{}}})",
     &Contract::upsertFarmProfile},
    {"/api/v1/config/get-global", User, "{}", &Contract::getGlobalConfig},
    {"/api/v1/config/update-global", Administrator, R"({"global_config":{
        "velstrand_dropbox_token?":"",
        "velstrand_android_app_version?":"",
        "velstrand_android_app_path?":"",
        "facebook_app_version?":"",
        "velstrand_manager_app_version?":"",
        "velstrand_manager_app_path?":"",
        "velstrand_definition_version?":""}})",
     &Contract::updateGlobalConfig},
    {"/api/v1/device/list", User, "{}", &Contract::deviceList},
    {"/api/v1/device/confirm", User, R"({"device_info":{"android_id":""}})", &Contract::confirmDevice},
    {"/api/v1/device/delete", User, R"({"device_info":{"android_id":""}})", &Contract::deleteDevice},
    {"/api/v1/device/save-config", User,
     R"({"android_id":"","device_config":{"connectivity_type":0,"device_label":""}})",
     &Contract::saveDeviceConfig},
    {"/api/v1/clone/list", User, R"({"android_id":""})", &Contract::cloneList},
    {"/api/v1/clone/add", User,
     R"({"network":"","clones":[{"uid":"","password":"","secretkey?":"","farm_profile":""}]})",
     &Contract::addClones},
    {"/api/v1/clone/reset-live", User, R"({"clones":[{"id":""}]})", &Contract::resetClones},
    {"/api/v1/clone/delete", User, R"({"clones":[{"id":""}]})", &Contract::deleteClones},
    {"/api/v1/clone/update-farm-profile", User, R"({"farm_profile":"","clones":[{"id":""}]})",
     &Contract::updateCloneProfile},
    {"/api/v1/reports/get", User, R"({"date_list":[""]})", &Contract::getReports},
    {"/api/v1/definitions/get", User, R"({"version":1})", &Contract::getDefinitions},
};

Farm Contract::farm() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_farm;
}

void Contract::setFarm(const Farm& farm)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_farm = farm;
    m_deviceList = {};
    m_cloneList = {};
}

Answer Contract::answer(const QString& method, const QString& path, const QString& contentType,
                        const QByteArray& body)
{
    const auto* const operation = std::find_if(std::begin(operations), std::end(operations),
                                               [&path](const Operation& each) { return path == each.path; });
    if (operation == std::end(operations) && path != definitionsPushPath) {
        throw Refusal{404, "unknown path: " + path};
    }
    if (method != "POST") {
        throw Refusal{405, "the method must be POST"};
    }
    if (contentType.section(';', 0, 0).trimmed().toLower() != "application/json") {
        throw Refusal{415, "the content type must be application/json"};
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (!document.isObject()) {
        const QString reason =
            error.error == QJsonParseError::NoError ? QString() : ": " + error.errorString();
        throw Refusal{400, "the body is no JSON object" + reason};
    }
    QJsonObject shape = QJsonDocument::fromJson(operation->shape).object();
    shape.insert(token, "");
    requireShape(document.object(), shape, "the request");

    const std::lock_guard<std::mutex> lock(m_mutex);
    requireUser(document[token].toString(), operation->who);
    return (this->*operation->run)(document.object());
}

Answer Contract::answer(const DefinitionsPush& push)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    requireUser(push.token, Administrator);
    if (!push.isValid) {
        throw Refusal{400, "the body must be a form of the field \"version\" and the file \"definitions\""};
    }
    const int version = push.version.toInt();
    if (version <= 0 || QByteArray::number(version) != push.version) {
        throw Refusal{400, "version must be a decimal number above 0"};
    }
    m_farm.definitionsVersion = version;
    m_farm.definitionsFileName = push.fileName;
    m_farm.definitionsSize = push.size;
    m_farm.definitionsSha256 = push.sha256;
    m_farm.globalConfig.insert("velstrand_definition_version", QString::number(version));
    return done();
}

void Contract::requireUser(const QString& userToken, Who who) const
{
    const auto user = m_farm.users.constFind(userToken);
    if (who != Anybody && user == m_farm.users.constEnd()) {
        throw Refusal{401, "unknown token"};
    }
    if (who == Administrator && user->value("user_type").toInt() != administrator) {
        throw Refusal{403, "only an administrator may do this"};
    }
}

Answer Contract::getUserInfo(const QJsonObject& body)
{
    // A token that nobody holds is no error here: the answer without a token tells the client to ask for
    // another.
    return done(m_farm.users.value(body.value(token).toString()));
}

Answer Contract::upsertFarmProfile(const QJsonObject& body)
{
    const QJsonValue profile = body["farm_profile"];
    const QString name = requireText(profile["name"], "the name of a profile");
    const QJsonObject config = profile["farm_action_config"].toObject();
    for (auto it = config.begin(); it != config.end(); ++it) {
        requireText(it.key(), "the name of an action");
        requireInteger(it.value(), "the percentage of " + it.key(), 0, 100);
    }
    QJsonObject& user = m_farm.users[body.value(token).toString()];
    QJsonObject profiles = user.value("farm_profiles").toObject();
    profiles.insert(name, config);
    user.insert("farm_profiles", profiles);
    return done();
}

Answer Contract::getGlobalConfig(const QJsonObject&)
{
    return done(m_farm.globalConfig);
}

Answer Contract::updateGlobalConfig(const QJsonObject& body)
{
    const QJsonObject config = body["global_config"].toObject();
    for (auto it = config.begin(); it != config.end(); ++it) {
        requireText(it.value(), it.key());
    }
    for (auto it = config.begin(); it != config.end(); ++it) {
        m_farm.globalConfig.insert(it.key(), it.value());
    }
    return done();
}

Answer Contract::getReports(const QJsonObject& body)
{
    const QString format = "yyyy-M-d";
    QJsonObject reports;
    const QJsonArray dates = body.value("date_list").toArray();
    for (const QJsonValue& date : dates) {
        const QString text = date.toString();
        if (text.isEmpty() || QDate::fromString(text, format).toString(format) != text) {
            throw Refusal{400, "date_list holds something else than a date like 2024-3-1: " + text};
        }
        if (m_farm.reports.contains(text)) {
            reports.insert(text, m_farm.reports.value(text));
        }
    }
    return done(reports);
}

Answer Contract::getDefinitions(const QJsonObject& body)
{
    requireInteger(body.value("version"), "version", 1, std::numeric_limits<int>::max());
    Answer answer;
    answer.type = QByteArrayLiteral("application/zip");
    answer.body = m_farm.definitionsArchive;
    return answer;
}

} // namespace devservice
