#pragma once

#include "toolkit/HttpClient.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace toolkit {

class Multipart;

/// What is sent, and where the body of the answer goes. Pointers must outlive the transfer.
struct TransferOptions {
    /// Absolute, http or https.
    std::string url;
    HeaderList headers;
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

/// Carries out one HTTP exchange on a leased session. Blocks until the answer is whole; throws a
/// std::exception when it is not, or when the exchange cannot even be prepared. @p status becomes the HTTP
/// status of the last response, also of one that failed; it is left alone when there was none.
void RunTransfer(const TransferOptions& options, int* status);

} // namespace toolkit
