#include "devservice/Contract.h"

#include "devservice/MemberChecks.h"

#include <QDate>
#include <QJsonDocument>

#include <algorithm>
#include <limits>

namespace devservice {
namespace {

constexpr int administrator = 255;

const QString token = QStringLiteral("token");

} // namespace

struct Contract::Operation {
    QString path;
    /// Besides the token.
    std::vector<Member> members;
    enum Who { Anybody, User, Administrator } who;
    Answer (Contract::*run)(const QJsonObject&);
};

const QVector<Contract::Operation>& Contract::operations()
{
    const Member androidId{QStringLiteral("android_id"), QJsonValue::String};
    const Member deviceInfo{QStringLiteral("device_info"), QJsonValue::Object};
    const Member clones{QStringLiteral("clones"), QJsonValue::Array};
    const Member network{QStringLiteral("network"), QJsonValue::String};
    const Member profileName{QStringLiteral("farm_profile"), QJsonValue::String};
    const Member profile{QStringLiteral("farm_profile"), QJsonValue::Object};
    const Member deviceConfig{QStringLiteral("device_config"), QJsonValue::Object};
    const Member globalConfig{QStringLiteral("global_config"), QJsonValue::Object};
    const Member dates{QStringLiteral("date_list"), QJsonValue::Array};
    const Member version{QStringLiteral("version"), QJsonValue::Double};
    const auto path = [](const char* name) { return QStringLiteral("/api/v1/") + QLatin1String(name); };

    static const QVector<Operation> table = {
        {path("user/get-info"), {}, Operation::Anybody, &Contract::getUserInfo},
        {path("user/upsert-farm-profile"), {profile}, Operation::User, &Contract::upsertFarmProfile},
        {path("config/get-global"), {}, Operation::User, &Contract::getGlobalConfig},
        {path("config/update-global"),
         {globalConfig},
         Operation::Administrator,
         &Contract::updateGlobalConfig},
        {path("device/list"), {}, Operation::User, &Contract::deviceList},
        {path("device/confirm"), {deviceInfo}, Operation::User, &Contract::confirmDevice},
        {path("device/delete"), {deviceInfo}, Operation::User, &Contract::deleteDevice},
        {path("device/save-config"), {androidId, deviceConfig}, Operation::User, &Contract::saveDeviceConfig},
        {path("clone/list"), {androidId}, Operation::User, &Contract::cloneList},
        {path("clone/add"), {network, clones}, Operation::User, &Contract::addClones},
        {path("clone/reset-live"), {clones}, Operation::User, &Contract::resetClones},
        {path("clone/delete"), {clones}, Operation::User, &Contract::deleteClones},
        {path("clone/update-farm-profile"),
         {profileName, clones},
         Operation::User,
         &Contract::updateCloneProfile},
        {path("reports/get"), {dates}, Operation::User, &Contract::getReports},
        {path("definitions/get"), {version}, Operation::User, &Contract::getDefinitions},
    };
    return table;
}

Contract::Contract(Farm farm)
{
    setFarm(farm);
}

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
    m_nextCloneNumber = m_farm.clones.size() + 1;
}

bool Contract::knows(const QString& path)
{
    for (const Operation& operation : operations()) {
        if (operation.path == path) {
            return true;
        }
    }
    return path == QLatin1String("/api/v1/definitions/push");
}

Answer Contract::answer(const QString& path, const QByteArray& contentType, const QByteArray& body)
{
    const auto& table = operations();
    const auto operation = std::find_if(table.begin(), table.end(),
                                        [&path](const Operation& each) { return each.path == path; });
    if (operation == table.end()) {
        return refused(404, QStringLiteral("unknown path: ") + path);
    }
    try {
        if (contentType.split(';').first().trimmed().toLower() != "application/json") {
            throw Refusal{415, QStringLiteral("the content type must be application/json")};
        }
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(body, &error);
        if (!document.isObject()) {
            const QString reason =
                error.error == QJsonParseError::NoError ? QString() : ": " + error.errorString();
            throw Refusal{400, QStringLiteral("the body is no JSON object") + reason};
        }
        const QJsonObject object = document.object();
        std::vector<Member> members = operation->members;
        members.push_back({token, QJsonValue::String});
        requireMembers(object, QStringLiteral("the request"), members);

        const std::lock_guard<std::mutex> lock(m_mutex);
        if (operation->who != Operation::Anybody) {
            requireUser(object.value(token).toString(), operation->who == Operation::Administrator);
        }
        return (this->*operation->run)(object);
    } catch (const Refusal& refusal) {
        return refused(refusal.status, refusal.message);
    }
}

