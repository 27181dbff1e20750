#include "tests/qml/TestService.h"

#include "models/AppModel.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QKeyEvent>
#include <QQmlEngine>
#include <QQmlError>
#include <QSettings>
#include <QThreadPool>
#include <QWindow>

#include <atomic>

// Where Qt tells tools of every object that comes and goes, on any thread.
extern quintptr Q_CORE_EXPORT qtHookData[];

namespace {

std::atomic<int> objectBalance{0};

void countObjects()
{
    constexpr int addObject = 3;
    constexpr int removeObject = 4;
    qtHookData[addObject] = reinterpret_cast<quintptr>(+[](QObject*) { ++objectBalance; });
    qtHookData[removeObject] = reinterpret_cast<quintptr>(+[](QObject*) { --objectBalance; });
}

devservice::Options sampleSizes()
{
    devservice::Options options;
    options.devices = 12;
    options.clones = 60;
    return options;
}

} // namespace

TestService::TestService(QObject* parent) : QObject(parent), m_fixture(sampleSizes())
{
    countObjects();
    m_sampleFarm = m_fixture->farm();
}

template <class Change>
void TestService::changeFarm(Change change)
{
    devservice::Farm farm = m_fixture->farm();
    change(&farm);
    m_fixture->setFarm(farm);
}

void TestService::setDevices(const QVariantList& devices)
{
    changeFarm([&](devservice::Farm* farm) { farm->devices = QJsonArray::fromVariantList(devices); });
}

void TestService::setClones(const QVariantList& clones)
{
    changeFarm([&](devservice::Farm* farm) { farm->clones = QJsonArray::fromVariantList(clones); });
}

void TestService::setGlobalConfig(const QVariantMap& config)
{
    changeFarm([&](devservice::Farm* farm) { farm->globalConfig = QJsonObject::fromVariantMap(config); });
}

void TestService::setReports(const QVariantMap& reports)
{
    changeFarm([&](devservice::Farm* farm) { farm->reports = QJsonObject::fromVariantMap(reports); });
}

QVariantMap TestService::user(const QString& token)
{
    return m_fixture->farm().users.value(token).toVariantMap();
}

void TestService::setUser(const QString& token, const QVariantMap& user)
{
    changeFarm([&](devservice::Farm* farm) { farm->users.insert(token, QJsonObject::fromVariantMap(user)); });
}

QVariantMap TestService::definitions()
{
    const devservice::Farm farm = m_fixture->farm();
    return {{QStringLiteral("version"), farm.definitionsVersion},
            {QStringLiteral("fileName"), farm.definitionsFileName},
            {QStringLiteral("size"), farm.definitionsSize}};
}

QVariantList TestService::requestBodies(const QString& path)
{
    QVariantList bodies;
    const QVector<devservice::Request> requests = m_fixture->requests(path);
    for (const devservice::Request& request : requests)
        bodies.append(QJsonDocument::fromJson(request.body).object().toVariantMap());
    return bodies;
}

void TestService::reset()
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

void TestService::settle()
{
    QThreadPool::globalInstance()->waitForDone(5000);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

int TestService::objectBalance() const
{
    return ::objectBalance;
}

void TestService::holdBuilding()
{
    m_engine->setIncubationController(&m_builder);
}

void TestService::holdKey(int key)
{
    QWindow* const window = QGuiApplication::focusWindow();
    for (const bool repeated : {false, true, true}) {
        for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
            QKeyEvent event(type, key, Qt::NoModifier, QString(), repeated);
            if (repeated || type == QEvent::KeyPress)
                QCoreApplication::sendEvent(window, &event);
        }
    }
}

QString TestService::clipboardText() const
{
    return QGuiApplication::clipboard()->text();
}

void TestService::watch(QQmlEngine* engine)
{
    m_engine = engine;
    m_windowsBuilder = engine->incubationController();
    connect(engine, &QQmlEngine::warnings, this, [this](const QList<QQmlError>& warnings) {
        for (const QQmlError& warning : warnings)
            m_warnings.append(warning.toString());
    });
}
