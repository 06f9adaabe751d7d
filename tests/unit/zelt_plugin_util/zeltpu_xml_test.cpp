#include "zeltpu_xml.h"

#include <sstream>
#include <utility>

#include <gtest/gtest.h>

namespace {

using zelt::plugin_util::appendElement;
using zelt::plugin_util::setAttribute;
using zelt::plugin_util::XmlError;

std::string textOf(const pugi::xml_document& document) {
    std::ostringstream stream;
    document.save(stream, "", pugi::format_raw | pugi::format_no_declaration);
    return stream.str();
}

TEST(Xml, AppendsElementsToDocumentsAndElements) {
    pugi::xml_document document;
    const pugi::xml_node outer = appendElement(document, "Outer");
    appendElement(outer, "First");
    appendElement(outer, "Second");
    EXPECT_EQ(textOf(document), "<Outer><First/><Second/></Outer>");
}

TEST(Xml, AppendsNothingToAnotherKindOfNode) {
    pugi::xml_document document;
    for (const pugi::xml_node parent : {document.append_child(pugi::node_comment),
                                        document.append_child(pugi::node_pcdata), pugi::xml_node()}) {
        try {
            appendElement(parent, "Inner");
            FAIL();
        } catch (const XmlError& error) {
            EXPECT_STREQ(error.what(), "Invalid node type");
        }
    }
}

TEST(Xml, SetsAnAttributeOrOverwritesIt) {
    pugi::xml_document document;
    const pugi::xml_node element = appendElement(document, "Element");
    setAttribute(element, "Name", "first");
    setAttribute(element, "Id", "1");
    setAttribute(element, "Name", "second");
    EXPECT_EQ(textOf(document), R"(<Element Name="second" Id="1"/>)");
}

/// What an attribute holds of a text, "?" in the place of each U+FFFD.
std::string asAttribute(const std::string& text) {
    pugi::xml_document document;
    const pugi::xml_node element = appendElement(document, "Element");
    setAttribute(element, "Name", text);
    std::string held = element.attribute("Name").value();
    for (std::size_t at = 0; (at = held.find("\xEF\xBF\xBD", at)) != std::string::npos;)
        held.replace(at, 3, "?");
    return held;
}

TEST(Xml, HoldsEveryCharacterThatItMay) {
    for (const char* text : {"a\tb\nc\rd", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                             "\xEE\x80\x80", "\xEF\xBF\xBC", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_EQ(asAttribute(text), text);
    }
}

TEST(Xml, HoldsAnotherCharacterForWhatItMayNot) {
    const std::pair<const char*, const char*> kTexts[] = {
        {"a\x01z", "a?z"},
        {"a\x1Fz", "a?z"},
        {"a\x80z", "a?z"},  // the middle of a character
        {"a\xBFz", "a?z"},
        {"a\xC0\x80z", "a?z"},  // longer than need be
        {"a\xC1\xBFz", "a?z"},
        {"a\xE0\x9F\xBFz", "a?z"},
        {"a\xF0\x8F\xBF\xBFz", "a?z"},
        {"a\xED\xA0\x80z", "a?z"},  // half of a pair
        {"a\xED\xBF\xBFz", "a?z"},
        {"a\xEF\xBF\xBEz", "a?z"},  // no character
        {"a\xEF\xBF\xBFz", "a?z"},
        {"a\xF4\x90\x80\x80z", "a?z"},  // above the last
        {"a\xF7\xBF\xBF\xBFz", "a?z"},
        {"a\xF8z", "a?z"},  // no first byte
        {"a\xFFz", "a?z"},
        {"a\xC3z", "a?z"},  // cut off by another
        {"a\xE2\x82z", "a?z"},
        {"a\xE2\xC3\xA9z", "a?\xC3\xA9z"},
        {"a\xC3", "a?"},  // by the end
        {"a\xE2\x82", "a?"},
        {"a\xF0\x9F\x98", "a?"},
        {"\xFF\xFE", "??"},
    };
    for (const auto& [text, held] : kTexts) EXPECT_EQ(asAttribute(text), held);
}

}  // namespace
