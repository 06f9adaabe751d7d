#include "zeltpu_xml.h"

#include <sstream>

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

}  // namespace
