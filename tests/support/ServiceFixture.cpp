#include "tests/support/ServiceFixture.h"

#include <QFile>
#include <QSettings>

ServiceFixture::ServiceFixture(const devservice::Options& options) : m_service(options)
{
    if (!m_service.start())
        qFatal("The development service does not start: %s", qPrintable(m_service.errorText()));
    qputenv("VELSTRAND_SERVICE_URL", m_service.origin().toUtf8());
    qputenv("VELSTRAND_CA_FILE", QFile::encodeName(m_service.caFile()));
    // The variable is for processes that a test starts; this one may have read it already.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_settings.path()));
    for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope})
        QSettings::setPath(QSettings::NativeFormat, scope, m_settings.path());
}
