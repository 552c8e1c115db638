// The parser's inside, shared by the files that read expressions, statements and declarations.
#pragma once

#include "Parser.hpp"

#include <initializer_list>

namespace host::basic {

/// Thrown inside the parser after a report, and caught where the next statement can be found again.
struct StatementBroken {};

class Parser {
  public:
    Parser(const Source& source, Diagnostics& diagnostics);
    ast::Program program();

  private:
    // Expressions and blocks nest at most this deep: it bounds the recursion of everything that walks the
    // tree.
    static constexpr uint32_t kDeepest = 200;
    static constexpr uint32_t kTallest = 1000;

    struct Deeper {
        Parser& parser;
        explicit Deeper(Parser& p);
        ~Deeper() { --parser.depth_; }
    };

    // -- tokens
    const Token& now() const { return tokens_[at_]; }
    const Token& ahead(size_t n = 1) const { return tokens_[std::min(at_ + n, tokens_.size() - 1)]; }
    const Token& take() { return tokens_[at_ + 1 < tokens_.size() ? at_++ : at_]; }
    bool at(std::string_view word) const { return now().is(word); }
    bool atEndOf(std::string_view word) const { return at("end") && ahead().is(word); }
    bool accept(std::string_view word);
    void expect(std::string_view word, const char* where);
    bool atLineEnd() const { return now().kind == TokenKind::newline || now().kind == TokenKind::end; }
    void endStatement();
    void endOrUnclosed();
    void skipLineEnds();
    void skipToLineEnd();
    std::string shown(const Token& token) const;
    [[noreturn]] void fail(Place place, std::string message);
    std::string name(const char* what);
    std::string memberName();

    // -- expressions
    ast::ExpressionPtr expression();
    ast::ExpressionPtr binary(int level);
    ast::ExpressionPtr unary();
    ast::ExpressionPtr powerOf();
    ast::ExpressionPtr postfix(bool withCalls);
    ast::ExpressionPtr commandTarget();
    ast::ExpressionPtr primary();
    ast::ExpressionPtr choose();
    std::vector<ast::ExpressionPtr> argumentList();
    std::vector<ast::ExpressionPtr> commandArguments();
    template <typename T>
    ast::ExpressionPtr checked(std::unique_ptr<T> made);
    ast::TypeName typeName();
    ast::ExpressionPtr makeNew();

    // -- statements
    void statementInto(ast::Block& block);
    ast::StatementPtr statement();
    ast::StatementPtr simpleStatement();
    ast::StatementPtr declare();
    ast::StatementPtr constant();
    ast::StatementPtr branch();
    ast::StatementPtr oneLineBranch(std::unique_ptr<ast::BranchStatement> made);
    ast::StatementPtr select();
    ast::SelectStatement::Test selectTest();
    ast::StatementPtr forLoop();
    ast::StatementPtr whileLoop();
    ast::StatementPtr doLoop();
    ast::StatementPtr guard();
    ast::StatementPtr leave();
    ast::StatementPtr proceed();
    ast::StatementPtr assignmentOrCall();
    bool lineBlock(ast::Block& block);
    /// Reads statements until one of the words stands at a statement's start; the word is left to the caller.
    /// False, with a report, when the program or the enclosing block ends before one of them.
    bool block(ast::Block& into, std::initializer_list<std::string_view> stops, Place opened,
               const char* what);
    ast::ExpressionPtr header();
    bool atStop(std::initializer_list<std::string_view> stops) const;

    // -- declarations
    bool startsDeclaration() const;
    void declaration(ast::Program& program);
    std::unique_ptr<ast::Routine> routine(bool inClass);
    void routineBody(ast::Routine& routine, std::string_view endWord, const char* what);
    std::vector<ast::Parameter> parameters();
    ast::Parameter parameter();
    std::unique_ptr<ast::ClassDeclaration> classDeclaration();
    void classMember(ast::ClassDeclaration& into);
    void propertyMember(ast::ClassDeclaration& into, ast::Access access, bool shared);
    void computedProperty(ast::PropertyDeclaration& property);

    const Source& source_;
    Diagnostics& diagnostics_;
    std::vector<Token> tokens_;
    size_t at_ = 0;
    uint32_t depth_ = 0;
    bool unclosed_ = false; // the statement that was read last has no end, which was reported
    std::vector<std::initializer_list<std::string_view>> open_; // the stops of the blocks around this place
};

template <typename T>
ast::ExpressionPtr Parser::checked(std::unique_ptr<T> made) {
    if (made->height > kTallest)
        fail(made->place, "This expression has too many parts; compute it in several statements.");
    return made;
}

} // namespace host::basic
