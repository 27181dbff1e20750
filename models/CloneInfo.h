#pragma once

#include "models/ListRecord.h"
#include "models/Property.h"

/// One automated account of the farm.
class CloneInfo : public ListRecord
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
    Q_PROPERTY(bool selected READ selected WRITE setSelected NOTIFY selectedChanged)
    Q_PROPERTY(bool filtered READ filtered WRITE setFiltered NOTIFY filteredChanged)
    NOTIFYING_PROPERTY(QString, farmProfile, setFarmProfile);
    Q_PROPERTY(int place READ place NOTIFY placeChanged)

public:
    using ListRecord::ListRecord;

    /// What a clone's record keeps, and under which keys the service sends it.
    static const RecordLayout& layout();
    void assign(const Record& record) override;
};
