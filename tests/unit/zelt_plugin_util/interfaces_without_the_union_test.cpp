// What the host's interfaces cost a source that uses no items: the union stays a name.
#include "if_channel_messages.h"
#include "if_daq_plugin.h"
#include "if_plugin_creator.h"
#include "zeltpu_simple_channel_config.h"

#if defined(BOOST_VARIANT_VARIANT_HPP)
#error "an interface includes the whole union"
#endif

#include <type_traits>

#include <gtest/gtest.h>

namespace {

template <class T, class = void>
constexpr bool kIsComplete = false;
template <class T>
constexpr bool kIsComplete<T, std::void_t<decltype(sizeof(T))>> = true;

TEST(Interfaces, NameTheUnionWithoutIncludingIt) {
    EXPECT_FALSE(kIsComplete<config_items::ConfigItemVariant>);
    EXPECT_TRUE(kIsComplete<channel_config::IfChannelConfig>);
}

}  // namespace
