#pragma once

#include <string_view>

namespace torvane::JSON {

/// The double nearest to a number of JSON's grammar; infinite if it is too large for one, 0 if too small.
double numberValue(std::string_view number);

} // namespace torvane::JSON
