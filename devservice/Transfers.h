#pragma once

#include "devservice/Contract.h"

#include <httplib.h>

namespace devservice {

/// Reads the form to its end without keeping the file; true when it was a whole form.
bool readPush(const httplib::Request& request, const httplib::ContentReader& reader, DefinitionsPush* push);

/// Sends the first @p size bytes of the file, at most @p bytesPerSecond (0: no limit), and then breaks off.
httplib::ContentProvider fileProvider(const QString& path, qint64 size, int bytesPerSecond);

} // namespace devservice
