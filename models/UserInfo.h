#pragma once

#include "models/Property.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QVariantMap>

/// The signed-in user, or the token that is about to become one. Lives on the UI thread.
class UserInfo : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString token READ token WRITE setToken NOTIFY tokenChanged)
    NOTIFYING_PROPERTY(QString, fullName, setFullName);
    /// The service has accepted the token.
    NOTIFYING_PROPERTY(bool, isValidated, setIsValidated);
    /// 255 is an administrator.
    NOTIFYING_PROPERTY(int, userType, setUserType);
    NOTIFYING_PROPERTY(QString, userName, setUserName);
    NOTIFYING_PROPERTY(QString, phoneNumber, setPhoneNumber);
    Q_PROPERTY(QList<QObject*> farmProfiles READ farmProfiles NOTIFY farmProfilesChanged)

public:
    explicit UserInfo(const QString& token = QString(), QObject* parent = nullptr);

    const QString& token() const { return m_token; }
    /// An empty token also clears isValidated: the next one has to be accepted by the service first.
    void setToken(const QString& token);

    /// The FarmProfile objects, owned by the user.
    const QList<QObject*>& farmProfiles() const { return m_farmProfiles; }

    /// Applies the service's answer about the token. If it holds a token, the user becomes validated and
    /// takes the fields that are present; farm profiles are replaced as a whole. Otherwise it is a rejection:
    /// the token is cleared (see setToken()), nothing else changes, and the result is false.
    bool applyInfo(const QJsonObject& answer);

    /// Appends an unsaved farm profile under the first free name of "Profile-0", "Profile-1", ...
    Q_INVOKABLE void createTempProfile();

signals:
    void tokenChanged();
    void farmProfilesChanged();

private:
    void replaceFarmProfiles(const QVariantMap& profiles);

    QString m_token;
    QList<QObject*> m_farmProfiles;
    QList<QObject*> m_replacedProfiles;
};
