#include "models/GlobalConfig.h"

#include "models/Json.h"

namespace {

struct Field {
    QLatin1String key;
    const QString& (GlobalConfig::*get)() const;
    void (GlobalConfig::*set)(const QString&);
};

using G = GlobalConfig;
const Field kFields[] = {
    {QLatin1String("velstrand_dropbox_token"), &G::dropboxToken, &G::setDropboxToken},
    {QLatin1String("velstrand_android_app_version"), &G::vsAndroidAppVersion, &G::setVsAndroidAppVersion},
    {QLatin1String("velstrand_android_app_path"), &G::vsAndroidAppPath, &G::setVsAndroidAppPath},
    {QLatin1String("facebook_app_version"), &G::facebookAppVersion, &G::setFacebookAppVersion},
    {QLatin1String("velstrand_manager_app_version"), &G::vsManagerAppVersion, &G::setVsManagerAppVersion},
    {QLatin1String("velstrand_manager_app_path"), &G::vsManagerAppPath, &G::setVsManagerAppPath},
    {QLatin1String("velstrand_definition_version"), &G::vsDefinitionsVersion, &G::setVsDefinitionsVersion},
};

} // namespace

void GlobalConfig::fromJson(const QJsonObject& object)
{
    for (const Field& field : kFields) {
        if (object.contains(field.key))
            (this->*field.set)(json::text(object.value(field.key).toVariant()));
    }
}

QJsonObject GlobalConfig::toJson() const
{
    QJsonObject object;
    for (const Field& field : kFields) {
        const QString& value = (this->*field.get)();
        if (!value.isEmpty())
            object.insert(field.key, value);
    }
    return object;
}
