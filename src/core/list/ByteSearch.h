// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string_view>

namespace ambrel {

// Where `needle` first stands in `bytes` at or after `from`, else std::string_view::npos: the same as
// bytes.find(needle, from), but near the speed at which memory can be read.
std::size_t find_bytes(std::string_view bytes, std::string_view needle, std::size_t from);

}  // namespace ambrel
