#pragma once

#include "models/Property.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

/// Gives the token of the moment. May be called on any thread, and after the UserInfo is gone.
using TokenReader = std::function<QString()>;

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

    QString token() const;
    /// An empty token ends the validated state too, so that the next one has to pass the service.
    void setToken(const QString& token);
    TokenReader tokenReader() const;

    /// The FarmProfile objects, owned by the user.
    const QList<QObject*>& farmProfiles() const { return m_farmProfiles; }

    /// Applies the service's answer about the token. With a token in it the user is validated and takes the
    /// fields that the answer holds; farm profiles are replaced as a whole. Without one the answer is a
    /// rejection: the token is cleared (see setToken()), nothing else changes, and the result is false.
    bool applyInfo(const QJsonObject& answer);

    /// Appends a farm profile that is not saved yet, under the first free name "Profile-0", "Profile-1", ...
    Q_INVOKABLE void createTempProfile();

signals:
    void tokenChanged();
    void farmProfilesChanged();

private:
    struct SharedToken;

    void replaceFarmProfiles(const QVariantMap& profiles);

    // Written by the UI thread, read by any.
    std::shared_ptr<SharedToken> m_token;
    QList<QObject*> m_farmProfiles;
};
