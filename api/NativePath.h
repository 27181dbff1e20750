#pragma once

#include <QString>

#include <filesystem>

/// A file name in the form that the file system expects: wide on Windows, UTF-8 elsewhere.
inline std::filesystem::path nativePath(const QString& path)
{
    return std::filesystem::u8path(path.toStdString());
}
