#include "tests/support/ServiceFixture.h"

#include <QFile>
#include <QSettings>

ServiceFixture::ServiceFixture(const devservice::Options& options) : m_service(options)
{
    if (!m_service.start()) {
        qFatal("The development service does not start: %s", qPrintable(m_service.errorText()));
    }
    qputenv("VELSTRAND_SERVICE_URL", m_service.origin().toUtf8());
    qputenv("VELSTRAND_CA_FILE", QFile::encodeName(m_service.caFile()));
    renewSettings();
}

void ServiceFixture::renewSettings()
{
    auto folder = std::make_unique<QTemporaryDir>();
    if (!folder->isValid()) {
        qFatal("No folder for the settings: %s", qPrintable(folder->errorString()));
    }
    // The variable is for processes that a test starts; this one may have read it already.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder->path()));
    for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope}) {
        QSettings::setPath(QSettings::NativeFormat, scope, folder->path());
    }
    m_settings = std::move(folder);
}
