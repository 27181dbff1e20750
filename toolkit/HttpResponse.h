#pragma once

#include "toolkit/BinaryData.h"

#include <optional>
#include <string>
#include <string_view>

namespace toolkit {

/// The outcome of one request that was answered whole. Owned by the caller.
class HttpResponse : public Object<HttpResponse>
{
public:
    explicit HttpResponse(std::string body) : m_body(std::move(body)) {}

    /// The body as text, or nothing when it has no bytes. Valid as long as the response.
    std::optional<std::string_view> BodyStr() const
    {
        return IsValid() && !m_body.empty() ? std::optional<std::string_view>(m_body) : std::nullopt;
    }

    /// Copies the body's bytes into @p data. False, with @p data untouched, when either is not valid.
    bool GetBodyBd(BinaryData* data) const
    {
        if (!IsValid() || !data->IsValid())
            return false;
        data->bytes = m_body;
        return true;
    }

private:
    std::string m_body;
};

} // namespace toolkit
