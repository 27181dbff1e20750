#pragma once

#include "app/Application.h"
#include "models/UserInfo.h"

#include <memory>
#include <mutex>

class VelstrandAPI;

/// The way from jobs to the controller, which they may outlive: nothing is delivered once it is closed.
class JobOutlet
{
public:
    explicit JobOutlet(Application* controller) : m_controller(controller) {}

    /// Called by the controller's destructor.
    void close()
    {
        const std::lock_guard lock(m_mutex);
        m_controller = nullptr;
    }

    /// Calls @p message with the controller on the UI thread, unless the controller is gone by then. Any
    /// thread.
    template <typename Message>
    void deliver(Message message)
    {
        const std::lock_guard lock(m_mutex);
        if (!m_controller)
            return;
        const auto call = [controller = m_controller, message] { message(controller); };
        QMetaObject::invokeMethod(m_controller, call, Qt::QueuedConnection);
    }

private:
    std::mutex m_mutex;
    /// Read by workers, cleared by the UI thread; guarded by the mutex.
    Application* m_controller;
};

/// What a job on a worker thread works with: values and shared references only, nothing that the UI thread
/// may delete under it.
struct Job {
    std::shared_ptr<VelstrandAPI> api;
    /// Reads the token as it is at the moment of the call.
    TokenReader token;
    std::shared_ptr<JobOutlet> outlet;
};
