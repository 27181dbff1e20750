#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace toolkit {

/// Base of the toolkit's objects: valid from its creation until it is disposed of or moved from. An operation
/// on an object that is not valid reports failure. Objects move, they do not copy.
template <typename Self>
class Object
{
public:
    bool IsValid() const { return m_valid; }

    /// Why the last operation failed, in words; empty after a success.
    const std::string& LastErrorText() const { return m_lastError; }

    /// Releases what the object holds; it is not valid any more.
    void Dispose() { Self released(std::move(static_cast<Self&>(*this))); }

protected:
    Object& operator=(Object&& other) noexcept
    {
        m_valid = std::exchange(other.m_valid, false);
        m_lastError = std::move(other.m_lastError);
        return *this;
    }
    ~Object() = default;

    static void RequireValid(bool valid)
    {
        if (!valid)
            throw std::runtime_error("The object is not valid any more");
    }

    /// Carries out @p operation, which throws what goes wrong: false then, with the words kept.
    template <typename Operation>
    bool Attempt(Operation operation)
    {
        try {
            RequireValid(m_valid);
            operation();
            m_lastError.clear();
            return true;
        } catch (const std::bad_alloc&) {
            m_lastError = "Out of memory";
        } catch (const std::exception& failure) {
            m_lastError = failure.what();
        }
        return false;
    }

private:
    // Of the class that Self names, and of no other that derives by mistake.
    friend Self;
    Object() = default;
    Object(Object&& other) noexcept { *this = std::move(other); }

    bool m_valid = true;
    std::string m_lastError;
};

} // namespace toolkit
