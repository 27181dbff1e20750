#include "app/AppIO.h"
#include "app/Application.h"
#include "app/QmlTypes.h"
#include "models/AppModel.h"
#include "tests/support/ServiceFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQmlError>
#include <QQmlIncubationController>
#include <QSettings>
#include <QThreadPool>
#include <QWindow>
#include <QtQuickTest>

#include <atomic>

// Where Qt tells tools of every object that comes and goes, on any thread.
extern quintptr Q_CORE_EXPORT qtHookData[];

namespace {

std::atomic<int> objects{0};

void countObjects()
{
    constexpr int addObject = 3;
    constexpr int removeObject = 4;
    qtHookData[addObject] = reinterpret_cast<quintptr>(+[](QObject*) { ++objects; });
    qtHookData[removeObject] = reinterpret_cast<quintptr>(+[](QObject*) { --objects; });
}

} // namespace

/// Gives every engine of the test run what the program gives its own, and the development service as the
/// scene's tests see it, under the name Service: its farm as plain JavaScript values, what it was asked, what
/// it does wrong; and what a test cannot see from within QML.
// clazy:excludeall=qproperty-without-notify
// Tests read the members when they need them; nothing binds to them.
class TestService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString adminToken READ adminToken CONSTANT)
    Q_PROPERTY(QString userToken READ userToken CONSTANT)
    // In the wire form, all of them read from and written to the service at once.
    Q_PROPERTY(QVariantList devices READ devices WRITE setDevices)
    Q_PROPERTY(QVariantList clones READ clones WRITE setClones)
    Q_PROPERTY(QVariantMap globalConfig READ globalConfig WRITE setGlobalConfig)
    Q_PROPERTY(QVariantMap reports READ reports WRITE setReports)

public:
    QString adminToken() { return m_fixture->adminToken(); }
    QString userToken() { return m_fixture->userToken(); }

    QVariantList devices() { return m_fixture->farm().devices.toVariantList(); }
    QVariantList clones() { return m_fixture->farm().clones.toVariantList(); }
    QVariantMap globalConfig() { return m_fixture->farm().globalConfig.toVariantMap(); }
    QVariantMap reports() { return m_fixture->farm().reports.toVariantMap(); }
    void setDevices(const QVariantList& list) { set(&Farm::devices, QJsonArray::fromVariantList(list)); }
    void setClones(const QVariantList& list) { set(&Farm::clones, QJsonArray::fromVariantList(list)); }
    void setGlobalConfig(const QVariantMap& map)
    {
        set(&Farm::globalConfig, QJsonObject::fromVariantMap(map));
    }
    void setReports(const QVariantMap& map) { set(&Farm::reports, QJsonObject::fromVariantMap(map)); }

    /// The answer to get-info for @p token; empty for a token that nobody holds.
    Q_INVOKABLE QVariantMap user(const QString& token)
    {
        return m_fixture->farm().users.value(token).toVariantMap();
    }
    Q_INVOKABLE void setUser(const QString& token, const QVariantMap& user)
    {
        auto users = m_fixture->farm().users;
        users.insert(token, QJsonObject::fromVariantMap(user));
        set(&Farm::users, users);
    }

    /// What the last definitions push brought: version, file name, size.
    Q_INVOKABLE QVariantList definitions()
    {
        const Farm farm = m_fixture->farm();
        return {farm.definitionsVersion, farm.definitionsFileName, farm.definitionsSize};
    }

    /// Answers requests to @p path with an error of the server, until clearFaults().
    Q_INVOKABLE void fail(const QString& path) { m_fixture->setFault(path, devservice::Fault::HttpError); }
    Q_INVOKABLE void clearFaults() { m_fixture->clearFaults(); }
    Q_INVOKABLE void setLatency(int ms) { m_fixture->setLatency(ms); }
    Q_INVOKABLE void clearRequests() { m_fixture->clearRequests(); }
    /// The bodies that came for @p path since clearRequests(), as objects, oldest first.
    Q_INVOKABLE QVariantList requestBodies(const QString& path)
    {
        QVariantList bodies;
        const auto requests = m_fixture->requests(path);
        for (const devservice::Request& request : requests)
            bodies.append(QJsonDocument::fromJson(request.body).object().toVariantMap());
        return bodies;
    }

    /// Back to the first minute: the sample farm without faults, nobody signed in, no farm and no
    /// configuration in the model, no stored token, no clipboard, no warnings.
    Q_INVOKABLE void reset()
    {
        m_fixture->clearFaults();
        m_fixture->setLatency(0);
        m_engine->setIncubationController(m_windowsBuilder);

        AppModel* const model = AppModel::instance();
        model->userInfo()->setToken(QString());
        // What the test before has left under way must not arrive in the next one.
        settle();
        model->userInfo()->setToken(QString());
        model->userInfo()->setUserType(0);
        model->clearFarm();
        model->setGlobalConfig(nullptr);

        QSettings(QStringLiteral("Velstrand"), QStringLiteral("Velstrand Manager")).clear();
        QGuiApplication::clipboard()->clear();
        m_fixture->setFarm(m_sampleFarm);
        m_fixture->clearRequests();
        m_warnings.clear();
    }

    /// Waits for the jobs that are under way, for what they have delivered and for what is to be deleted.
    Q_INVOKABLE void settle()
    {
        QThreadPool::globalInstance()->waitForDone(5000);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// Warnings of the QML engine since reset().
    Q_INVOKABLE QStringList warnings() const { return m_warnings; }
    /// Objects made since the start of the run less those that are gone, of the scene and all else.
    Q_INVOKABLE int objectBalance() const { return objects; }
    /// Until reset(), what views build in the background is built by buildPart() only, bit by bit.
    Q_INVOKABLE void holdBuilding() { m_engine->setIncubationController(&m_builder); }
    Q_INVOKABLE bool building() const { return m_builder.incubatingObjectCount() > 0; }
    Q_INVOKABLE void buildPart() { m_builder.incubateFor(0); }

    /// What the window that has the keyboard gets while @p key is held down: a press, then repeats.
    Q_INVOKABLE void holdKey(int key)
    {
        for (const bool repeated : {false, true, true}) {
            for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
                QKeyEvent event(type, key, Qt::NoModifier, QString(), repeated);
                if (repeated || type == QEvent::KeyPress)
                    QCoreApplication::sendEvent(QGuiApplication::focusWindow(), &event);
            }
        }
    }

    Q_INVOKABLE QString clipboardText() const { return QGuiApplication::clipboard()->text(); }

