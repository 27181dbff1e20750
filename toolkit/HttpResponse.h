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

    /// The body as text, or nothing when it has no bytes. The view is good until the response is disposed of
    /// or moved.
    std::optional<std::string_view> BodyStr() const
    {
        return IsValid() && !m_body.empty() ? std::optional<std::string_view>(m_body) : std::nullopt;
    }

    /// Copies the body's bytes into @p data. False, with @p data untouched, when either is not valid or there
    /// is no memory for a copy.
    bool GetBodyBd(BinaryData* data)
    {
        return Attempt([&] {
            RequireValid(data->IsValid());
            // NOLINTNEXTLINE(clang-analyzer-cplusplus.Move): not reached for a moved-from response
            data->bytes = m_body;
        });
    }

private:
    std::string m_body;
};

} // namespace toolkit
