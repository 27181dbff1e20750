#include "toolkit/HttpRequest.h"

#include <fstream>

namespace toolkit {

void HttpRequest::SetVerb(std::string verb)
{
    if (IsValid())
        m_verb = std::move(verb);
}

void HttpRequest::Path(std::string path)
{
    if (IsValid())
        m_path = std::move(path);
}

void HttpRequest::SetContentType(std::string contentType)
{
    if (IsValid())
        m_contentType = std::move(contentType);
}

void HttpRequest::AddHeader(std::string name, std::string value)
{
    if (IsValid())
        m_headers.emplace_back(std::move(name), std::move(value));
}

void HttpRequest::AddParam(std::string name, std::string value)
{
    if (IsValid())
        m_params.emplace_back(std::move(name), std::move(value));
}

bool HttpRequest::AddFileForUpload(std::string name, std::filesystem::path file)
try {
    if (!IsValid()) {
        m_lastError = kNotValid;
        return false;
    }
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        m_lastError = "There is no file " + file.u8string();
        return false;
    }
    if (!std::ifstream(file, std::ios::binary)) {
        m_lastError = "Cannot read the file " + file.u8string();
        return false;
    }
    m_files.push_back({std::move(name), std::move(file)});
    m_lastError.clear();
    return true;
} catch (const std::exception& failure) {
    m_lastError = failure.what();
    return false;
}

} // namespace toolkit
