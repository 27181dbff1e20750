#pragma once

#include "devservice/DevService.h"

namespace devservice {

extern const QString sampleAdminToken;
extern const QString sampleUserToken;

/// A believable farm of that size; the same one each time but for the times, which run back from now.
/// @p managerVersion is the build of the manager that the configuration offers, at @p managerPath.
Farm makeSampleFarm(int devices, int clones, int managerVersion, const QString& managerPath);

} // namespace devservice
