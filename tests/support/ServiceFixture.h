#pragma once

#include "devservice/DevService.h"

#include <QTemporaryDir>

/// A development service in this process, and an environment in which the program finds it: its origin and CA
/// file are set before anything of the program is created, and settings go to a folder of their own. Make it
/// first thing, on the main thread; ends the process when the service does not start.
class ServiceFixture
{
public:
    explicit ServiceFixture(const devservice::Options& options = {});

    devservice::DevService* operator->() { return &m_service; }

private:
    devservice::DevService m_service;
    QTemporaryDir m_settings;
};
