#include "models/CloneInfo.h"

#include "models/Json.h"

CloneInfo::CloneInfo(const QVariantMap& record, int place, QObject* parent) : QObject(parent), m_place(place)
{
    using namespace json;
    static const Fields<CloneInfo> fields{
        {QStringLiteral("id"), readText<&CloneInfo::setId>},
        {QStringLiteral("uid"), readText<&CloneInfo::setUid>},
        {QStringLiteral("cookies"), readText<&CloneInfo::setCookies>},
        {QStringLiteral("device_id"), readText<&CloneInfo::setDeviceId>},
        {QStringLiteral("email"), readText<&CloneInfo::setEmail>},
        {QStringLiteral("firstname"), readText<&CloneInfo::setFirstName>},
        {QStringLiteral("lastname"), readText<&CloneInfo::setLastName>},
        {QStringLiteral("mail_password"), readText<&CloneInfo::setMailPass>},
        {QStringLiteral("network"), readText<&CloneInfo::setNetwork>},
        {QStringLiteral("password"), readText<&CloneInfo::setPassword>},
        {QStringLiteral("novery"), readFlag<&CloneInfo::setNovery>},
        {QStringLiteral("restriction"), readInteger<&CloneInfo::setRestriction>},
        {QStringLiteral("secretkey"), readText<&CloneInfo::setSecretkey>},
        {QStringLiteral("secure_flags"), readInteger<&CloneInfo::setSecureFlags>},
        {QStringLiteral("status"), readInteger<&CloneInfo::setStatus>},
        {QStringLiteral("user_id"), readText<&CloneInfo::setUserId>},
        {QStringLiteral("farm_profile"), readText<&CloneInfo::setFarmProfile>},
    };
    m_filtered = true;
    readFields(record, fields, this);
}
