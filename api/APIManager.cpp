#include "api/APIManager.h"

#include "api/VelstrandAPI.h"

APIManager::APIManager() : m_api(std::make_shared<VelstrandAPI>()) {}

APIManager* APIManager::instance()
{
    // Never destroyed: jobs of the thread pool may outlive static objects.
    static auto* const manager = new APIManager;
    return manager;
}
