#pragma once

#include "toolkit/BinaryData.h"

#include <optional>
#include <string>
#include <string_view>

namespace toolkit
{

/// The outcome of one request that was answered whole. Owned by the caller.
class HttpResponse
{
public:
    explicit HttpResponse(std::string body) : m_body(std::move(body)) {}

    /// The body as text, or nothing when it has no bytes. Valid as long as the response.
    std::optional<std::string_view> BodyStr() const
    {
        return m_body.empty() ? std::nullopt : std::optional<std::string_view>(m_body);
    }

    /// Copies the body's bytes into @p data.
    void GetBodyBd(BinaryData* data) const { data->bytes = m_body; }

private:
    std::string m_body;
};

} // namespace toolkit