public slots:
    void applicationAvailable()
    {
        countObjects();
        registerQmlTypes();
        m_controller = new Application(qGuiApp);
        m_io = new AppIO(qGuiApp);
        m_controller->setAppIO(m_io);
    }

    void qmlEngineAvailable(QQmlEngine* engine)
    {
        m_engine = engine;
        m_windowsBuilder = engine->incubationController();
        connect(engine, &QQmlEngine::warnings, this, [this](const QList<QQmlError>& warnings) {
            for (const QQmlError& warning : warnings)
                m_warnings.append(warning.toString());
        });
        QQmlContext* const context = engine->rootContext();
        context->setContextProperty(QStringLiteral("AppManager"), m_controller);
        context->setContextProperty(QStringLiteral("AppModel"), AppModel::instance());
        context->setContextProperty(QStringLiteral("AppIO"), m_io);
        context->setContextProperty(QStringLiteral("Service"), this);
    }

private:
    using Farm = devservice::Farm;

    template <class Value>
    void set(Value Farm::* member, const Value& value)
    {
        Farm farm = m_fixture->farm();
        farm.*member = value;
        m_fixture->setFarm(farm);
    }

    static devservice::Options sizes()
    {
        devservice::Options options;
        options.devices = 12;
        options.clones = 60;
        return options;
    }

    /// There before the controller, which reads the service's address from the environment.
    ServiceFixture m_fixture{sizes()};
    const Farm m_sampleFarm = m_fixture->farm();
    Application* m_controller = nullptr;
    AppIO* m_io = nullptr;
    QQmlEngine* m_engine = nullptr;
    QQmlIncubationController* m_windowsBuilder = nullptr;
    QQmlIncubationController m_builder;
    QStringList m_warnings;
};

QUICK_TEST_MAIN_WITH_SETUP(velstrand, TestService)

#include "main.moc"
