#include "header_classes.h"

#include <algorithm>
#include <optional>
#include <set>

#include "clang_run.h"

namespace slot_check {
namespace {

// clang's tree, one line each:
//
//     |-NamespaceDecl 0x1 <...> line:5:11 n
//     | |-ClassTemplateDecl 0x2 <...> col:7 Item
//     | | |-CXXRecordDecl 0x3 <...> col:7 class Item definition
//     | | | |-DefinitionData polymorphic abstract
//     | | | |-CXXMethodDecl 0x4 <...> col:18 equals 'bool () const' virtual pure
//     | | | | `-Overrides: [ 0x5 Base::equals 'bool () const' ]
//     | | `-ClassTemplateSpecializationDecl 0x6 <...> col:7 class Item definition
struct Node {
    std::size_t depth = 0;
    std::string kind;
    std::string text;
};

Node parse(const std::string& line) {
    const std::size_t start = line.find_first_not_of(" |`-");
    if (start == std::string::npos) return {};
    const std::size_t end = line.find(' ', start);
    return {start / 2, line.substr(start, end - start), end == std::string::npos ? "" : line.substr(end)};
}

std::string lastWord(const std::string& text) {
    return text.substr(text.rfind(' ') + 1);
}

/// Name of the method, which stands before its type: "... equals 'bool () const' virtual".
std::string methodName(const std::string& text) {
    return lastWord(text.substr(0, text.find(" '")));
}

class Reader {
  public:
    void read(const std::string& line) {
        const Node node = parse(line);
        while (!m_open.empty() && m_open.back().depth >= node.depth) m_open.pop_back();
        const std::size_t current = m_open.empty() ? kNone : m_open.back().index;
        if (node.kind == "Overrides:") {
            m_virtual.reset();
            return;
        }
        keepIntroduced();
        if (node.kind == "DefinitionData" && current != kNone) {
            m_classes[current].isPolymorphic = node.text.find(" polymorphic") != std::string::npos;
        } else if (node.kind == "CXXMethodDecl" && current != kNone && isVirtual(node.text)) {
            m_virtual = {current, methodName(node.text)};
        }
        m_open.push_back({node.depth, enter(node), nameAfter(node), node.kind == "ClassTemplateDecl"});
    }

    std::vector<HeaderClass> classes() {
        keepIntroduced();
        return m_classes;
    }

  private:
    static constexpr std::size_t kNone = ~std::size_t{0};
    struct Open {
        std::size_t depth;
        std::size_t index;  // of the class that this node defines, or kNone
        std::string prefix;
        bool isTemplate;
    };
    struct Virtual {
        std::size_t index;
        std::string name;
    };

    static bool isVirtual(const std::string& text) {
        const std::string after = text.substr(text.rfind('\'') + 1);
        return after.find(" virtual") != std::string::npos;
    }
    static bool isRecord(const Node& node) {
        return node.kind == "CXXRecordDecl" || node.kind == "ClassTemplateSpecializationDecl";
    }
    static std::string nameOf(const Node& node) {
        const std::string suffix = " definition";
        return lastWord(node.text.substr(0, node.text.size() - suffix.size()));
    }
    std::string prefix() const { return m_open.empty() ? "" : m_open.back().prefix; }

    std::string nameAfter(const Node& node) const {
        if (node.kind == "NamespaceDecl") return prefix() + lastWord(node.text) + "::";
        if (isRecord(node) && node.text.ends_with(" definition")) return prefix() + nameOf(node) + "::";
        return prefix();
    }

    /// Takes a class down; returns its index, or kNone for any other node.
    std::size_t enter(const Node& node) {
        if (!isRecord(node) || !node.text.ends_with(" definition")) return kNone;
        HeaderClass found{prefix() + nameOf(node), HeaderClass::Kind::Plain, false, {}};
        if (found.name.starts_with("std::") || found.name.starts_with("boost::")) return kNone;
        if (node.kind == "ClassTemplateSpecializationDecl") {
            found.kind = HeaderClass::Kind::Instantiation;
        } else if (!m_open.empty() && m_open.back().isTemplate) {
            found.kind = HeaderClass::Kind::Template;
        }
        m_classes.push_back(found);
        return m_classes.size() - 1;
    }

    void keepIntroduced() {
        if (m_virtual) m_classes[m_virtual->index].introduced.push_back(m_virtual->name);
        m_virtual.reset();
    }

    std::vector<Open> m_open;
    std::vector<HeaderClass> m_classes;
    std::optional<Virtual> m_virtual;  // until the next line tells whether a base has it
};

}  // namespace

std::vector<HeaderClass> headerClasses(const std::string& includes, const std::vector<std::string>& folders) {
    Reader reader;
    for (const std::string& line : runClang(includes, folders, "-fsyntax-only -Xclang -ast-dump")) {
        reader.read(line);
    }
    return reader.classes();
}

std::vector<std::string> repeatedNames(const HeaderClass& inspected) {
    std::set<std::string> seen;
    std::vector<std::string> repeated;
    for (const std::string& name : inspected.introduced) {
        if (!seen.insert(name).second) repeated.push_back(name);
    }
    return repeated;
}

}  // namespace slot_check
