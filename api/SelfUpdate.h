#pragma once

#include <QString>

class VelstrandAPI;

/// Replaces the running program by the build in the archive at @p url and restarts it: the archive is
/// downloaded and unpacked below "tmp" of the working directory, "Velstrand.exe" there is parked as
/// "temp.dat" and the archive's "velstrand/Velstrand.exe" takes its place. Blocks for the length of the
/// download; runs on a worker. A failure before the swap leaves everything running: false. From the swap on
/// the program always restarts and the event loop is asked to end: true.
bool installNewVersion(const VelstrandAPI& api, uint version, const QString& url);
