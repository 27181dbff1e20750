#include "toolkit/Multipart.h"

#include "toolkit/HttpText.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace toolkit {

Multipart::Multipart(const HttpRequest& request) : m_request(request)
{
    for (const auto& part : request.m_files) {
        std::ifstream stream(part.path, std::ios::binary | std::ios::ate);
        const std::streamoff size = stream ? static_cast<std::streamoff>(stream.tellg()) : -1;
        if (size < 0 || !stream.seekg(0))
            throw std::runtime_error("Cannot read the file " + part.path.u8string());
        m_files.push_back({this, &part, std::move(stream), static_cast<std::uint64_t>(size)});
    }
}

MimePtr Multipart::Build(CURL* easy)
{
    const auto require = [](bool done) {
        if (!done)
            throw std::bad_alloc();
    };
    MimePtr mime(curl_mime_init(easy), &curl_mime_free);
    require(mime != nullptr);
    const auto add = [&](const std::string& name) {
        if (BreaksLine(name))
            throw std::runtime_error("The name of a form field holds a line break or a NUL");
        curl_mimepart* const part = curl_mime_addpart(mime.get());
        require(part && curl_mime_name(part, name.c_str()) == CURLE_OK);
        return part;
    };
    for (const auto& [name, value] : m_request.m_params)
        require(curl_mime_data(add(name), value.data(), value.size()) == CURLE_OK);
    for (File& file : m_files) {
        curl_mimepart* const part = add(file.part->name);
        const std::string fileName = file.part->path.filename().u8string();
        require(curl_mime_filename(part, fileName.c_str()) == CURLE_OK &&
                curl_mime_type(part, "application/octet-stream") == CURLE_OK &&
                curl_mime_data_cb(part, static_cast<curl_off_t>(file.left), &Multipart::Read, nullptr,
                                  nullptr, &file) == CURLE_OK);
    }
    return mime;
}

std::string Multipart::ReadError() const
{
    return m_cutShort ? "The file " + m_cutShort->path.u8string() + " could not be read to its end"
                      : std::string();
}

std::size_t Multipart::Read(char* buffer, std::size_t size, std::size_t count, void* argument) noexcept
{
    auto& file = *static_cast<File*>(argument);
    const auto wanted = std::min<std::uint64_t>(size * count, file.left);
    if (wanted == 0)
        return 0;
    file.stream.read(buffer, static_cast<std::streamsize>(wanted));
    const auto got = static_cast<std::size_t>(file.stream.gcount());
    if (got == 0) {
        file.form->m_cutShort = file.part;
        return CURL_READFUNC_ABORT;
    }
    file.left -= got;
    return got;
}

} // namespace toolkit
