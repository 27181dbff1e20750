#pragma once

#include <QString>

class VelstrandAPI;

/// Replaces the running program with the build in the archive at @p url and restarts it. The archive is
/// unpacked below "tmp" in the working directory; "Velstrand.exe" is parked as "temp.dat", and the archive's
/// "velstrand/Velstrand.exe" takes its place. Blocks for the whole download; meant for a worker. Returns
/// false if it fails before the swap, which leaves the program as it was. From the swap on the program always
/// restarts: the event loop is asked to end, and the result is true.
bool installNewVersion(const VelstrandAPI& api, uint version, const QString& url);
