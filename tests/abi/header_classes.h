/// The classes that headers declare, as clang sees them for the Windows C++ ABI.
#pragma once

#include <string>
#include <vector>

namespace slot_check {

/// One class definition.
struct HeaderClass {
    enum class Kind { Plain, Template, Instantiation };

    std::string name;  ///< with namespaces; of a template and its instantiations, without arguments
    Kind kind = Kind::Plain;
    bool isPolymorphic = false;
    std::vector<std::string> introduced;  ///< names of the virtual operations that no base has, as they stand
};

/// Every class defined by `includes` (a source text), the stubs' left out.
std::vector<HeaderClass> headerClasses(const std::string& includes, const std::vector<std::string>& folders);

/// Names that stand in a class's list more than once. The Windows compiler puts operations of one name that
/// come in with one class next to each other, in reverse; then the order would not be that of the text.
std::vector<std::string> repeatedNames(const HeaderClass& inspected);

}  // namespace slot_check
