#pragma once

#include <string>

namespace toolkit
{

/// An owned buffer of bytes: filled from a response, opened as an archive.
struct BinaryData {
    std::string bytes;
};

} // namespace toolkit
