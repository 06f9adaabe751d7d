/// Tables of virtual operations and data members as the Windows C++ ABI lays them out.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace slot_check {

struct WindowsClass {
    std::vector<std::string> slots;   ///< "name(arguments)" in the order of the first table, or "destructor"
    int tables = 0;                   ///< one, unless more than one base has virtual operations
    std::vector<std::string> fields;  ///< "type name", those of bases first
    std::size_t size = 0;             ///< bytes of an object
};

/// Layout of each class of `classes`, which `includes` (a source text) declares. Arguments are written
/// without const, reference and namespaces.
std::map<std::string, WindowsClass> windowsLayout(const std::string& includes,
                                                  const std::vector<std::string>& folders,
                                                  const std::vector<std::string>& classes);

}  // namespace slot_check
