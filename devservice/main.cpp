#include "devservice/DevService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

#include <csignal>
#include <cstdlib>
#include <limits>
#include <utility>

using devservice::Fault;

namespace {

int fail(const QString& message)
{
    QTextStream(stderr) << "velstrand-devservice: " << message << '\n';
    return 1;
}

/// Only for bad arguments, before anything runs that would have to be shut down.
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
                      .arg(name, QString::number(lowest), QString::number(highest), parser.value(name)));
    }
    return value;
}

constexpr std::pair<const char*, Fault> faultNames[] = {
    {"hang", Fault::Hang},        {"cut", Fault::Cut},
    {"not-json", Fault::NotJson}, {"wrong-shape", Fault::WrongShape},
    {"no-body", Fault::NoBody},   {"http-error", Fault::HttpError},
    {"refuse", Fault::Refuse},    {"drop-afterwards", Fault::DropAfterwards},
};

QString faultList()
{
    QStringList names;
    for (const auto& name : faultNames) {
        names.append(name.first);
    }
    return names.join(", ");
}

QPair<QString, Fault> parseFault(const QString& text)
{
    const int equals = text.lastIndexOf('=');
    for (const auto& fault : faultNames) {
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
    result.devices = number(parser, "devices", 0, 100000);
    result.clones = number(parser, "clones", 0, 1000000);
    result.latencyMs = number(parser, "latency", 0, 600000);
    result.port = number(parser, "port", 0, 65535);
    result.packageFile = parser.value("package");
    result.packageVersion = number(parser, "package-version", 0, any);
    result.packageBytesPerSecond = number(parser, "package-rate", 0, any);
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
    parser.setApplicationDescription("A local stand-in for the farm's service, until it is interrupted.");
    const QCommandLineOption help = parser.addHelpOption();
    parser.addOptions({
        {"devices", "Devices of the sample farm.", "N", "40"},
        {"clones", "Clones of the sample farm.", "N", "1500"},
        {"latency", "Round trip in milliseconds.", "MS", "0"},
        {"port", "Port to listen on; 0 for any.", "N", "0"},
        {"package", "Update package to offer.", "FILE"},
        {"package-version", "Build number that the service offers; 0 for this source's own.", "N", "0"},
        {"package-rate", "Rate of package downloads; 0 for no limit.", "BYTES_PER_S", "0"},
        {"fault", "What goes wrong for a path: " + faultList() + '.', "PATH=NAME"},
        {"env-file", "File to write the environment of a client to.", "FILE"},
    });
    if (!parser.parse(application.arguments())) {
        failUsage(parser.errorText());
    }
    if (parser.isSet(help)) {
        parser.showHelp();
    }
    if (!parser.positionalArguments().isEmpty()) {
        failUsage("unexpected argument: " + parser.positionalArguments().constFirst());
    }

    QVector<QPair<QString, Fault>> faults;
    const QStringList faultTexts = parser.values("fault");
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
    const QString environment = parser.value("env-file");
    if (!environment.isEmpty() && !writeEnvironment(environment, service)) {
        return fail("cannot write " + environment);
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
