#pragma once

#include "toolkit/HttpRequest.h"

#include <curl/curl.h>

#include <cstdint>
#include <fstream>
#include <list>
#include <memory>
#include <string>

namespace toolkit {

using MimePtr = std::unique_ptr<curl_mime, decltype(&curl_mime_free)>;

/// The form of a multipart request while it is sent. The size of each file is taken here; what a file loses
/// afterwards ends the transfer, what it gains is not sent.
class Multipart
{
public:
    /// Opens the files. Throws std::runtime_error when one cannot be read. The request must outlive the form.
    explicit Multipart(const HttpRequest& request);

    /// The form for @p easy, reading from this object. Throws std::runtime_error when the name of a field is
    /// not allowed, or std::bad_alloc.
    MimePtr Build(CURL* easy);

    /// Why the form could not be read to its end; empty while all is well.
    std::string ReadError() const;

private:
    struct File {
        Multipart* form;
        const HttpRequest::FilePart* part;
        std::ifstream stream;
        std::uint64_t left;
    };

    static std::size_t Read(char* buffer, std::size_t size, std::size_t count, void* file) noexcept;

    const HttpRequest& m_request;
    /// A list, since libcurl holds pointers to the elements.
    std::list<File> m_files;
    /// What could not be read to its end.
    const HttpRequest::FilePart* m_cutShort = nullptr;
};

} // namespace toolkit
