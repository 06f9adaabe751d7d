#pragma once
namespace boost {
template <class T>
struct rational {};
}  // namespace boost
