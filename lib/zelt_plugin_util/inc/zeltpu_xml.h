/// Building of XML documents.
#pragma once

#include <stdexcept>
#include <string>

#include <pugixml.hpp>

namespace zelt::plugin_util {

class XmlError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Appends an element without attributes. Throws XmlError unless `parent` is an element or a document.
pugi::xml_node appendElement(pugi::xml_node parent, const char* name);

/// Overwrites the attribute of that name; appends one where there is none.
void setAttribute(pugi::xml_node element, const char* name, const std::string& value);

}  // namespace zelt::plugin_util
