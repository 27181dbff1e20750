#pragma once

#include <QObject>

class QTimer;

/// Asks the service every 10 seconds whether there is a newer build, and installs it on a worker. Lives on
/// the UI thread.
class VersionCheck : public QObject
{
    Q_OBJECT

public:
    explicit VersionCheck(QObject* parent);

private:
    void check();

    QTimer* m_timer;
};
