#include "devservice/Contract.h"

#include "devservice/MemberChecks.h"

#include <QSet>

namespace devservice {
namespace {

constexpr int confirmedDevice = 1;
constexpr int liveClone = 1;

/// Clones that nobody has given these members yet have them empty.
QJsonObject newClone(const QString& id, const QString& network, const QString& userId,
                     const QJsonObject& given)
{
    QJsonObject clone{
        {"id", id},
        {"cookies", ""},
        {"device_id", ""},
        {"email", ""},
        {"firstname", ""},
        {"lastname", ""},
        {"mail_password", ""},
        {"network", network},
        {"novery", false},
        {"restriction", 1},
        {"secretkey", ""},
        {"secure_flags", 0},
        {"status", liveClone},
        {"user_id", userId},
    };
    for (auto it = given.begin(); it != given.end(); ++it) {
        clone.insert(it.key(), it.value());
    }
    return clone;
}

} // namespace

int Contract::deviceIndex(const QJsonValue& androidId) const
{
    for (int i = 0; i < m_farm.devices.size(); ++i) {
        if (m_farm.devices.at(i).toObject().value(QStringLiteral("android_id")) == androidId) {
            return i;
        }
    }
    throw Refusal{404, QStringLiteral("unknown device: ") + androidId.toString()};
}

void Contract::setDevice(int index, const QString& key, const QJsonValue& value)
{
    QJsonObject device = m_farm.devices.at(index).toObject();
    device.insert(key, value);
    m_farm.devices.replace(index, device);
    m_deviceList = {};
}

/// The index of the device that "device_info" names.
int Contract::deviceInfoIndex(const QJsonObject& body) const
{
    const QString androidId = QStringLiteral("android_id");
    const QJsonObject info = body.value(QStringLiteral("device_info")).toObject();
    requireMembers(info, QStringLiteral("device_info"), {{androidId, QJsonValue::String}});
    return deviceIndex(info.value(androidId));
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
    setDevice(deviceInfoIndex(body), QStringLiteral("status"), confirmedDevice);
    return done();
}

Answer Contract::deleteDevice(const QJsonObject& body)
{
    m_farm.devices.removeAt(deviceInfoIndex(body));
    m_deviceList = {};
    return done();
}

Answer Contract::saveDeviceConfig(const QJsonObject& body)
{
    const QString connectivity = QStringLiteral("connectivity_type");
    const QJsonObject config = body.value(QStringLiteral("device_config")).toObject();
    requireMembers(
        config, QStringLiteral("device_config"),
        {{connectivity, QJsonValue::Double}, {QStringLiteral("device_label"), QJsonValue::String}});
    requireInteger(config.value(connectivity), connectivity, 0, 1);
    setDevice(deviceIndex(body.value(QStringLiteral("android_id"))), QStringLiteral("device_config"), config);
    return done();
}

Answer Contract::cloneList(const QJsonObject& body)
{
    const QJsonValue androidId = body.value(QStringLiteral("android_id"));
    if (!androidId.toString().isEmpty()) {
        QJsonArray clones;
        for (const QJsonValue clone : qAsConst(m_farm.clones)) {
            if (clone.toObject().value(QStringLiteral("device_id")) == androidId) {
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
    const QString uid = QStringLiteral("uid");
    const QString network = body.value(QStringLiteral("network")).toString();
    if (network != QLatin1String("facebook") && network != QLatin1String("tiktok")) {
        throw Refusal{400, QStringLiteral("unknown network: ") + network};
    }
    QSet<QString> ids;
    QSet<QString> uids;
    for (const QJsonValue clone : qAsConst(m_farm.clones)) {
        const QJsonObject object = clone.toObject();
        ids.insert(object.value(QStringLiteral("id")).toString());
        if (object.value(QStringLiteral("network")).toString() == network) {
            uids.insert(object.value(uid).toString());
        }
    }
    const QJsonArray given = body.value(QStringLiteral("clones")).toArray();
    for (const QJsonValue clone : given) {
        requireMembers(clone.toObject(), QStringLiteral("an entry of clones"),
                       {{uid, QJsonValue::String},
                        {QStringLiteral("password"), QJsonValue::String},
                        {QStringLiteral("secretkey"), QJsonValue::String, true},
                        {QStringLiteral("farm_profile"), QJsonValue::String}});
        const QString newUid = requireText(clone.toObject().value(uid), uid);
        if (uids.contains(newUid)) {
            throw Refusal{409, QStringLiteral("there is a clone with this uid already: ") + newUid};
        }
        uids.insert(newUid);
    }
    const QString owner = m_farm.users.value(body.value(QStringLiteral("token")).toString())
                              .value(QStringLiteral("username"))
                              .toString();
    for (const QJsonValue clone : given) {
        QString id;
        do {
            id = QStringLiteral("c-%1").arg(m_nextCloneNumber++);
        } while (ids.contains(id));
        m_farm.clones.append(newClone(id, network, owner, clone.toObject()));
    }
    m_cloneList = {};
    return done();
}

/// The places of the clones that "clones" names, each once; refuses all when one is unknown.
QVector<int> Contract::cloneIndexes(const QJsonObject& body) const
{
    const QStringList ids = requireIds(body.value(QStringLiteral("clones")).toArray());
    QSet<QString> wanted(ids.begin(), ids.end());
    QVector<int> indexes;
    for (int i = 0; i < m_farm.clones.size() && !wanted.isEmpty(); ++i) {
        if (wanted.remove(m_farm.clones.at(i).toObject().value(QStringLiteral("id")).toString())) {
            indexes.append(i);
        }
    }
    if (!wanted.isEmpty()) {
        throw Refusal{404, QStringLiteral("unknown clone: ") + *wanted.begin()};
    }
    return indexes;
}

void Contract::setOnClones(const QJsonObject& body, const QString& key, const QJsonValue& value)
{
    for (const int index : cloneIndexes(body)) {
        QJsonObject clone = m_farm.clones.at(index).toObject();
        clone.insert(key, value);
        m_farm.clones.replace(index, clone);
    }
    m_cloneList = {};
}

Answer Contract::resetClones(const QJsonObject& body)
{
    setOnClones(body, QStringLiteral("status"), liveClone);
    return done();
}

Answer Contract::deleteClones(const QJsonObject& body)
{
    const QVector<int> gone = cloneIndexes(body);
    QJsonArray kept;
    auto next = gone.begin();
    for (int i = 0; i < m_farm.clones.size(); ++i) {
        if (next != gone.end() && *next == i) {
            ++next;
        } else {
            kept.append(m_farm.clones.at(i));
        }
    }
    m_farm.clones = kept;
    m_cloneList = {};
    return done();
}

Answer Contract::updateCloneProfile(const QJsonObject& body)
{
    const QString key = QStringLiteral("farm_profile");
    setOnClones(body, key, requireText(body.value(key), key));
    return done();
}

} // namespace devservice
