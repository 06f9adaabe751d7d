#pragma once

namespace zelt::plugin_util {

/// Type id of the plug-in that this library is built into.
inline constexpr const char* const kPluginTypeId = "{D40250C7-33F6-4ECE-9A88-BAE8EE6D5FA5}";

}  // namespace zelt::plugin_util
