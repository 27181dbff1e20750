#pragma once

#include "devservice/DevService.h"

#include <QTemporaryDir>

#include <memory>

/// A development service in this process, and an environment in which the program finds it: its origin and CA
/// file are set before anything of the program is created, and settings go to a folder of their own. Make it
/// first thing, on the main thread; ends the process when the service does not start.
class ServiceFixture
{
public:
    explicit ServiceFixture(const devservice::Options& options = {});

    devservice::DevService& service() { return m_service; }
    devservice::DevService* operator->() { return &m_service; }

    /// Settings that are opened from now on start empty; for the start of each test.
    void renewSettings();
    /// The folder that holds them.
    QString settingsPath() const { return m_settings->path(); }

private:
    devservice::DevService m_service;
    std::unique_ptr<QTemporaryDir> m_settings;
};
