#pragma once

#include "toolkit/HttpText.h"
#include "toolkit/Object.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace toolkit {

/// A multipart request that is built field by field and sent with HttpClient::SynchronousRequest.
/// Used on one thread. Text is UTF-8. A header, or the name of a field, that holds CR, LF or NUL is refused
/// when the request is sent.
class HttpRequest : public Object<HttpRequest>
{
public:
    /// Only "POST" can be sent.
    void SetVerb(std::string verb) { m_verb = std::move(verb); }
    /// The path on the server, beginning with "/".
    void Path(std::string path) { m_path = std::move(path); }
    /// Only "multipart/form-data" can be sent.
    void SetContentType(std::string type) { m_contentType = std::move(type); }
    /// Appends one header line; lines are sent in the order in which they were added.
    void AddHeader(std::string name, std::string value)
    {
        m_headers.emplace_back(std::move(name), std::move(value));
    }
    /// Appends one text field to the form; the value may have several lines.
    void AddParam(std::string name, std::string value)
    {
        m_params.emplace_back(std::move(name), std::move(value));
    }
    /// Appends one file part. The file is read while the request is sent, so that memory does not grow with
    /// it. False, with LastErrorText set, when the file is missing, is no regular file or cannot be read.
    bool AddFileForUpload(std::string name, std::filesystem::path file);

private:
    friend class HttpClient;
    friend class Multipart;

    struct FilePart {
        std::string name;
        std::filesystem::path path;
    };

    std::string m_verb = "GET";
    std::string m_path = "/";
    std::string m_contentType;
    HeaderList m_headers;
    std::vector<std::pair<std::string, std::string>> m_params;
    std::vector<FilePart> m_files;
};

} // namespace toolkit
