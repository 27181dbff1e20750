#pragma once

#include "models/Property.h"

#include <QString>

/// One automation action of a farm profile.
class FarmActionConfig : public QObject
{
    Q_OBJECT
    NOTIFYING_PROPERTY(QString, actionName, setActionName);
    NOTIFYING_PROPERTY(bool, enable, setEnable);
    /// Percent; not clamped.
    NOTIFYING_PROPERTY(int, randomPercent, setRandomPercent);

public:
    explicit FarmActionConfig(const QString& actionName, QObject* parent = nullptr)
        : QObject(parent), m_actionName(actionName)
    {
    }
};
