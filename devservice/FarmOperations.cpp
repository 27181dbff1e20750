#include "devservice/Contract.h"

#include "devservice/Checks.h"

#include <QSet>
#include <QUuid>

#include <algorithm>

namespace devservice {
namespace {

constexpr int confirmedDevice = 1;
constexpr int liveClone = 1;

} // namespace

int Contract::deviceIndex(const QJsonValue& androidId) const
{
    for (int i = 0; i < m_farm.devices.size(); ++i) {
        if (m_farm.devices.at(i)["android_id"] == androidId) {
            return i;
        }
    }
    throw Refusal{404, "unknown device: " + androidId.toString()};
}

void Contract::setDevice(const QJsonValue& androidId, const QString& key, const QJsonValue& value)
{
    const int index = deviceIndex(androidId);
    QJsonObject device = m_farm.devices.at(index).toObject();
    device.insert(key, value);
    m_farm.devices.replace(index, device);
    m_deviceList = {};
}

Answer Contract::deviceList(const QJsonObject&)
{
    if (m_deviceList.body.isEmpty()) {
        m_deviceList = done(m_farm.devices);
    }
    return m_deviceList;
}

Answer Contract::confirmDevice(const QJsonObject& body)
{
    setDevice(body["device_info"]["android_id"], "status", confirmedDevice);
    return done();
}

Answer Contract::deleteDevice(const QJsonObject& body)
{
    m_farm.devices.removeAt(deviceIndex(body["device_info"]["android_id"]));
    m_deviceList = {};
    return done();
}

Answer Contract::saveDeviceConfig(const QJsonObject& body)
{
    const QJsonValue config = body["device_config"];
    requireInteger(config["connectivity_type"], "connectivity_type", 0, 1);
    setDevice(body["android_id"], "device_config", config);
    return done();
}

Answer Contract::cloneList(const QJsonObject& body)
{
    const QJsonValue androidId = body["android_id"];
    if (!androidId.toString().isEmpty()) {
        QJsonArray clones;
        for (const QJsonValue& clone : qAsConst(m_farm.clones)) {
            if (clone["device_id"] == androidId) {
                clones.append(clone);
            }
        }
        return done(clones);
    }
    if (m_cloneList.body.isEmpty()) {
        m_cloneList = done(m_farm.clones);
    }
    return m_cloneList;
}

Answer Contract::addClones(const QJsonObject& body)
{
    const QJsonValue network = body["network"];
    if (network != "facebook" && network != "tiktok") {
        throw Refusal{400, "unknown network: " + network.toString()};
    }
    QSet<QString> uids;
    for (const QJsonValue& clone : qAsConst(m_farm.clones)) {
        if (clone["network"] == network) {
            uids.insert(clone["uid"].toString());
        }
    }
    const QJsonArray given = body["clones"].toArray();
    for (const QJsonValue& clone : given) {
        const QString uid = requireText(clone["uid"], "uid");
        if (uids.contains(uid)) {
            throw Refusal{409, "there is a clone with this uid already: " + uid};
        }
        uids.insert(uid);
    }
    for (const QJsonValue& clone : given) {
        QJsonObject added = clone.toObject();
        added.insert("id", QUuid::createUuid().toString(QUuid::WithoutBraces));
        added.insert("network", network);
        added.insert("user_id", m_farm.users.value(body["token"].toString()).value("username"));
        added.insert("status", liveClone);
        added.insert("restriction", 1);
        added.insert("secure_flags", 0);
        added.insert("novery", false);
        added.insert("secretkey", clone["secretkey"].toString());
        for (const char* text : {"cookies", "device_id", "email", "firstname", "lastname", "mail_password"}) {
            added.insert(text, "");
        }
        m_farm.clones.append(added);
    }
    m_cloneList = {};
    return done();
}

/// The places of the clones that "clones" names, each once; refuses all when one is unknown.
QVector<int> Contract::cloneIndexes(const QJsonObject& body) const
{
    QSet<QString> wanted;
    const QJsonArray named = body["clones"].toArray();
    for (const QJsonValue& clone : named) {
        wanted.insert(clone["id"].toString());
    }
    QVector<int> indexes;
    for (int i = 0; i < m_farm.clones.size() && !wanted.isEmpty(); ++i) {
        if (wanted.remove(m_farm.clones.at(i)["id"].toString())) {
            indexes.append(i);
        }
    }
    if (!wanted.isEmpty()) {
        throw Refusal{404, "unknown clone: " + *wanted.begin()};
    }
    return indexes;
}

void Contract::setOnClones(const QJsonObject& body, const QString& key, const QJsonValue& value)
{
    const QVector<int> indexes = cloneIndexes(body);
    for (const int index : indexes) {
        QJsonObject clone = m_farm.clones.at(index).toObject();
        clone.insert(key, value);
        m_farm.clones.replace(index, clone);
    }
    m_cloneList = {};
}

Answer Contract::resetClones(const QJsonObject& body)
{
    setOnClones(body, "status", liveClone);
    return done();
}

Answer Contract::deleteClones(const QJsonObject& body)
{
    const QVector<int> gone = cloneIndexes(body);
    QJsonArray kept;
    for (int i = 0; i < m_farm.clones.size(); ++i) {
        if (!std::binary_search(gone.begin(), gone.end(), i)) {
            kept.append(m_farm.clones.at(i));
        }
    }
    m_farm.clones = kept;
    m_cloneList = {};
    return done();
}

Answer Contract::updateCloneProfile(const QJsonObject& body)
{
    setOnClones(body, "farm_profile", requireText(body["farm_profile"], "farm_profile"));
    return done();
}

} // namespace devservice
