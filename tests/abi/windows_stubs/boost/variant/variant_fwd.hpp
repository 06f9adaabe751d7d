#pragma once
namespace boost {
template <class... Alternatives>
struct variant {};
}  // namespace boost
