#pragma once

#include <QString>

class VelstrandAPI;

/// Replaces the running program by the build in the archive at @p url and restarts it: the archive is
/// downloaded and unpacked below "tmp" of the working directory, "Velstrand.exe" there is parked as
/// "temp.dat" and the archive's "velstrand/Velstrand.exe" takes its place. Blocks for the length of the
/// download; runs on a worker. A failure before the swap leaves everything running; after it the program
/// always restarts and the event loop is asked to end.
void installNewVersion(const VelstrandAPI& api, int version, const QString& url);
