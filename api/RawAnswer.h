#pragma once

#include <memory>
#include <string_view>

/// The body of an answer as the service sent it, decoded but not read. Copies share the bytes.
struct RawAnswer {
    std::string_view bytes;
    /// Keeps the bytes.
    std::shared_ptr<const void> body;
};
