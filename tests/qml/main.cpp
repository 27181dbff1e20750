#include "app/AppIO.h"
#include "app/Application.h"
#include "app/QmlTypes.h"
#include "models/AppModel.h"
#include "tests/qml/TestService.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QtQuickTest>

/// Gives every engine of the test run what the program gives its own, and the service behind it.
class SceneSetup : public QObject
{
    Q_OBJECT

public slots:
    void applicationAvailable()
    {
        // First of all: the controller reads the service's address from the environment.
        auto* const application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
        registerQmlTypes();
        m_service = new TestService(application);
        m_controller = new Application(application);
        m_io = new AppIO(application);
        m_controller->setAppIO(m_io);
    }

    void qmlEngineAvailable(QQmlEngine* engine)
    {
        m_service->watch(engine);
        QQmlContext* const context = engine->rootContext();
        context->setContextProperty(QStringLiteral("AppManager"), m_controller);
        context->setContextProperty(QStringLiteral("AppModel"), AppModel::instance());
        context->setContextProperty(QStringLiteral("AppIO"), m_io);
        context->setContextProperty(QStringLiteral("Service"), m_service);
    }

private:
    TestService* m_service = nullptr;
    Application* m_controller = nullptr;
    AppIO* m_io = nullptr;
};

QUICK_TEST_MAIN_WITH_SETUP(velstrand, SceneSetup)

#include "main.moc"
