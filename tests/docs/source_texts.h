/// Texts in C++ sources: literals, log statements, assertions.
#pragma once

#include <string>
#include <vector>

namespace docs_check {

/// A source in which comments and the lines of the preprocessor's #include are blank; everything else stands
/// where it was.
class Source {
  public:
    /// `file`: path inside the source tree.
    explicit Source(const std::string& file);
    static Source fromText(const std::string& text);

    const std::string& file() const { return m_file; }
    /// Contents of the string literals as the compiler sees them, in order; adjacent ones are one.
    std::vector<std::string> literals() const;
    struct LogStatement {
        std::string severity;
        std::string text;  ///< "<>" for each value between literals, at the ends too; empty without literals
    };
    std::vector<LogStatement> logStatements() const;
    struct Assertion {
        std::string expression;
        std::string message;  ///< empty without one
    };
    std::vector<Assertion> assertions() const;

  private:
    Source() = default;
    /// End of what begins with a bracket at `open`, or of a statement.
    std::size_t closing(std::size_t open) const;
    std::vector<std::string> arguments(std::size_t open) const;

    std::string m_file;
    std::string m_text;
};

/// Sources of the product whose texts a user may see: all of lib but the vendor's declarations.
std::vector<Source> productSources();

/// The literals of an expression, joined; what stands between them is "<>".
std::string templateOf(const std::string& expression);
/// A documented text with "<>" for each "<...>" in it.
std::string withBareBlanks(const std::string& text);
/// What stands between the "<>" of a text, without empty parts.
std::vector<std::string> piecesOf(const std::string& text);

}  // namespace docs_check
