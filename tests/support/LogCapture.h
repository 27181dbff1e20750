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
        self() = this;
        m_previous = qInstallMessageHandler(collect);
    }
    ~LogCapture()
    {
        qInstallMessageHandler(m_previous);
        const QMutexLocker lock(&mutex());
        self() = nullptr;
    }

    QStringList lines() const
    {
        const QMutexLocker lock(&mutex());
        return m_lines;
    }

private:
    static LogCapture*& self()
    {
        static LogCapture* capture = nullptr;
        return capture;
    }
    static QMutex& mutex()
    {
        static QMutex guard;
        return guard;
    }
    static void collect(QtMsgType, const QMessageLogContext&, const QString& message)
    {
        const QMutexLocker lock(&mutex());
        if (self())
            self()->m_lines.append(message);
    }

    QtMessageHandler m_previous;
    QStringList m_lines;
};
