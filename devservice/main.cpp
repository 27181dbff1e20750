#include "devservice/DevService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

#include <csignal>
#include <cstdlib>
#include <limits>

namespace {

int fail(const QString& message)
{
    QTextStream(stderr) << "velstrand-devservice: " << message << '\n';
    return 1;
}

/// Only for bad arguments: before anything has started that would have to be ended.
[[noreturn]] void failUsage(const QString& message)
{
    fail(message);
    std::exit(2);
}

int number(const QCommandLineParser& parser, const QString& name, int lowest, int highest)
{
    bool ok = false;
    const int value = parser.value(name).toInt(&ok);
    if (!ok || value < lowest || value > highest) {
        failUsage(QStringLiteral("--%1 must be a whole number from %2 to %3, not \"%4\"")
                      .arg(name)
                      .arg(lowest)
                      .arg(highest)
                      .arg(parser.value(name)));
    }
    return value;
}

const QVector<QPair<QString, devservice::Fault>>& faultNames()
{
    using devservice::Fault;
    static const QVector<QPair<QString, Fault>> names = {
        {QStringLiteral("hang"), Fault::Hang},
        {QStringLiteral("cut"), Fault::Cut},
        {QStringLiteral("not-json"), Fault::NotJson},
        {QStringLiteral("wrong-shape"), Fault::WrongShape},
        {QStringLiteral("no-body"), Fault::NoBody},
        {QStringLiteral("http-error"), Fault::HttpError},
        {QStringLiteral("refuse"), Fault::Refuse},
        {QStringLiteral("drop-afterwards"), Fault::DropAfterwards},
    };
    return names;
}

QString faultList()
{
    QStringList names;
    for (const auto& name : faultNames()) {
        names.append(name.first);
    }
    return names.join(QStringLiteral(", "));
}

QPair<QString, devservice::Fault> parseFault(const QString& text)
{
    const int equals = text.lastIndexOf('=');
    for (const auto& fault : faultNames()) {
        if (equals > 0 && text.startsWith('/') && fault.first == text.mid(equals + 1)) {
            return {text.left(equals), fault.second};
        }
    }
    failUsage(
        QStringLiteral("--fault must be PATH=NAME with NAME one of %1, not \"%2\"").arg(faultList(), text));
}

devservice::Options options(const QCommandLineParser& parser)
{
    constexpr int any = std::numeric_limits<int>::max();
    devservice::Options result;
    result.devices = number(parser, QStringLiteral("devices"), 0, 100000);
    result.clones = number(parser, QStringLiteral("clones"), 0, 1000000);
    result.latencyMs = number(parser, QStringLiteral("latency"), 0, 600000);
    result.port = number(parser, QStringLiteral("port"), 0, 65535);
    result.packageFile = parser.value(QStringLiteral("package"));
    const QFileInfo package(result.packageFile);
    if (parser.isSet(QStringLiteral("package")) && !(package.isFile() && package.isReadable())) {
        failUsage(QStringLiteral("--package names no readable file: ") + result.packageFile);
    }
    result.packageVersion = number(parser, QStringLiteral("package-version"), 0, any);
    result.packageBytesPerSecond = number(parser, QStringLiteral("package-rate"), 0, any);
    return result;
}

bool writeEnvironment(const QString& path, const devservice::DevService& service)
{
    QSaveFile file(path);
    const QString text =
        QStringLiteral("VELSTRAND_SERVICE_URL=%1\nVELSTRAND_CA_FILE=%2\n"
                       "VELSTRAND_ADMIN_TOKEN=%3\nVELSTRAND_USER_TOKEN=%4\n")
            .arg(service.origin(), service.caFile(), service.adminToken(), service.userToken());
    return file.open(QIODevice::WriteOnly) && file.write(text.toLocal8Bit()) > 0 && file.commit();
}

} // namespace

int main(int argc, char* argv[])
{
    // Blocked before the first thread starts, so that all of them leave these signals to sigwait().
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A local stand-in for the farm's service, until it is interrupted."));
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("devices"), QStringLiteral("Devices of the sample farm."), QStringLiteral("N"),
         QStringLiteral("40")},
        {QStringLiteral("clones"), QStringLiteral("Clones of the sample farm."), QStringLiteral("N"),
         QStringLiteral("1500")},
        {QStringLiteral("latency"), QStringLiteral("Round trip in milliseconds."), QStringLiteral("MS"),
         QStringLiteral("0")},
        {QStringLiteral("port"), QStringLiteral("Port to listen on; 0 for any."), QStringLiteral("N"),
         QStringLiteral("0")},
        {QStringLiteral("package"), QStringLiteral("Update package to offer."), QStringLiteral("FILE")},
        {QStringLiteral("package-version"),
         QStringLiteral("Build number that the service offers; 0 for this source's own."),
         QStringLiteral("N"), QStringLiteral("0")},
        {QStringLiteral("package-rate"), QStringLiteral("Rate of package downloads; 0 for no limit."),
         QStringLiteral("BYTES_PER_S"), QStringLiteral("0")},
        {QStringLiteral("fault"), QStringLiteral("What goes wrong for a path: ") + faultList() + '.',
         QStringLiteral("PATH=NAME")},
        {QStringLiteral("env-file"), QStringLiteral("File to write the environment of a client to."),
         QStringLiteral("FILE")},
    });
    if (!parser.parse(application.arguments())) {
        failUsage(parser.errorText());
    }
    if (parser.isSet(help)) {
        parser.showHelp();
    }
    if (!parser.positionalArguments().isEmpty()) {
        failUsage(QStringLiteral("unexpected argument: ") + parser.positionalArguments().first());
    }

    QVector<QPair<QString, devservice::Fault>> faults;
    const QStringList faultTexts = parser.values(QStringLiteral("fault"));
    for (const QString& text : faultTexts) {
        faults.append(parseFault(text));
    }
    devservice::DevService service(options(parser));
    for (const auto& fault : qAsConst(faults)) {
        service.setFault(fault.first, fault.second);
    }
    if (!service.start()) {
        return fail(service.errorText());
    }
    const QString environment = parser.value(QStringLiteral("env-file"));
    if (!environment.isEmpty() && !writeEnvironment(environment, service)) {
        return fail(QStringLiteral("cannot write ") + environment);
    }
    QTextStream(stdout) << "origin:      " << service.origin() << "\nCA file:     " << service.caFile()
                        << "\nadmin token: " << service.adminToken()
                        << "\nuser token:  " << service.userToken() << Qt::endl;

    int signal = 0;
    sigwait(&stopSignals, &signal);
    if (!environment.isEmpty()) {
        QFile::remove(environment);
    }
    return 0;
}
