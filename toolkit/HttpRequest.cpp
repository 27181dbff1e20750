#include "toolkit/HttpRequest.h"

#include <fstream>

namespace toolkit {

bool HttpRequest::AddFileForUpload(std::string name, std::filesystem::path file)
{
    return Attempt([&] {
        std::error_code error;
        if (!std::filesystem::is_regular_file(file, error))
            throw std::runtime_error("There is no file " + file.u8string());
        if (!std::ifstream(file, std::ios::binary))
            throw std::runtime_error("Cannot read the file " + file.u8string());
        m_files.push_back({std::move(name), std::move(file)});
    });
}

} // namespace toolkit
