#include "zeltpu_service_factory.h"

#include <thread>
#include <vector>

#include <boost/uuid/string_generator.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assertion_capture.h"
#include "latch.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zeltpu::ServiceFactory;

/// Counts its references; writes its name down when one is given back.
class Service final : public plugin_api::IfService {
  public:
    explicit Service(std::string name = {}, std::vector<std::string>* releases = nullptr)
        : m_name(std::move(name)), m_releases(releases) {}

    std::uint32_t addRef() override { return m_count++; }
    std::uint32_t release() override {
        if (m_releases != nullptr) m_releases->push_back(m_name);
        return m_count--;
    }
    std::uint32_t count() const { return m_count; }

  private:
    std::string m_name;
    std::vector<std::string>* m_releases;
    std::atomic<std::uint32_t> m_count{0};
};

boost::uuids::uuid id(const std::string& text) {
    return boost::uuids::string_generator{}(text);
}

const boost::uuids::uuid kFirst = id("{0a000000-0000-0000-0000-000000000000}");
const boost::uuids::uuid kSecond = id("{9f000000-0000-0000-0000-000000000000}");
const boost::uuids::uuid kThird = id("{f0000000-0000-0000-0000-000000000001}");

TEST(ServiceKeyText, IsThirtyTwoUpperCaseDigitsInStorageOrder) {
    EXPECT_EQ(zeltpu::serviceKeyText(id("{0a00bcde-f012-3456-789a-bcdef0123456}")),
              "0A00BCDEF0123456789ABCDEF0123456");
}

TEST(ServiceFactory, ReturnsTheCountsBeforeAndDiesWithTheLastReference) {
    Service service;
    auto* const factory = new ServiceFactory;
    factory->registerService(kFirst, &service);
    EXPECT_EQ(factory->addRef(), 0u);
    EXPECT_EQ(factory->addRef(), 1u);
    EXPECT_EQ(factory->release(), 2u);
    EXPECT_EQ(service.count(), 1u);
    EXPECT_EQ(factory->release(), 1u);
    EXPECT_EQ(service.count(), 0u);
}

TEST(ServiceFactory, AssertsAReferenceToGiveBackAndSurvivesWithoutOne) {
    const test_support::AssertionCapture assertions;
    Service service;
    auto* const factory = new ServiceFactory;
    factory->registerService(kFirst, &service);
    EXPECT_EQ(factory->release(), 0u);
    ASSERT_THAT(assertions.expressions(), ElementsAre("m_ref_count.load(std::memory_order_acquire) > 0"));
    EXPECT_EQ(assertions.failures().front().file, "lib/zelt_plugin_util/src/zeltpu_service_factory");
    EXPECT_EQ(assertions.failures().front().message, std::nullopt);
    EXPECT_EQ(service.count(), 1u);
    EXPECT_EQ(factory->addRef(), 0xFFFFFFFFu);
    factory->addRef();
    EXPECT_EQ(factory->release(), 1u);
    EXPECT_EQ(assertions.failures().size(), 1u);
}

/// A factory with one reference that ends with the test.
class AFactory : public ::testing::Test {
  protected:
    AFactory() { m_factory->addRef(); }
    ~AFactory() override { m_factory->release(); }

    Service m_service;
    ServiceFactory* const m_factory = new ServiceFactory;
};

TEST_F(AFactory, AddsAReferenceToAServiceItRegisters) {
    EXPECT_TRUE(m_factory->registerService(kFirst, &m_service));
    EXPECT_EQ(m_service.count(), 1u);
}

TEST_F(AFactory, HandsOutAServiceWithOneMoreReference) {
    m_factory->registerService(kFirst, &m_service);
    plugin_api::IfService* out = nullptr;
    EXPECT_TRUE(m_factory->getService(kFirst, &out));
    EXPECT_EQ(out, &m_service);
    EXPECT_EQ(m_service.count(), 2u);
}

TEST_F(AFactory, TellsWhetherAServiceExistsWithoutTouchingIt) {
    m_factory->registerService(kFirst, &m_service);
    EXPECT_TRUE(m_factory->getService(kFirst, nullptr));
    EXPECT_FALSE(m_factory->getService(kSecond, nullptr));
    EXPECT_EQ(m_service.count(), 1u);
}

TEST_F(AFactory, StoresNullForAnUnknownService) {
    m_factory->registerService(kFirst, &m_service);
    plugin_api::IfService* out = &m_service;
    EXPECT_FALSE(m_factory->getService(kSecond, &out));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(m_service.count(), 1u);
}

TEST_F(AFactory, KeepsTheFirstServiceOfAnIdButReferencesTheSecondToo) {
    Service second;
    m_factory->registerService(kFirst, &m_service);
    EXPECT_TRUE(m_factory->registerService(kFirst, &second));
    EXPECT_EQ(second.count(), 1u);
    plugin_api::IfService* out = nullptr;
    EXPECT_TRUE(m_factory->getService(kFirst, &out));
    EXPECT_EQ(out, &m_service);
}

TEST_F(AFactory, AssertsThatAServiceIsThereAndStoresNoNull) {
    const test_support::AssertionCapture assertions;
    EXPECT_FALSE(m_factory->registerService(kFirst, nullptr));
    ASSERT_THAT(assertions.expressions(), ElementsAre("service"));
    EXPECT_EQ(assertions.failures().front().file, "lib/zelt_plugin_util/src/zeltpu_service_factory");
    EXPECT_FALSE(m_factory->getService(kFirst, nullptr));
}

TEST(ServiceFactory, GivesItsServicesBackInKeyOrder) {
    std::vector<std::string> releases;
    Service first("first", &releases);
    Service second("second", &releases);
    Service third("third", &releases);
    auto* const factory = new ServiceFactory;
    factory->addRef();
    factory->registerService(kThird, &third);
    factory->registerService(kFirst, &first);
    factory->registerService(kSecond, &second);
    EXPECT_THAT(releases, IsEmpty());
    factory->release();
    EXPECT_THAT(releases, ElementsAre("first", "second", "third"));
}

TEST(ServiceFactory, GivesBackOnlyTheServiceThatItStored) {
    std::vector<std::string> releases;
    Service kept("kept", &releases);
    Service ignored("ignored", &releases);
    auto* const factory = new ServiceFactory;
    factory->addRef();
    factory->registerService(kFirst, &kept);
    factory->registerService(kFirst, &ignored);
    factory->release();
    EXPECT_THAT(releases, ElementsAre("kept"));
    EXPECT_EQ(ignored.count(), 1u);
}

TEST(ServiceFactory, LivesUntilTheLastOfSeveralThreadsReleasesIt) {
    constexpr int kThreads = 4;
    Service service;
    auto* const factory = new ServiceFactory;
    factory->registerService(kFirst, &service);
    for (int i = 0; i < kThreads; ++i) factory->addRef();
    test_support::Latch start(kThreads);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int round = 0; round < 20000; ++round) {
                    factory->addRef();
                    plugin_api::IfService* out = nullptr;
                    if (factory->getService(kFirst, &out)) out->release();
                    factory->release();
                }
                factory->release();
            });
        }
    }
    EXPECT_EQ(service.count(), 0u);
}

}  // namespace
