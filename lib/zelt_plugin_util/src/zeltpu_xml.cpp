#include "zeltpu_xml.h"

namespace zelt::plugin_util {

pugi::xml_node appendElement(pugi::xml_node parent, const char* name) {
    if (parent.type() != pugi::node_element && parent.type() != pugi::node_document) {
        throw XmlError("Invalid node type");
    }
    return parent.append_child(name);
}

void setAttribute(pugi::xml_node element, const char* name, const std::string& value) {
    pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) attribute = element.append_attribute(name);
    attribute.set_value(value.c_str());
}

}  // namespace zelt::plugin_util
