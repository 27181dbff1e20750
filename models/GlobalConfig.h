#pragma once

#include "models/Property.h"

#include <QJsonObject>
#include <QString>

/// The service-wide record of versions and download paths. Versions are texts of digits.
class GlobalConfig : public QObject
{
    Q_OBJECT
    NOTIFYING_PROPERTY(QString, vsAndroidAppVersion, setVsAndroidAppVersion);
    NOTIFYING_PROPERTY(QString, vsAndroidAppPath, setVsAndroidAppPath);
    NOTIFYING_PROPERTY(QString, facebookAppVersion, setFacebookAppVersion);
    NOTIFYING_PROPERTY(QString, vsManagerAppVersion, setVsManagerAppVersion);
    NOTIFYING_PROPERTY(QString, vsManagerAppPath, setVsManagerAppPath);
    NOTIFYING_PROPERTY(QString, vsDefinitionsVersion, setVsDefinitionsVersion);

public:
    using QObject::QObject;

    /// Not for QML: the farm's shared secret for its file store.
    const QString& dropboxToken() const { return m_dropboxToken; }
    void setDropboxToken(const QString& token) { m_dropboxToken = token; }

    /// Reads the keys that are present in @p object.
    void fromJson(const QJsonObject& object);
    /// Only the values that are not empty, so that the service keeps the others.
    QJsonObject toJson() const;

private:
    QString m_dropboxToken;
};
