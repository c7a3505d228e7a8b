#pragma once

#include <map>
#include <memory>
#include <mutex>

/**
 * The instances of a data source library by number. Any thread may call; an instance that is removed while a call is
 * still inside it lives until that call has returned.
 */
template <typename Instance>
class InstanceTable
{
public:
    std::shared_ptr<Instance> find(int number) const  ///< Null when there is none.
    {
        const std::lock_guard<std::mutex> lock(m_cMutex);
        const auto found = m_mapInstances.find(number);
        return found == m_mapInstances.end() ? nullptr : found->second;
    }

    std::shared_ptr<Instance> findOrMake(int number)
    {
        const std::lock_guard<std::mutex> lock(m_cMutex);
        std::shared_ptr<Instance>& instance = m_mapInstances[number];
        if (!instance)
            instance = std::make_shared<Instance>();
        return instance;
    }

    /// Takes the instance out; its destructor runs outside the lock.
    void remove(int number)
    {
        std::shared_ptr<Instance> removed;
        const std::lock_guard<std::mutex> lock(m_cMutex);
        const auto found = m_mapInstances.find(number);
        if (found == m_mapInstances.end())
            return;
        removed = std::move(found->second);
        m_mapInstances.erase(found);
    }

private:
    mutable std::mutex m_cMutex;  ///< Guards the map, not the instances.
    std::map<int, std::shared_ptr<Instance>> m_mapInstances;
};
