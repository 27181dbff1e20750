#include "models/CloneInfo.h"

namespace {

template <auto setter>
void text(ListRecord* clone, const Record& record, int slot)
{
    (static_cast<CloneInfo*>(clone)->*setter)(record.text(slot));
}

template <auto setter>
void number(ListRecord* clone, const Record& record, int slot)
{
    (static_cast<CloneInfo*>(clone)->*setter)(static_cast<int>(record.number(slot)));
}

template <auto setter>
void flag(ListRecord* clone, const Record& record, int slot)
{
    (static_cast<CloneInfo*>(clone)->*setter)(record.number(slot) != 0);
}

} // namespace

const RecordLayout& CloneInfo::layout()
{
    using L = RecordLayout;
    static const RecordLayout layout(
        {
            {"id", L::Text, text<&CloneInfo::setId>},
            {"uid", L::Text, text<&CloneInfo::setUid>},
            {"cookies", L::Text, text<&CloneInfo::setCookies>},
            {"device_id", L::Text, text<&CloneInfo::setDeviceId>},
            {"email", L::Text, text<&CloneInfo::setEmail>},
            {"firstname", L::Text, text<&CloneInfo::setFirstName>},
            {"lastname", L::Text, text<&CloneInfo::setLastName>},
            {"mail_password", L::Text, text<&CloneInfo::setMailPass>},
            {"network", L::Text, text<&CloneInfo::setNetwork>},
            {"password", L::Text, text<&CloneInfo::setPassword>},
            {"novery", L::Flag, flag<&CloneInfo::setNovery>},
            {"restriction", L::Integer, number<&CloneInfo::setRestriction>},
            {"secretkey", L::Text, text<&CloneInfo::setSecretkey>},
            {"secure_flags", L::Integer, number<&CloneInfo::setSecureFlags>},
            {"status", L::Integer, number<&CloneInfo::setStatus>},
            {"user_id", L::Text, text<&CloneInfo::setUserId>},
            {"farm_profile", L::Text, text<&CloneInfo::setFarmProfile>},
        },
        "device_id");
    return layout;
}

void CloneInfo::assign(const Record& record)
{
    layout().apply(record, this);
}
