#pragma once

#include "tests/support/ServiceFixture.h"

#include <QObject>
#include <QQmlIncubationController>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

class QQmlEngine;

/// The development service as the scene's tests see it, under the name Service: its farm as plain JavaScript
/// values, what it was asked, what it does wrong; and what a test cannot see from within QML.
// clazy:excludeall=qproperty-without-notify
// Tests read the members when they need them; nothing binds to them.
class TestService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString adminToken READ adminToken CONSTANT)
    Q_PROPERTY(QString userToken READ userToken CONSTANT)
    Q_PROPERTY(QVariantList devices READ devices WRITE setDevices)
    Q_PROPERTY(QVariantList clones READ clones WRITE setClones)
    Q_PROPERTY(QVariantMap globalConfig READ globalConfig WRITE setGlobalConfig)
    Q_PROPERTY(QVariantMap reports READ reports WRITE setReports)

public:
    explicit TestService(QObject* parent = nullptr);

    QString adminToken() { return m_fixture->adminToken(); }
    QString userToken() { return m_fixture->userToken(); }

    /// Members in the wire form, all of them read from and written to the service at once.
    QVariantList devices() { return m_fixture->farm().devices.toVariantList(); }
    void setDevices(const QVariantList& devices);
    QVariantList clones() { return m_fixture->farm().clones.toVariantList(); }
    void setClones(const QVariantList& clones);
    QVariantMap globalConfig() { return m_fixture->farm().globalConfig.toVariantMap(); }
    void setGlobalConfig(const QVariantMap& config);
    QVariantMap reports() { return m_fixture->farm().reports.toVariantMap(); }
    void setReports(const QVariantMap& reports);
    /// The answer to get-info for @p token; empty for a token that nobody holds.
    Q_INVOKABLE QVariantMap user(const QString& token);
    Q_INVOKABLE void setUser(const QString& token, const QVariantMap& user);
    /// What the last definitions push brought: version, fileName, size.
    Q_INVOKABLE QVariantMap definitions();

    /// Answers requests to @p path with an error of the server, until clearFaults().
    Q_INVOKABLE void fail(const QString& path) { m_fixture->setFault(path, devservice::Fault::HttpError); }
    Q_INVOKABLE void clearFaults() { m_fixture->clearFaults(); }
    Q_INVOKABLE void setLatency(int ms) { m_fixture->setLatency(ms); }
    Q_INVOKABLE void clearRequests() { m_fixture->clearRequests(); }
    /// The bodies that came for @p path since clearRequests(), as objects, oldest first.
    Q_INVOKABLE QVariantList requestBodies(const QString& path);

    /// Back to the first minute: the sample farm without faults, nobody signed in, no farm and no
    /// configuration in the model, no stored token, no clipboard, no warnings.
    Q_INVOKABLE void reset();
    /// Waits for the jobs that are under way, for what they have delivered and for what is to be deleted.
    Q_INVOKABLE void settle();
    /// Warnings of the QML engine since reset().
    Q_INVOKABLE QStringList warnings() const { return m_warnings; }
    /// Objects made since the start of the run less those that are gone, of the scene and all else.
    Q_INVOKABLE int objectBalance() const;
    /// Until reset(), what views build in the background is built by buildPart() only, bit by bit.
    Q_INVOKABLE void holdBuilding();
    Q_INVOKABLE bool building() const { return m_builder.incubatingObjectCount() > 0; }
    Q_INVOKABLE void buildPart() { m_builder.incubateFor(0); }
    /// What the window that has the keyboard gets while @p key is held down: a press, then repeats.
    Q_INVOKABLE void holdKey(int key);
    Q_INVOKABLE QString clipboardText() const;

    void watch(QQmlEngine* engine);

private:
    template <class Change>
    void changeFarm(Change change);

    QQmlEngine* m_engine = nullptr;
    QQmlIncubationController* m_windowsBuilder = nullptr;
    QQmlIncubationController m_builder;
    ServiceFixture m_fixture;
    devservice::Farm m_sampleFarm;
    QStringList m_warnings;
};
