#pragma once

#include "devservice/Contract.h"

namespace devservice {

constexpr char sampleAdminToken[] = "admin-7c1e9a42d5";
constexpr char sampleUserToken[] = "user-2b8d5f10e7";

/// A believable farm of that size; the same one each time but for the times, which run back from now.
/// @p managerVersion is the build of the manager that the configuration offers, at @p managerPath.
Farm makeSampleFarm(int devices, int clones, int managerVersion, const QString& managerPath);

} // namespace devservice
