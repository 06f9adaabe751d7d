#include "zeltpu_system_topology_service_base.h"

#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "zeltpu_xml.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using zelt::plugin_util::appendElement;
using zelt::plugin_util::setAttribute;

class OneElement final : public zelt::plugin_util::SystemTopologyServiceBase {
  public:
    OneElement() : SystemTopologyServiceBase(nullptr) {}
    void fillMeasurementTree(pugi::xml_node tree) override {
        ++filled;
        const pugi::xml_node node = appendElement(tree, "Node");
        setAttribute(node, "Name", "\xC3\xA4 & <b> \"c\"");
        appendElement(node, "Leaf");
        if (fails) throw std::runtime_error("no topology");
    }
    int filled = 0;
    bool fails = false;
};

void keep(void* context, const char* text, std::size_t length) {
    static_cast<std::vector<std::string>*>(context)->emplace_back(text, length);
}

TEST(SystemTopologyService, TellsTheWholeDocumentInOneCall) {
    OneElement service;
    std::vector<std::string> told;
    service.getTopology(4711, &keep, &told);
    EXPECT_THAT(told, ElementsAre("<?xml version=\"1.0\"?>\n"
                                  "<MeasurementTree>\n"
                                  "\t<Node Name=\"\xC3\xA4 &amp; &lt;b> &quot;c&quot;\">\n"
                                  "\t\t<Leaf />\n"
                                  "\t</Node>\n"
                                  "</MeasurementTree>\n"));
}

TEST(SystemTopologyService, BeginsEveryDocumentAnew) {
    OneElement service;
    std::vector<std::string> told;
    service.getTopology(0, &keep, &told);
    service.getTopology(0, &keep, &told);
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[0], told[1]);
}

TEST(SystemTopologyService, BuildsNothingForNobody) {
    OneElement service;
    service.getTopology(0, nullptr, nullptr);
    EXPECT_EQ(service.filled, 0);
}

TEST(SystemTopologyService, TellsNothingWhenTheTreeCannotBeFilled) {
    OneElement service;
    service.fails = true;
    std::vector<std::string> told;
    EXPECT_THROW(service.getTopology(0, &keep, &told), std::runtime_error);
    EXPECT_THAT(told, IsEmpty());
}

TEST(SystemTopologyService, DoesNotChangeByItself) {
    EXPECT_FALSE(OneElement().isTopologyDynamic());
}

TEST(SystemTopologyService, IsNotCounted) {
    OneElement service;
    EXPECT_EQ(service.addRef(), 0u);
    EXPECT_EQ(service.addRef(), 0u);
    EXPECT_EQ(service.release(), 0u);
}

TEST(SystemTopologyService, KeepsOneListener) {
    OneElement service;
    service.setListener(7);
    service.setListener(8);
    EXPECT_FALSE(service.removeListener(7));
    EXPECT_TRUE(service.removeListener(8));
    EXPECT_FALSE(service.removeListener(8));
}

TEST(SystemTopologyService, HasTheListenerNoneAtFirst) {
    OneElement service;
    EXPECT_FALSE(service.removeListener(7));
    EXPECT_TRUE(service.removeListener(0));
}

TEST(SystemTopologyService, LetsSeveralThreadsSetAndRemoveListeners) {
    OneElement service;
    std::thread other([&] {
        for (std::uint64_t i = 1; i <= 1000; ++i) service.setListener(i);
    });
    for (std::uint64_t i = 1; i <= 1000; ++i) service.removeListener(i);
    other.join();
    service.setListener(5);
    EXPECT_TRUE(service.removeListener(5));
}

}  // namespace
