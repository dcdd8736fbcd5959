#pragma once

#include "core/BwfMetadata.h"

#include <optional>
#include <span>
#include <type_traits>
#include <utility>

/// What `get` finds in all `records` alike, perhaps an empty text. Nothing if they differ or there are none.
/// `get` takes a `const BwfMetadata&`; its results are compared with ==.
template <typename Get>
auto commonValue(std::span<const BwfMetadata* const> records, Get get)
    -> std::optional<std::decay_t<std::invoke_result_t<Get, const BwfMetadata&>>>
{
    if (records.empty())
        return std::nullopt;
    auto common = get(*records.front());
    for (const BwfMetadata* record : records.subspan(1)) {
        if (!(get(*record) == common))
            return std::nullopt;
    }
    return common;
}
