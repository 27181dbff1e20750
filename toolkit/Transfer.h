#pragma once

#include "toolkit/HttpClient.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace toolkit {

class Multipart;

/// What is sent, and where the body of the answer goes. Pointers must outlive the transfer.
struct TransferOptions {
    /// Absolute, http or https.
    std::string url;
    /// Whole header lines in libcurl's notation, free of CR, LF and NUL.
    std::vector<std::string> headers;
    /// The body of a POST: one of the two; none of them for a GET.
    const std::string* text = nullptr;
    Multipart* form = nullptr;
    Exchange exchange = Exchange::Write;
    /// For a GET of a file: redirects are followed, an HTTP error fails, and nothing is decoded.
    bool download = false;
    /// Bound on the body, counted decoded.
    std::uint64_t maxBytes = 0;
    /// Takes a piece of the body; false ends the transfer.
    std::function<bool(std::string_view)> sink;

    long connectTimeoutMs = 0;
    long readTimeoutMs = 0;
    std::filesystem::path trustAnchors;
};

struct TransferResult {
    /// HTTP status of the last response; 0 when there was none.
    int status = 0;
    /// Why there is no whole answer; empty when there is one.
    std::string error;
};

/// Carries out one HTTP exchange on a leased session. Blocks until the answer is whole, or failed. Throws
/// a std::exception when the exchange cannot even be prepared.
TransferResult RunTransfer(const TransferOptions& options);

} // namespace toolkit
