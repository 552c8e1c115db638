// The compiler's inside, shared by the files that compile classes, statements, expressions and calls.
#pragma once

#include "Compiler.hpp"
#include "Types.hpp"
#include "host/basic/library/Library.hpp"
#include "host/basic/run/Actions.hpp"

#include <map>

namespace host::basic {

/// Thrown after a report; caught around each statement, so that the next one is looked at too.
struct Unusable {};

/// A node and what is known of its values before it runs.
struct Typed {
    NodePtr node;
    Type type; // Kind::None: there is no value; Kind::Nil: always nil
    bool constant = false;
    bool loose = false; // arithmetic: the value may turn out wider than the type says
};

struct Variable {
    enum class Where : uint8_t { local, global, constant } where = Where::local;
    Type type;
    size_t slot = 0;
    Value* global = nullptr;
    Value value; // of a constant
    bool assignable = true;
};

using Names = std::map<std::string, Variable, NameLess>;

/// What is known inside of the routine that is being compiled.
struct RoutineScope {
    Class* owner = nullptr;
    bool shared = true; // there is no Me
    bool isMain = false;
    Type result;
    std::vector<Names> blocks;
    size_t slotCount = 0;
    struct Loop {
        ast::LoopKind kind;
        uint32_t id;
    };
    std::vector<Loop> loops;
    uint32_t nextLoop = 1;
    uint32_t handlers = 0; // Catch blocks around this place
    bool foreign = false;  // the statement so far may call the platform
};

class Compiler {
  public:
    Compiler(const ast::Program& program, const Source& source, Diagnostics& diagnostics);
    std::unique_ptr<Compiled> run();

  private:
    struct Routine {
        const ast::Routine* tree;
        std::shared_ptr<Code> code;
    };
    struct Initial { // a property whose first value has to be computed
        const ast::PropertyDeclaration* tree;
        std::string name;
    };
    struct PendingClass {
        const ast::ClassDeclaration* tree;
        Class* made = nullptr;
        std::vector<Routine> routines;
        std::shared_ptr<Code> initializer, destructor;
        std::vector<Initial> initials, sharedInitials;
        bool visiting = false, done = false;
    };
    struct Block { // names of a block end with it
        Compiler& compiler;
        explicit Block(Compiler& c) : compiler(c) { compiler.scope_->blocks.emplace_back(); }
        ~Block() { compiler.scope_->blocks.pop_back(); }
    };
    struct Resolved {   // an object expression that may be a class or nothing at all
        NodePtr object; // null: shared
        Class* objectClass = nullptr;
        bool fixed = false; // Super
    };

    [[noreturn]] void fail(Place place, std::string message);

    // -- declarations (CompileClasses.cpp)
    void collectConstants();
    void collectRoutines();
    void collectClasses();
    void define(PendingClass& pending);
    void addProperty(PendingClass& pending, ClassSpec& spec, const ast::PropertyDeclaration& property);
    void addRoutine(PendingClass& pending, ClassSpec& spec, const ast::Routine& routine);
    void checkEvent(const ClassSpec& spec, const ast::Routine& routine, const Declaration& declaration);
    Declaration declarationOf(const ast::Routine& routine);
    void compileBody(const ast::Routine& tree, Code& code);
    void compileInitializer(PendingClass& pending);
    void compileSharedInitials(PendingClass& pending, Actions& into);
    ActionPtr initialAction(const Initial& initial, Class& owner, bool shared);
    Value constantValue(const ast::Expression& tree, const Type* type, const char* what);

    // -- types
    Type typeOf(const ast::TypeName& name);
    Class& classNamed(const ast::TypeName& name);
    Class* classOfType(const Type& type) const;
    Class* findType(std::string_view name) const;

    // -- statements (CompileStatements.cpp, CompileLoops.cpp)
    void statements(const ast::Block& trees, Actions& into);
    void statementInto(const ast::Statement& tree, Actions& into);
    ActionPtr statement(const ast::Statement& tree, Actions& into);
    void declare(const ast::DeclareStatement& tree, Actions& into);
    void constant(const ast::ConstantStatement& tree);
    ActionPtr assign(const ast::AssignStatement& tree);
    ActionPtr callStatement(const ast::CallStatement& tree);
    ActionPtr branch(const ast::BranchStatement& tree);
    ActionPtr select(const ast::SelectStatement& tree);
    ActionPtr countLoop(const ast::CountLoop& tree);
    ActionPtr eachLoop(const ast::EachLoop& tree);
    ActionPtr conditionLoop(const ast::ConditionLoop& tree);
    ActionPtr jump(Place place, ast::LoopKind kind, Flow flow);
    ActionPtr giveBack(const ast::ReturnStatement& tree);
    ActionPtr guard(const ast::GuardStatement& tree);
    ActionPtr raiseAgain(const ast::RaiseStatement& tree);
    ActionPtr resize(const ast::ResizeStatement& tree);
    NodePtr condition(const ast::Expression& tree);
    Variable& declareName(const std::string& name, Place place, const Type& type, bool isStatic = false);
    NodePtr initialValue(Place place, const Type& type, const std::vector<ast::ExpressionPtr>& bounds);

