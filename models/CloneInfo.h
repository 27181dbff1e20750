#pragma once

#include "models/Property.h"

#include <QString>
#include <QVariantMap>

/// One automated account of the farm.
class CloneInfo : public QObject
{
    Q_OBJECT
    NOTIFYING_PROPERTY(QString, id, setId);
    NOTIFYING_PROPERTY(QString, uid, setUid);
    NOTIFYING_PROPERTY(QString, cookies, setCookies);
    NOTIFYING_PROPERTY(QString, deviceId, setDeviceId);
    NOTIFYING_PROPERTY(QString, email, setEmail);
    NOTIFYING_PROPERTY(QString, firstName, setFirstName);
    NOTIFYING_PROPERTY(QString, lastName, setLastName);
    NOTIFYING_PROPERTY(QString, mailPass, setMailPass);
    NOTIFYING_PROPERTY(QString, network, setNetwork);
    NOTIFYING_PROPERTY(QString, password, setPassword);
    NOTIFYING_PROPERTY(bool, novery, setNovery);
    /// Bit set of what the account may not do.
    NOTIFYING_PROPERTY(int, restriction, setRestriction);
    NOTIFYING_PROPERTY(QString, secretkey, setSecretkey);
    NOTIFYING_PROPERTY(int, secureFlags, setSecureFlags);
    NOTIFYING_PROPERTY(int, status, setStatus);
    NOTIFYING_PROPERTY(QString, userId, setUserId);
    NOTIFYING_PROPERTY(bool, selected, setSelected);
    /// Passes the filter in force; a new clone does.
    NOTIFYING_PROPERTY(bool, filtered, setFiltered);
    NOTIFYING_PROPERTY(QString, farmProfile, setFarmProfile);
    Q_PROPERTY(int place READ place CONSTANT)

public:
    /// A clone as one element of the service's list describes it; keys that are missing leave the defaults.
    explicit CloneInfo(const QVariantMap& record, int place, QObject* parent = nullptr);

    /// Where the clone stands in the full list, from 0: what a row shows while others are filtered away.
    int place() const { return m_place; }

private:
    int m_place;
};
