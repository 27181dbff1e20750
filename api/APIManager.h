#pragma once

#include <memory>

class VelstrandAPI;

/// Owns the service client. The one instance is made on first use and lives as long as the process.
class APIManager
{
public:
    static APIManager* instance();

    /// A shared reference, so that a job's client lives at least as long as the job.
    std::shared_ptr<VelstrandAPI> api() const { return m_api; }

private:
    APIManager();

    std::shared_ptr<VelstrandAPI> m_api;
};
