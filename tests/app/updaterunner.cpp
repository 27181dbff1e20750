// Installs one update as a running manager does: updaterunner VERSION URL. Logs to stderr. If KILL_AT is set
// in the environment, the process kills itself as soon as a logged line contains that text. Exit code 3 means
// that the update ended without a restart.

#include "api/SelfUpdate.h"
#include "api/VelstrandAPI.h"

#include <QCoreApplication>
#include <QtConcurrent>

#include <csignal>
#include <cstdio>

int main(int argc, char* argv[])
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
        static const QString killAt = qEnvironmentVariable("KILL_AT");
        std::fprintf(stderr, "%s\n", qUtf8Printable(message));
        if (!killAt.isEmpty() && message.contains(killAt))
            std::raise(SIGKILL);
    });
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QtConcurrent::run([&] {
        if (!installNewVersion(VelstrandAPI(), arguments.value(1).toUInt(), arguments.value(2)))
            QMetaObject::invokeMethod(&application, [] { QCoreApplication::exit(3); }, Qt::QueuedConnection);
    });
    return QCoreApplication::exec();
}
