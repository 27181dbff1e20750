#include "app/VersionCheck.h"

#include "api/APIManager.h"
#include "api/SelfUpdate.h"
#include "api/VelstrandAPI.h"
#include "app/BuildNumber.h"
#include "models/AppModel.h"

#include <QJsonDocument>
#include <QTimer>
#include <QtConcurrent>

namespace {

constexpr int kIntervalMs = 10000;

/// Installs the build that the service offers if it is newer than this one; whether the program restarts.
bool update(const VelstrandAPI& api, const QString& token)
{
    QString text;
    if (!api.getGlobalConfig(token, &text))
        return false;
    GlobalConfig config;
    config.fromJson(QJsonDocument::fromJson(text.toUtf8()).object());
    const uint version = config.vsManagerAppVersion().toUInt();
    return version > uint(kBuildNumber) && installNewVersion(api, version, config.vsManagerAppPath());
}

} // namespace

VersionCheck::VersionCheck(QObject* parent) : QObject(parent), m_timer(new QTimer(this))
{
    connect(m_timer, &QTimer::timeout, this, &VersionCheck::check);
    m_timer->start(kIntervalMs);
}

void VersionCheck::check()
{
    // One for the whole process: two checks must never overlap. Only the UI thread touches it.
    static QFuture<bool> latest;
    if (latest.isRunning())
        return;
    if (latest.resultCount() > 0 && latest.result()) {
        m_timer->stop(); // the process is about to end
        return;
    }
    latest = QtConcurrent::run(
        [api = APIManager::instance()->api(), token = AppModel::instance()->userInfo()->token()] {
            return update(*api, token);
        });
}
