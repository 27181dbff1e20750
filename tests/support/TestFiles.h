#pragma once

#include <QByteArray>
#include <QDir>
#include <QFileInfo>

/// What the file holds; "(no file)" where there is none.
inline QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("(no file)");
}

/// Writes the file anew, its folder if need be, and returns its path; ends the process when that fails.
inline QString writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("Cannot write %s", qPrintable(path));
    return path;
}
