#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/// Collects what is logged, on any thread, as long as it lives. One at a time.
class LogCapture
{
public:
    LogCapture()
    {
        const QMutexLocker lock(&m_mutex);
        m_lines.clear();
        m_previous = qInstallMessageHandler(collect);
    }
    ~LogCapture() { qInstallMessageHandler(m_previous); }

    QStringList lines() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_lines;
    }

private:
    static void collect(QtMsgType, const QMessageLogContext&, const QString& message)
    {
        const QMutexLocker lock(&m_mutex);
        m_lines.append(message);
    }

    // Static, because a thread that is still logging may outlive the object.
    static inline QMutex m_mutex;
    static inline QStringList m_lines;
    QtMessageHandler m_previous;
};
