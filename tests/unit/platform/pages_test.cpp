#include "pages.h"

#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

TEST(SystemPages, AreZeroedAndWritableToTheLastByte) {
    constexpr std::size_t size = 645505;
    auto* const pages = static_cast<unsigned char*>(platform::systemPages().allocate(size));
    ASSERT_NE(pages, nullptr);
    for (std::size_t at = 0; at < size; at += 1021) ASSERT_EQ(pages[at], 0);
    pages[0] = 1;
    pages[size - 1] = 2;
    EXPECT_EQ(pages[0] + pages[size - 1], 3);
    platform::systemPages().release(pages, size);
}

TEST(SystemPages, BeginAtAPageBoundary) {
    void* const pages = platform::systemPages().allocate(1);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pages) % 4096, 0u);
    platform::systemPages().release(pages, 1);
}

TEST(SystemPages, GiveNothingForSizeZeroOrMoreThanThereIs) {
    EXPECT_EQ(platform::systemPages().allocate(0), nullptr);
    EXPECT_EQ(platform::systemPages().allocate(std::numeric_limits<std::size_t>::max() / 2), nullptr);
}

}  // namespace
