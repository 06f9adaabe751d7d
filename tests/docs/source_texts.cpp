#include "source_texts.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

#include "markdown.h"

namespace docs_check {
namespace {

namespace fs = std::filesystem;

bool isWord(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// Index behind the literal, with quotes of either kind, that begins at `begin`.
std::size_t behindLiteral(const std::string& text, std::size_t begin) {
    std::size_t at = begin + 1;
    while (at < text.size() && text[at] != text[begin]) at += text[at] == '\\' ? 2 : 1;
    return std::min(at + 1, text.size());
}

/// A quote between digits separates thousands.
bool beginsLiteral(const std::string& text, std::size_t at) {
    return text[at] == '"' || (text[at] == '\'' && (at == 0 || !isWord(text[at - 1])));
}

void blank(std::string& text, std::size_t begin, std::size_t end) {
    for (std::size_t at = begin; at < std::min(end, text.size()); ++at) {
        if (text[at] != '\n') text[at] = ' ';
    }
}

std::string withoutComments(std::string text) {
    for (std::size_t at = 0; at < text.size();) {
        if (beginsLiteral(text, at)) {
            at = behindLiteral(text, at);
            continue;
        }
        const bool isLine = text.compare(at, 2, "//") == 0 || text.compare(at, 8, "#include") == 0;
        const bool isBlock = text.compare(at, 2, "/*") == 0;
        if (isLine || isBlock) {
            const std::size_t end = isLine ? text.find('\n', at) : text.find("*/", at) + 2;
            blank(text, at, end);
            at = std::min(end, text.size());
        } else {
            ++at;
        }
    }
    return text;
}

/// What a literal between quotes says.
std::string unescaped(const std::string& literal) {
    static const std::map<char, char> simple{{'n', '\n'}, {'t', '\t'}, {'0', '\0'}};
    std::string text;
    for (std::size_t at = 0; at < literal.size(); ++at) {
        if (literal[at] != '\\') {
            text += literal[at];
        } else if (literal[at + 1] == 'x') {
            text += static_cast<char>(std::stoi(literal.substr(at + 2, 2), nullptr, 16));
            at += 3;
        } else {
            const auto known = simple.find(literal[++at]);
            text += known != simple.end() ? known->second : literal[at];
        }
    }
    return text;
}

std::string withoutSpace(const std::string& text) {
    const auto first = text.find_first_not_of(" \n");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \n") - first + 1);
}

struct Literal {
    std::size_t begin;
    std::size_t end;
    std::string text;
};

std::vector<Literal> literalsIn(const std::string& text) {
    std::vector<Literal> literals;
    for (std::size_t at = 0; at < text.size();) {
        if (!beginsLiteral(text, at)) {
            ++at;
            continue;
        }
        const std::size_t end = behindLiteral(text, at);
        if (text[at] == '"') {
            const std::string content = unescaped(text.substr(at + 1, end - at - 2));
            const bool isAdjacent =
                !literals.empty() &&
                withoutSpace(text.substr(literals.back().end, at - literals.back().end)).empty();
            if (isAdjacent) {
                literals.back().text += content;
                literals.back().end = end;
            } else {
                literals.push_back({at, end, content});
            }
        }
        at = end;
    }
    return literals;
}

/// Nothing but what joins literals.
bool isJoint(const std::string& text) {
    return text.find_first_not_of(" \n<+,") == std::string::npos;
}

std::string oneLine(const std::string& text) {
    std::string line;
    for (const char c : text) {
        if (c != '\n' && !(c == ' ' && !line.empty() && line.back() == ' ')) line += c;
    }
    return line;
}

}  // namespace

Source::Source(const std::string& file) : m_file(file) {
    std::ifstream stream(sourceTree() / file);
    if (!stream) throw std::runtime_error("cannot read " + file);
    m_text = withoutComments({std::istreambuf_iterator<char>(stream), {}});
}

Source Source::fromText(const std::string& text) {
    Source source;
    source.m_text = withoutComments(text);
    return source;
}

std::vector<std::string> Source::literals() const {
    std::vector<std::string> texts;
    for (const Literal& literal : literalsIn(m_text)) texts.push_back(literal.text);
    return texts;
}

std::size_t Source::closing(std::size_t open) const {
    int depth = 0;
    for (std::size_t at = open; at < m_text.size();) {
        if (beginsLiteral(m_text, at)) {
            at = behindLiteral(m_text, at);
            continue;
        }
        const char c = m_text[at];
        if (c == '(' || c == '{') ++depth;
        if ((c == ')' || c == '}') && --depth == 0) return at;
        if (c == ';' && depth == 0) return at;
        ++at;
    }
    throw std::runtime_error("no end of a statement in " + m_file);
}

std::vector<std::string> Source::arguments(std::size_t open) const {
    const std::size_t end = closing(open);
    std::vector<std::string> arguments(1);
    int depth = 0;
    for (std::size_t at = open + 1; at < end;) {
        const std::size_t next = beginsLiteral(m_text, at) ? behindLiteral(m_text, at) : at + 1;
        const std::string part = m_text.substr(at, next - at);
        if (part == "(") ++depth;
        if (part == ")") --depth;
        if (part == "," && depth == 0) {
            arguments.emplace_back();
        } else {
            arguments.back() += part;
        }
        at = next;
    }
    for (std::string& argument : arguments) argument = oneLine(withoutSpace(argument));
    return arguments;
}

std::vector<Source::LogStatement> Source::logStatements() const {
    std::vector<LogStatement> statements;
    for (const char* name : {"GIGE_LOG(", "ZELT_LOG("}) {
        for (auto at = m_text.find(name); at != std::string::npos; at = m_text.find(name, at + 1)) {
            const auto line = m_text.rfind('\n', at);
            if (m_text.compare(line + 1, 7, "#define") == 0) continue;
            const std::size_t open = at + std::string(name).size() - 1;
            const std::size_t behind = closing(open) + 1;
            std::size_t end = behind;
            while (m_text[end] != ';')
                end = beginsLiteral(m_text, end) ? behindLiteral(m_text, end) : end + 1;
            const std::string text = templateOf(m_text.substr(behind, end - behind));
            if (piecesOf(text).empty()) continue;
            statements.push_back({arguments(open).back(), text});
        }
    }
    return statements;
}

std::vector<Source::Assertion> Source::assertions() const {
    std::vector<Assertion> assertions;
    for (auto at = m_text.find("ZELT_ASSERT"); at != std::string::npos;
         at = m_text.find("ZELT_ASSERT", at + 1)) {
        const auto line = m_text.rfind('\n', at);
        const bool isDefinition = line != std::string::npos && m_text.compare(line + 1, 7, "#define") == 0;
        if (isDefinition || (at > 0 && isWord(m_text[at - 1]))) continue;
        const std::size_t open = m_text.find('(', at);
        const std::vector<std::string> found = arguments(open);
        if (m_text.compare(at, open - at, "ZELT_ASSERT") == 0) {
            assertions.push_back({found.at(0), {}});
        } else if (m_text.compare(at, open - at, "ZELT_ASSERT_AS") == 0) {
            assertions.push_back({templateOf(found.at(1)), found.size() > 2 ? templateOf(found.at(2)) : ""});
        } else {
            throw std::runtime_error("an assertion of another name in " + m_file);
        }
    }
    return assertions;
}

std::vector<Source> productSources() {
    std::vector<Source> sources;
    for (const auto& entry : fs::recursive_directory_iterator(sourceTree() / "lib")) {
        const std::string path = entry.path().lexically_relative(sourceTree()).generic_string();
        const std::string kind = entry.path().extension().string();
        if ((kind != ".cpp" && kind != ".h") || path.rfind("lib/vimba_c/", 0) == 0) continue;
        sources.emplace_back(path);
    }
    std::sort(sources.begin(), sources.end(),
              [](const Source& a, const Source& b) { return a.file() < b.file(); });
    return sources;
}

std::string templateOf(const std::string& expression) {
    std::string text;
    std::size_t at = 0;
    for (const Literal& literal : literalsIn(expression)) {
        if (!isJoint(expression.substr(at, literal.begin - at))) text += "<>";
        text += literal.text;
        at = literal.end;
    }
    if (!isJoint(expression.substr(at))) text += "<>";
    return text;
}

std::string withBareBlanks(const std::string& text) {
    std::string bare;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto end = text.find('>', at);
        const bool isBlank = text[at] == '<' && end != std::string::npos && at + 1 < text.size() &&
                             std::isalpha(static_cast<unsigned char>(text[at + 1])) != 0;
        if (isBlank) {
            bare += "<>";
            at = end;
        } else {
            bare += text[at];
        }
    }
    return bare;
}

std::vector<std::string> piecesOf(const std::string& text) {
    std::vector<std::string> pieces;
    for (std::size_t begin = 0; begin <= text.size();) {
        const auto end = std::min(text.find("<>", begin), text.size());
        if (end != begin) pieces.push_back(text.substr(begin, end - begin));
        begin = end + 2;
    }
    return pieces;
}

}  // namespace docs_check
