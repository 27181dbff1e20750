#include "models/FarmProfile.h"

#include "models/FarmActionConfig.h"
#include "models/Json.h"

namespace {

const char* const kActionNames[] = {
    "facebook_feed",        "facebook_feed_like",          "facebook_watch",
    "facebook_watch_like",  "facebook_add_suggest_friend", "facebook_confirm_friend",
    "facebook_post_status", "facebook_post_status_image",  "facebook_add_avatar_frame",
    "facebook_react_story", "facebook_share_random_video", "facebook_share_create_profile_page",
};

} // namespace

FarmProfile::FarmProfile(const QString& profileName, QObject* parent)
    : QObject(parent), m_profileName(profileName)
{
    for (const char* name : kActionNames)
        m_farmActions.append(new FarmActionConfig(QString::fromLatin1(name), this));
}

void FarmProfile::readActions(const QVariantMap& actions)
{
    for (QObject* object : qAsConst(m_farmActions)) {
        auto* action = static_cast<FarmActionConfig*>(object);
        const auto percent = actions.constFind(action->actionName());
        if (percent == actions.cend())
            continue;
        action->setEnable(true);
        action->setRandomPercent(json::integer(*percent));
    }
}

QJsonObject FarmProfile::toJson() const
{
    QJsonObject actions;
    for (const QObject* object : m_farmActions) {
        const auto* action = static_cast<const FarmActionConfig*>(object);
        if (action->enable())
            actions.insert(action->actionName(), action->randomPercent());
    }
    return {{QStringLiteral("name"), profileName()}, {QStringLiteral("farm_action_config"), actions}};
}
