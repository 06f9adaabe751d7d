// The tables against clang's layout of the real headers for the Windows C++ ABI; and that check itself, held
// before small classes that break its rules.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <set>

#include <boost/mpl/size.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config_item_variant.h"
#include "header_classes.h"
#include "slot_table.h"
#include "windows_layout.h"

namespace {

using slot_check::ClassFields;
using slot_check::ClassSlots;
using slot_check::HeaderClass;
using slot_check::WindowsClass;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

const std::string kLib = ZELT_SOURCE_DIR "/lib/";

const std::vector<std::string> kHeaderFolders{
    kLib + "host_api/inc",    kLib + "config_items/inc", kLib + "zelt_plugin_util/inc",
    kLib + "diagnostics/inc", kLib + "platform/inc",     kLib + "zelt_gige_camera/src",
};

/// All headers that host and plug-in share, and those of the camera access layer that are in the table.
std::string includesOfAllHeaders() {
    std::string includes = "#include \"zelt_gige_camera_api.h\"\n#include \"zelt_gige_clock_sync_base.h\"\n";
    for (const char* const folder : {"host_api/inc", "config_items/inc", "zelt_plugin_util/inc"}) {
        for (const auto& file : std::filesystem::directory_iterator(kLib + folder)) {
            includes += "#include \"" + file.path().filename().string() + "\"\n";
        }
    }
    return includes;
}

const WindowsClass& realLayout(const std::string& className) {
    static const std::map<std::string, WindowsClass> layout = [] {
        std::set<std::string> names;
        for (const ClassSlots& known : slot_check::slotTable()) names.insert(known.name);
        for (const ClassFields& known : slot_check::fieldTable()) names.insert(known.name);
        return slot_check::windowsLayout(includesOfAllHeaders(), kHeaderFolders,
                                         {names.begin(), names.end()});
    }();
    return layout.at(className);
}

const std::vector<HeaderClass>& realClasses() {
    static const auto classes = slot_check::headerClasses(includesOfAllHeaders(), kHeaderFolders);
    return classes;
}

std::size_t instantiationsInTable(const std::string& templateName) {
    const auto& table = slot_check::slotTable();
    return static_cast<std::size_t>(std::count_if(table.begin(), table.end(), [&](const ClassSlots& known) {
        return known.name.starts_with(templateName + "<");
    }));
}

bool isInterface(const ClassSlots& slots) {
    const std::string last = slots.name.substr(slots.name.rfind(':') + 1);
    return last.starts_with("If") || last == "CameraApi";
}

std::vector<ClassSlots> interfaces() {
    std::vector<ClassSlots> found;
    const auto& table = slot_check::slotTable();
    std::copy_if(table.begin(), table.end(), std::back_inserter(found), isInterface);
    return found;
}

class WindowsTable : public ::testing::TestWithParam<ClassSlots> {};

TEST_P(WindowsTable, HasEverySlotInItsPlace) {
    const WindowsClass& laidOut = realLayout(GetParam().name);
    for (const std::string& sentence : slot_check::differences(GetParam(), laidOut.slots)) {
        ADD_FAILURE() << sentence;
    }
    EXPECT_EQ(laidOut.tables, 1) << GetParam().name << " has virtual operations from more than one base";
}

INSTANTIATE_TEST_SUITE_P(Table, WindowsTable, ::testing::ValuesIn(slot_check::slotTable()),
                         [](const auto& tested) { return slot_check::testNameOf(tested.param.name); });

class WindowsInterface : public ::testing::TestWithParam<ClassSlots> {};

TEST_P(WindowsInterface, HoldsNothingButItsTable) {
    EXPECT_EQ(realLayout(GetParam().name).size, sizeof(std::uint64_t)) << GetParam().name << " holds data";
}

INSTANTIATE_TEST_SUITE_P(Table, WindowsInterface, ::testing::ValuesIn(interfaces()),
                         [](const auto& tested) { return slot_check::testNameOf(tested.param.name); });

class WindowsFields : public ::testing::TestWithParam<ClassFields> {};

TEST_P(WindowsFields, AreThoseOfTheTableInItsOrder) {
    EXPECT_THAT(realLayout(GetParam().name).fields, ElementsAreArray(GetParam().fields)) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(Table, WindowsFields, ::testing::ValuesIn(slot_check::fieldTable()),
                         [](const auto& tested) { return slot_check::testNameOf(tested.param.name); });

TEST(FieldTable, HasEveryItem) {
    std::set<std::string> listed;
    for (const ClassFields& row : slot_check::fieldTable()) listed.insert(row.name);
    std::size_t items = 0;
    for (const ClassSlots& row : slot_check::slotTable()) {
        const bool isItem = row.name.substr(0, row.name.find('<')).ends_with("ConfigItem");
        if (!isItem || isInterface(row)) continue;
        ++items;
        EXPECT_TRUE(listed.contains(row.name)) << row.name;
    }
    EXPECT_EQ(items, std::size_t{boost::mpl::size<config_items::ConfigItemVariant::types>::value});
}

TEST(SharedHeaders, DeclareNoVirtualOperationsThatTheTableLacks) {
    std::set<std::string> known;
    for (const ClassSlots& row : slot_check::slotTable()) known.insert(row.name);
    std::map<std::string, std::size_t> instantiations;
    for (const HeaderClass& declared : realClasses()) {
        if (!declared.isPolymorphic) continue;
        if (declared.kind == HeaderClass::Kind::Plain) {
            EXPECT_TRUE(known.contains(declared.name)) << declared.name << " is not in the table";
        } else {
            instantiations[declared.name] += declared.kind == HeaderClass::Kind::Instantiation ? 1 : 0;
        }
    }
    for (const auto& [name, count] : instantiations) {
        EXPECT_GT(count, 0u) << "the headers do not say for which types the template " << name << " exists";
        EXPECT_EQ(instantiationsInTable(name), count) << "of the template " << name;
    }
}

TEST(SharedHeaders, NeverIntroduceTwoOperationsOfOneNameInAClass) {
    std::size_t inspected = 0;
    for (const HeaderClass& declared : realClasses()) {
        inspected += declared.introduced.empty() ? 0 : 1;
        EXPECT_THAT(slot_check::repeatedNames(declared), IsEmpty()) << declared.name;
    }
    EXPECT_GT(inspected, 0u);
}

// From here on the check itself.

WindowsClass layoutOf(const std::string& source, const std::string& className) {
    return slot_check::windowsLayout(source, {}, {className}).at(className);
}

TEST(WindowsLayout, FollowsTheTextAndTakesADestructorAsOneSlot) {
    const auto laidOut = layoutOf(
        "namespace n { class A { public: virtual int f() = 0; virtual ~A(); "
        "private: virtual void g(int) const; int data; }; }\n",
        "n::A");
    EXPECT_THAT(laidOut.slots, ElementsAre("f()", "destructor", "g(int)"));
    EXPECT_EQ(laidOut.tables, 1);
    EXPECT_EQ(laidOut.size, 16u);
}

TEST(WindowsLayout, TakesInheritedOperationsFirst) {
    const auto laidOut = layoutOf(
        "struct A { virtual void f(); }; struct B : A { virtual void g(); };\n"
        "struct C final : B { private: ~C(); void f() override; };\n",
        "C");
    EXPECT_THAT(laidOut.slots, ElementsAre("f()", "g()"));
    EXPECT_EQ(laidOut.size, 8u);
}

TEST(WindowsLayout, WritesArgumentsWithoutDecoration) {
    const auto laidOut = layoutOf(
        "namespace n { struct P {}; template <class T> struct V {\n"
        "  virtual bool f(const V& other, const T* more) const; }; }\n",
        "n::V<n::P>");
    EXPECT_THAT(laidOut.slots, ElementsAre("f(V<P>,P)"));
}

TEST(WindowsLayout, ShowsThatOverloadsAreMovedTogether) {
    const auto laidOut =
        layoutOf("struct A { virtual void f(int); virtual void g(); virtual void f(char); };\n", "A");
    EXPECT_THAT(laidOut.slots, ElementsAre("f(char)", "f(int)", "g()"));
}

TEST(WindowsLayout, CountsTheTablesOfFurtherBases) {
    const auto laidOut = layoutOf(
        "struct A { virtual void f(); }; struct B { virtual void g(); };\n"
        "struct C : A, B { virtual void h(); };\n",
        "C");
    EXPECT_THAT(laidOut.slots, ElementsAre("f()", "h()"));
    EXPECT_EQ(laidOut.tables, 2);
}

TEST(WindowsLayout, TellsTheFieldsOfBasesFirstAndNothingOfTheirInside) {
    const auto laidOut = layoutOf(
        "struct P { int x; struct { int z; } y; }; template <class T> struct V { T t; };\n"
        "struct Empty { static int n; }; struct A : Empty { virtual void f(); P p; V<V<P>> v; };\n"
        "struct B { bool e; }; struct C : A, B { virtual void g(); private: P* q; };\n",
        "C");
    EXPECT_THAT(laidOut.fields, ElementsAre("P p", "V<V<P>> v", "bool e", "P * q"));
}

TEST(WindowsLayout, SaysWhyASourceDoesNotCompile) {
    EXPECT_THAT([] { layoutOf("struct A {};\n", "Gone"); },
                ::testing::ThrowsMessage<std::runtime_error>(::testing::HasSubstr("Gone")));
}

TEST(HeaderClasses, TellWhatIsPolymorphicAndWhatATemplateIs) {
    const auto classes = slot_check::headerClasses(
        "namespace n { struct Plain { int f(); }; struct Inherits; namespace m { struct A { virtual ~A(); }; "
        "}\n"
        "struct Inherits : m::A { int data; };\n"
        "template <class T> struct Item : m::A { virtual void f(const T&); struct Inner {}; };\n"
        "extern template struct Item<int>; Item<Plain>* unused; }\n",
        {});
    const auto find = [&](const std::string& name, HeaderClass::Kind kind) {
        return std::count_if(classes.begin(), classes.end(), [&](const HeaderClass& found) {
            return found.name == name && found.kind == kind && found.isPolymorphic;
        });
    };
    using Kind = HeaderClass::Kind;
    EXPECT_EQ(find("n::Plain", Kind::Plain), 0);
    EXPECT_EQ(find("n::m::A", Kind::Plain), 1);
    EXPECT_EQ(find("n::Inherits", Kind::Plain), 1);
    EXPECT_EQ(find("n::Item", Kind::Template), 1);
    EXPECT_EQ(find("n::Item", Kind::Instantiation), 1);
    EXPECT_EQ(find("n::Item::Inner", Kind::Plain), 0);
}

TEST(HeaderClasses, TellOperationsThatComeInTwice) {
    const auto classes = slot_check::headerClasses(
        "struct A { virtual void f(int); virtual void g(); virtual void f(char) = 0; void g(int); };\n"
        "struct B : A { void f(int) override; virtual void f(char); virtual void f(long); virtual void g(); "
        "};\n",
        {});
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_THAT(classes[0].introduced, ElementsAre("f", "g", "f"));
    EXPECT_THAT(slot_check::repeatedNames(classes[0]), ElementsAre("f"));
    EXPECT_THAT(classes[1].introduced, ElementsAre("f"));
    EXPECT_THAT(slot_check::repeatedNames(classes[1]), IsEmpty());
}

}  // namespace