Answer Contract::answer(const DefinitionsPush& push)
{
    try {
        const std::lock_guard<std::mutex> lock(m_mutex);
        requireUser(push.token, true);
        if (push.fields != QStringList{QStringLiteral("version")} ||
            push.files != QStringList{QStringLiteral("definitions")}) {
            throw Refusal{
                400, QStringLiteral("the form must have one field \"version\" and one file \"definitions\"")};
        }
        bool isNumber = false;
        const int version = push.version.toInt(&isNumber);
        if (!isNumber || version <= 0 || QByteArray::number(version) != push.version) {
            throw Refusal{400, QStringLiteral("version must be a decimal number above 0")};
        }
        m_farm.definitionsVersion = version;
        m_farm.definitionsFileName = push.fileName;
        m_farm.definitionsSize = push.size;
        m_farm.definitionsSha256 = push.sha256;
        m_farm.globalConfig.insert(QStringLiteral("velstrand_definition_version"), QString::number(version));
        return done();
    } catch (const Refusal& refusal) {
        return refused(refusal.status, refusal.message);
    }
}

void Contract::requireUser(const QString& userToken, bool needsAdministrator) const
{
    const auto user = m_farm.users.constFind(userToken);
    if (user == m_farm.users.constEnd()) {
        throw Refusal{401, QStringLiteral("unknown token")};
    }
    if (needsAdministrator && user->value(QStringLiteral("user_type")).toInt() != administrator) {
        throw Refusal{403, QStringLiteral("only an administrator may do this")};
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
    const QString name = QStringLiteral("name");
    const QString actions = QStringLiteral("farm_action_config");
    const QJsonObject profile = body.value(QStringLiteral("farm_profile")).toObject();
    requireMembers(profile, QStringLiteral("farm_profile"),
                   {{name, QJsonValue::String}, {actions, QJsonValue::Object}});
    const QString profileName = requireText(profile.value(name), QStringLiteral("the name of a profile"));
    const QJsonObject config = profile.value(actions).toObject();
    for (auto it = config.begin(); it != config.end(); ++it) {
        requireText(it.key(), QStringLiteral("the name of an action"));
        requireInteger(it.value(), QStringLiteral("the percentage of ") + it.key(), 0, 100);
    }
    QJsonObject& user = m_farm.users[body.value(token).toString()];
    QJsonObject profiles = user.value(QStringLiteral("farm_profiles")).toObject();
    profiles.insert(profileName, config);
    user.insert(QStringLiteral("farm_profiles"), profiles);
    return done();
}

Answer Contract::getGlobalConfig(const QJsonObject&)
{
    return done(m_farm.globalConfig);
}

Answer Contract::updateGlobalConfig(const QJsonObject& body)
{
    static const QStringList keys = {
        QStringLiteral("velstrand_dropbox_token"),       QStringLiteral("velstrand_android_app_version"),
        QStringLiteral("velstrand_android_app_path"),    QStringLiteral("facebook_app_version"),
        QStringLiteral("velstrand_manager_app_version"), QStringLiteral("velstrand_manager_app_path"),
        QStringLiteral("velstrand_definition_version")};
    std::vector<Member> members;
    for (const QString& key : keys) {
        members.push_back({key, QJsonValue::String, true});
    }
    const QJsonObject config = body.value(QStringLiteral("global_config")).toObject();
    requireMembers(config, QStringLiteral("global_config"), members);
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
    const QString format = QStringLiteral("yyyy-M-d");
    QJsonObject reports;
    const QJsonArray dates = body.value(QStringLiteral("date_list")).toArray();
    for (const QJsonValue date : dates) {
        const QString text = date.toString();
        if (text.isEmpty() || QDate::fromString(text, format).toString(format) != text) {
            throw Refusal{400, QStringLiteral("date_list holds something else than a date like 2024-3-1: ") +
                                   text};
        }
        if (m_farm.reports.contains(text)) {
            reports.insert(text, m_farm.reports.value(text));
        }
    }
    return done(reports);
}

Answer Contract::getDefinitions(const QJsonObject& body)
{
    requireInteger(body.value(QStringLiteral("version")), QStringLiteral("version"), 1,
                   std::numeric_limits<int>::max());
    Answer answer;
    answer.type = QByteArrayLiteral("application/zip");
    answer.body = m_farm.definitionsArchive;
    return answer;
}

} // namespace devservice
