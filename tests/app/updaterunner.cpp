// Installs one update like a running manager does: updaterunner VERSION URL. Logs to stderr. With KILL_AT in
// the environment it dies, unwarned, as soon as a line that contains that text is logged. Exit code 3 means
// that the update ended without a restart.

#include "api/SelfUpdate.h"
#include "api/VelstrandAPI.h"

#include <QCoreApplication>
#include <QThread>
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
        installNewVersion(VelstrandAPI(), arguments.value(1).toUInt(), arguments.value(2));
        QThread::msleep(300); // a restart ends the event loop before
        QMetaObject::invokeMethod(
            &application, [] { QCoreApplication::exit(3); }, Qt::QueuedConnection);
    });
    return QCoreApplication::exec();
}
