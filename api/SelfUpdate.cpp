#include "api/SelfUpdate.h"

#include "api/NativePath.h"
#include "api/VelstrandAPI.h"
#include "logging/Log.h"
#include "toolkit/FreshFile.h"
#include "toolkit/ZipArchive.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace fs = std::filesystem;

namespace {

const fs::path kExecutable = "Velstrand.exe";
const fs::path kParked = "temp.dat";

const char* outcome(bool done)
{
    return done ? "success" : "false";
}

/// Moves the running executable aside, but never over one that an earlier update has parked.
bool parkExecutable()
{
    std::error_code error;
    if (fs::symlink_status(kParked, error).type() != fs::file_type::not_found)
        return false;
    fs::rename(kExecutable, kParked, error);
    return !error;
}

/// Moves the unpacked executable into place, so that the folder lacks one only for a moment; copies it only
/// if the temporary folder is on another volume.
bool placeExecutable(const fs::path& unpacked)
{
    std::error_code error;
    if (toolkit::IsLink(unpacked) || !fs::is_regular_file(unpacked, error))
        return false;
    fs::rename(unpacked, kExecutable, error);
    if (!error)
        return true;

    fs::path partial = kExecutable;
    partial += ".part";
    // A copy would write through a link, so whatever an earlier attempt has left there must go.
    toolkit::RemoveAll(partial);
    error.clear();
    fs::copy_file(unpacked, partial, error);
    if (!error)
        fs::rename(partial, kExecutable, error);
    if (error)
        toolkit::RemoveAll(partial);
    return !error;
}

} // namespace

bool installNewVersion(const VelstrandAPI& api, uint version, const QString& url)
{
    LOG_D << "new version: " << version << " path: " << url;

    const QString folder = QDir::currentPath() + QStringLiteral("/tmp");
    if (!QDir(folder).exists() && !QDir().mkdir(folder)) {
        LOG_D << "Create tmp folder failed!";
        return false;
    }
    const QString archive = folder + QStringLiteral("/velstrand_%1.zip").arg(version);
    const QString unpacked = folder + QStringLiteral("/velstrand");
    const QString newExecutable = unpacked + QStringLiteral("/Velstrand.exe");

    // An interrupted attempt may have left anything under these names.
    toolkit::RemoveAll(nativePath(archive));
    toolkit::RemoveAll(nativePath(unpacked));

    if (!api.downloadFile(url, archive))
        return false;
    LOG_D << "Download new version successful!";

    toolkit::ZipArchive zip;
    if (!zip.OpenZip(nativePath(archive)) || zip.Unzip(nativePath(folder)) < 0) {
        LOG_D << QString::fromStdString(zip.LastErrorText());
        return false;
    }
    QMessageLogger().debug() << "[D][" << __func__ << "]Unzip success!";

    if (QFileInfo::exists(newExecutable)) {
        if (!parkExecutable())
            LOG_D << newExecutable << " don't exist";
        else if (!placeExecutable(nativePath(newExecutable)))
            LOG_D << "Copy new bin failed!";
    }

    LOG_D << "delete " << unpacked << " : " << outcome(toolkit::RemoveAll(nativePath(unpacked)));
    zip.CloseZip();
    LOG_D << "delete " << archive << " : " << outcome(toolkit::RemoveAll(nativePath(archive)));

    const QString executable = QDir::current().absoluteFilePath(QStringLiteral("Velstrand.exe"));
    QProcess::startDetached(executable, QStringList(), QDir::currentPath());
    // The event loop runs on another thread, so it is asked through its queue.
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit, Qt::QueuedConnection);
    return true;
}
