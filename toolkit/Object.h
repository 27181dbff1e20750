#pragma once

#include <utility>

namespace toolkit {

/// Base of the toolkit's objects: valid from its creation until it is disposed of or moved from. An operation
/// on an object that is not valid does nothing and reports failure. Objects move, they do not copy.
template <typename Self>
class Object
{
public:
    bool IsValid() const { return m_valid; }

    /// Releases what the object holds; it is not valid any more.
    void Dispose() { Self released(std::move(static_cast<Self&>(*this))); }

protected:
    Object() = default;
    Object(Object&& other) noexcept : m_valid(std::exchange(other.m_valid, false)) {}
    Object& operator=(Object&& other) noexcept
    {
        m_valid = std::exchange(other.m_valid, false);
        return *this;
    }
    ~Object() = default;

private:
    bool m_valid = true;
};

/// The error text of an operation on an object that is not valid.
constexpr const char* kNotValid = "The object is not valid any more";

} // namespace toolkit