    // -- expressions (CompileExpressions.cpp)
    Typed expression(const ast::Expression& tree, const Type* wanted = nullptr);
    Typed required(const ast::Expression& tree, const Type* wanted = nullptr); // one that has a value
    NodePtr valueFor(const ast::Expression& tree, const Type& type, const std::string& what);
    NodePtr coerce(Typed value, const Type& type, Place place, const std::string& what);
    Typed nameValue(const ast::NameExpression& tree);
    Typed variableValue(Place place, const Variable& variable);
    Typed unary(const ast::UnaryExpression& tree);
    Typed binary(const ast::BinaryExpression& tree);
    void flattenJoin(const ast::Expression& tree, std::vector<NodePtr>& parts);
    Typed isA(const ast::IsAExpression& tree);
    Typed choose(const ast::ChooseExpression& tree);
    Typed makeNew(const ast::NewExpression& tree);
    NodePtr makeNewOf(const ast::TypeName& name, const std::vector<ast::ExpressionPtr>& arguments,
                      Place place);
    Typed combine(ast::Operator op, Typed left, Typed right, Place place);
    void checkComparable(ast::Operator op, const Type& left, const Type& right, Place place);
    NodePtr valueForLoop(const ast::Expression& tree, const Type& type);
    Typed selfValue(Place place);
    TargetPtr target(const ast::Expression& tree, Type& type);
    Typed folded(Typed made);
    const Variable* findVariable(std::string_view name) const;

    // -- calls and members (CompileCalls.cpp)
    Typed member(const ast::MemberExpression& tree, const std::vector<ast::ExpressionPtr>& arguments,
                 bool hasList);
    Typed call(const ast::CallExpression& tree, const Type* wanted);
    Typed callName(const ast::NameExpression& callee, const ast::CallExpression& tree, const Type* wanted);
    Typed element(Typed list, const std::vector<ast::ExpressionPtr>& arguments, Place place);
    Typed arrayOf(const ast::CallExpression& tree, const Type* wanted);
    Typed arrayMethod(Typed list, const std::string& name, const std::vector<ast::ExpressionPtr>& arguments,
                      size_t from, Place place);
    Typed native(Place place, const std::string& lowerName, std::vector<Typed> arguments,
                 const std::vector<ast::ExpressionPtr>& trees);
    Typed memberOf(Resolved object, const std::string& name, const std::vector<ast::ExpressionPtr>& arguments,
                   bool hasList, Place place);
    Typed routine(Place place, const std::vector<Routine>& overloads, const std::string& name,
                  const std::vector<ast::ExpressionPtr>& arguments);
    TargetPtr memberTarget(Resolved object, const std::string& name,
                           const std::vector<ast::ExpressionPtr>& arguments, Place place, Type& type);
    TargetPtr routineTarget(const std::vector<Routine>& overloads, const std::string& name,
                            const std::vector<ast::ExpressionPtr>& arguments, Place place, Type& type);
    TargetPtr elementTarget(Typed array, const ast::Expression& index, Place place, Type& type);
    bool resolveObject(const ast::Expression& tree,
                       Resolved& resolved); // a class, Super or Me's class; false: a value
    /// With a declaration, arrays that are written out get the element types of its parameters.
    std::vector<Typed> argumentValues(const std::vector<ast::ExpressionPtr>& trees,
                                      const Declaration* only = nullptr);
    /// Picks an overload; with `dynamic`, -1 when it depends on values that are known only when the program
    /// runs. Reports when none fits.
    int selectOverload(const std::vector<const Declaration*>& overloads, const std::vector<Typed>& arguments,
                       bool dynamic, const std::string& what, Place place);
    CallArguments bind(const Declaration& declaration, std::vector<Typed> values,
                       const std::vector<ast::ExpressionPtr>& trees, const std::string& what, Place place);
    CallArguments loose(std::vector<Typed> values);
    void checkAccess(const Member& found, Place place);
    [[noreturn]] void unknownMember(const Class& in, const std::string& name, Place place);
    std::string suggestion(const std::string& name, const std::vector<std::string>& known) const;

    const ast::Program& program_;
    const Source& source_;
    Diagnostics& diagnostics_;
    std::unique_ptr<Compiled> compiled_ = std::make_unique<Compiled>();
    Names globals_;
    std::map<std::string, std::vector<Routine>, NameLess> routines_;
    std::vector<std::unique_ptr<PendingClass>> classes_;
    RoutineScope* scope_ = nullptr;
};

} // namespace host::basic
