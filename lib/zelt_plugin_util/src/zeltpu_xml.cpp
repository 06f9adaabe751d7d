#include "zeltpu_xml.h"

#include <cstdint>
#include <string_view>

namespace zelt::plugin_util {
namespace {

struct Character {
    std::size_t bytes;  ///< as far as they belong together
    bool isXml;
};

bool isXmlCode(std::uint32_t code) {
    if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return !isSurrogate && code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

/// The first character of a text in UTF-8.
Character firstOf(std::string_view text) {
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {1, isXmlCode(lead)};
    if (lead < 0xC0 || lead > 0xF7) return {1, false};
    const std::size_t bytes = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    std::uint32_t code = lead & (0xFFu >> (bytes + 1));
    for (std::size_t at = 1; at < bytes; ++at) {
        if (at == text.size() || (byte(at) & 0xC0u) != 0x80) return {at, false};
        code = code << 6 | (byte(at) & 0x3Fu);
    }
    return {bytes, code >= kLeast[bytes] && isXmlCode(code)};
}

/// U+FFFD stands for what XML cannot hold. Names come from cameras, and one of them must not cost the
/// document.
std::string asXml(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const Character first = firstOf(text);
        result += first.isXml ? text.substr(0, first.bytes) : std::string_view("\xEF\xBF\xBD");
        text.remove_prefix(first.bytes);
    }
    return result;
}

}  // namespace

pugi::xml_node appendElement(pugi::xml_node parent, const char* name) {
    if (parent.type() != pugi::node_element && parent.type() != pugi::node_document) {
        throw XmlError("Invalid node type");
    }
    return parent.append_child(name);
}

void setAttribute(pugi::xml_node element, const char* name, const std::string& value) {
    pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) attribute = element.append_attribute(name);
    attribute.set_value(asXml(value).c_str());
}

}  // namespace zelt::plugin_util
