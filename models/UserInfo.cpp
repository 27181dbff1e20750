#include "models/UserInfo.h"

#include "logging/Log.h"
#include "models/FarmProfile.h"
#include "models/Json.h"

#include <QSet>

UserInfo::UserInfo(const QString& token, QObject* parent) : QObject(parent), m_token(token) {}

void UserInfo::setToken(const QString& token)
{
    if (m_token == token)
        return;
    m_token = token;
    emit tokenChanged();
    if (token.isEmpty())
        setIsValidated(false);
}

bool UserInfo::applyInfo(const QJsonObject& answer)
{
    static const json::Fields<UserInfo> fields{
        {QStringLiteral("fullname"), json::readText<&UserInfo::setFullName>},
        {QStringLiteral("user_type"), json::readInteger<&UserInfo::setUserType>},
        {QStringLiteral("username"), json::readText<&UserInfo::setUserName>},
        {QStringLiteral("phonenumber"), json::readText<&UserInfo::setPhoneNumber>},
        {QStringLiteral("farm_profiles"),
         [](UserInfo* user, const QVariant& value) { user->replaceFarmProfiles(value.toMap()); }},
    };
    const QString acceptedToken = answer.value(QLatin1String("token")).toString();
    if (acceptedToken.isEmpty()) {
        setToken(QString());
        return false;
    }
    setToken(acceptedToken);
    setIsValidated(true);
    json::readFields(answer.toVariantMap(), fields, this);
    return true;
}

void UserInfo::replaceFarmProfiles(const QVariantMap& profiles)
{
    QList<QObject*> list;
    for (auto it = profiles.cbegin(); it != profiles.cend(); ++it) {
        auto* profile = new FarmProfile(it.key(), this);
        profile->readActions(it.value().toMap());
        list.append(profile);
    }
    if (list.isEmpty() && m_farmProfiles.isEmpty())
        return;
    m_farmProfiles.swap(list);
    emit farmProfilesChanged();
    // The scene lets go of the old profiles some turns of the event loop later: they stay until the next ones
    // come.
    m_replacedProfiles.swap(list);
    for (QObject* old : qAsConst(list))
        old->deleteLater();
}

void UserInfo::createTempProfile()
{
    QSet<QString> taken;
    for (const QObject* profile : qAsConst(m_farmProfiles))
        taken.insert(static_cast<const FarmProfile*>(profile)->profileName());
    int number = 0;
    QString name;
    do
        name = QStringLiteral("Profile-%1").arg(number++);
    while (taken.contains(name));
    LOG_D << "name; " << name;

    auto* profile = new FarmProfile(name, this);
    profile->setTemp(true);
    m_farmProfiles.append(profile);
    emit farmProfilesChanged();
}
