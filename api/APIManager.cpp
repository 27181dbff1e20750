#include "api/APIManager.h"

#include "api/VelstrandAPI.h"

APIManager::APIManager() : m_api(std::make_shared<VelstrandAPI>()) {}

APIManager* APIManager::instance()
{
    // Never destroyed: jobs of the global thread pool may outlive every static object.
    static auto* const manager = new APIManager;
    return manager;
}

std::shared_ptr<VelstrandAPI> APIManager::api() const
{
    return m_api;
}
