#pragma once

#include "toolkit/Object.h"

#include <string>

namespace toolkit {

/// An owned buffer of bytes: filled from a response, opened as an archive.
class BinaryData : public Object<BinaryData>
{
public:
    std::string bytes;
};

} // namespace toolkit
