#include "app/AppIO.h"
#include "app/Application.h"
#include "app/QmlTypes.h"
#include "models/AppModel.h"

#include <QFile>
#include <QGuiApplication>
#include <QIcon>
#include <QLocale>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QTranslator>

namespace {

/// Installs a translation for the first of the user's languages that has one.
void installTranslation(QTranslator* translator)
{
    const QStringList languages = QLocale::system().uiLanguages();
    for (const QString& language : languages) {
        const QString baseName = QStringLiteral("Velstrand_") + QLocale(language).name();
        if (translator->load(QStringLiteral(":/i18n/") + baseName)) {
            QCoreApplication::installTranslator(translator);
            return;
        }
    }
}

} // namespace

int main(int argc, char* argv[])
{
    // The previous build, set aside by the self-update.
    QFile::remove(QStringLiteral("temp.dat"));

    // The common texture takes the icons; as wide as the window, as is the default, its memory holds up the
    // first frame.
    for (const char* const size : {"QSG_ATLAS_WIDTH", "QSG_ATLAS_HEIGHT"})
        qputenv(size, "512");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, true);
    QGuiApplication application(argc, argv);
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/images/velstrand_icon.png")));
    QTranslator translator;
    installTranslation(&translator);

    auto* const controller = new Application(&application);
    auto* const io = new AppIO(&application);
    controller->setAppIO(io);

    registerQmlTypes();
    QQmlApplicationEngine engine;
    // It has no parent, and the engine must never delete it.
    QQmlEngine::setObjectOwnership(AppModel::instance(), QQmlEngine::CppOwnership);
    engine.rootContext()->setContextProperty(QStringLiteral("AppManager"), controller);
    engine.rootContext()->setContextProperty(QStringLiteral("AppModel"), AppModel::instance());
    engine.rootContext()->setContextProperty(QStringLiteral("AppIO"), io);

    const QUrl url(QStringLiteral("qrc:/qml/main.qml"));
    QObject::connect(
        &engine, &QQmlApplicationEngine::objectCreated, &application,
        [url](QObject* object, const QUrl& objectUrl) {
            if (!object && objectUrl == url)
                QCoreApplication::exit(-1);
        },
        Qt::QueuedConnection);
    engine.load(url);
    return QGuiApplication::exec();
}
