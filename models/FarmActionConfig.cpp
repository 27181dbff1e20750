#include "models/FarmActionConfig.h"

FarmActionConfig::FarmActionConfig(const QString& actionName, QObject* parent)
    : QObject(parent), m_actionName(actionName)
{
}
