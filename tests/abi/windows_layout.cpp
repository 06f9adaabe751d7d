#include "windows_layout.h"

#include <cctype>
#include <cstdlib>

#include "clang_run.h"

namespace slot_check {
namespace {

// clang lays out a class when code needs it: here a class derived from each, whose own operation, called
// once, stands behind all others and so marks the end of the table.
std::string forcingSource(const std::string& includes, const std::vector<std::string>& classes) {
    std::string source = includes;
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const std::string name = "Force" + std::to_string(i);
        source += "struct " + name + " : " + classes[i] + " { virtual void endOfTable(); };\n";
        source += "void force(" + name + "* object) { object->endOfTable(); }\n";
    }
    return source;
}

bool isWordPart(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// Position of `wanted` outside of all angle brackets; npos without any.
std::size_t findOutside(const std::string& text, char wanted) {
    int depth = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (depth == 0 && text[i] == wanted) return i;
        if (text[i] == '<') ++depth;
        if (text[i] == '>') --depth;
    }
    return std::string::npos;
}

/// Words without namespaces and "const", with "T" replaced; no blanks, references or pointers.
std::string plainType(const std::string& text, const std::string& t) {
    std::string plain;
    std::string word;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const char c = i < text.size() ? text[i] : ' ';
        if (isWordPart(c)) {
            word += c;
            continue;
        }
        const bool isNamespace = c == ':';
        if (!word.empty() && !isNamespace && word != "const") {
            if (!plain.empty() && isWordPart(plain.back())) plain += ' ';
            plain += word == "T" ? t : word;
        }
        word.clear();
        if (c == '<' || c == '>' || c == ',') plain += c;
    }
    return plain;
}

/// Arguments of an operation, from what stands behind its parenthesis: "const n::Value<T> &) const [T = int]"
/// gives "Value<int>".
std::string plainArguments(const std::string& text) {
    std::string t = "T";
    const std::size_t binding = text.rfind("[T = ");
    if (binding != std::string::npos) {
        const std::string bound = text.substr(binding + 5);
        t = plainType(bound.substr(0, bound.find(']')), "T");
    }
    return plainType(text.substr(0, findOutside(text, ')')), t);
}

/// "bool n::Value<int>::equals(const n::Value<T> &) const [T = int]" gives "equals(Value<int>)".
std::string plainOperation(const std::string& entry) {
    const std::size_t parenthesis = findOutside(entry, '(');
    if (parenthesis == std::string::npos) return entry;
    std::size_t begin = parenthesis;
    while (begin > 0 && isWordPart(entry[begin - 1])) --begin;
    if (begin > 0 && entry[begin - 1] == '~') return "destructor";
    return entry.substr(begin, parenthesis - begin) + "(" + plainArguments(entry.substr(parenthesis + 1)) +
           ")";
}

/// "struct std::vector<struct n::P> m_values (empty)" gives "std::vector<n::P> m_values".
std::string plainField(std::string text) {
    const auto replaceAll = [&](const std::string& old, const std::string& by) {
        for (auto at = text.find(old); at != std::string::npos; at = text.find(old)) {
            text.replace(at, old.size(), by);
        }
    };
    for (const char* const decoration : {"struct ", "class ", "enum ", " (empty)"})
        replaceAll(decoration, "");
    replaceAll("> >", ">>");
    replaceAll("_Bool", "bool");
    return text;
}

// The lines of clang's answer that matter:
//
//     VFTable for 'n::IfBase' in 'n::IfClass' in 'Force7' (4 entries).
//        0 | Force7 RTTI
//        1 | int n::IfClass::first() [pure]
//
//     *** Dumping AST Record Layout
//              0 | struct Force7
//              0 |   class n::IfClass (primary base)
//              0 |     (IfClass vftable pointer)
//              8 |     struct n::Pair m_pair
//              8 |       int first
//                | [sizeof=16, align=8,
class LayoutReader {
  public:
    explicit LayoutReader(const std::vector<std::string>& classes) : m_classes(classes) {
        for (const std::string& name : classes) m_layout[name] = {};
    }

    void read(const std::string& line) {
        const std::size_t bar = line.find("| ");
        const std::string content = bar == std::string::npos ? "" : line.substr(bar + 2);
        if (line.starts_with("VFTable for ")) {
            m_table = beginTable(forced(line, line.rfind("'Force")));
        } else if (line.empty()) {
            m_table = nullptr;
        } else if (m_table != nullptr && !content.ends_with(" RTTI")) {
            addEntry(plainOperation(content));
        } else if (content.starts_with("struct Force")) {
            m_record = forced(content, content.find(" Force"));
            m_field_indent = std::string::npos;
        } else if (m_record != nullptr && content.starts_with("[sizeof=")) {
            m_record->size = std::strtoul(content.c_str() + 8, nullptr, 10);
            m_record = nullptr;
        } else if (m_record != nullptr) {
            addRecordLine(content);
        }
    }

    const std::map<std::string, WindowsClass>& layout() const { return m_layout; }

  private:
    /// The class behind "?Force<number>" at `position`; null without any.
    WindowsClass* forced(const std::string& text, std::size_t position) {
        if (position == std::string::npos) return nullptr;
        const std::size_t number = std::strtoul(text.c_str() + position + 6, nullptr, 10);
        return &m_layout.at(m_classes.at(number));
    }
    // The tables of further bases are counted, not compared.
    static WindowsClass* beginTable(WindowsClass* found) {
        return found != nullptr && found->tables++ == 0 ? found : nullptr;
    }
    void addEntry(const std::string& operation) {
        if (operation == "endOfTable()") {
            m_table = nullptr;
        } else {
            m_table->slots.push_back(operation);
        }
    }
    /// A base, whose members follow; a pointer to a table; a field; or a part of the field above.
    void addRecordLine(const std::string& content) {
        const std::size_t indent = content.find_first_not_of(' ');
        if (indent == std::string::npos || indent > m_field_indent) return;
        m_field_indent = std::string::npos;
        if (content[indent] == '(' || content.find("base)") != std::string::npos) return;
        m_record->fields.push_back(plainField(content.substr(indent)));
        m_field_indent = indent;
    }

    const std::vector<std::string>& m_classes;
    std::map<std::string, WindowsClass> m_layout;
    WindowsClass* m_table = nullptr;
    WindowsClass* m_record = nullptr;
    std::size_t m_field_indent = std::string::npos;  // of the field above; npos without any
};

}  // namespace

std::map<std::string, WindowsClass> windowsLayout(const std::string& includes,
                                                  const std::vector<std::string>& folders,
                                                  const std::vector<std::string>& classes) {
    LayoutReader reader(classes);
    const std::string flags = "-S -o /dev/null -Xclang -fdump-vtable-layouts -Xclang -fdump-record-layouts";
    for (const std::string& line : runClang(forcingSource(includes, classes), folders, flags)) {
        reader.read(line);
    }
    return reader.layout();
}

}  // namespace slot_check
