#pragma once

#include "models/Property.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QVariantMap>

/// A named set of the twelve automation actions.
class FarmProfile : public QObject
{
    Q_OBJECT
    NOTIFYING_PROPERTY(QString, profileName, setProfileName);
    Q_PROPERTY(QList<QObject*> farmActions READ farmActions NOTIFY farmActionsChanged)
    /// Created here and not saved yet.
    NOTIFYING_PROPERTY(bool, temp, setTemp);

public:
    /// The twelve actions, all disabled, in the order in which they are shown.
    explicit FarmProfile(const QString& profileName, QObject* parent = nullptr);

    /// The FarmActionConfig objects, owned by the profile and never replaced.
    const QList<QObject*>& farmActions() const { return m_farmActions; }

    /// Enables each action that is a key of @p actions, with the value as its percentage. Unknown keys are
    /// ignored.
    void readActions(const QVariantMap& actions);
    /// The form in which the service stores it, with only the enabled actions.
    QJsonObject toJson() const;

signals:
    void farmActionsChanged();

private:
    QList<QObject*> m_farmActions;
};
