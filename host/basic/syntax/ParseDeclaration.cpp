// Reads Sub, Function, Class and what stands in a class.
#include "ParserState.hpp"

namespace host::basic {

using namespace ast;

namespace {

bool isAccess(const Token& token) {
    return token.is("private") || token.is("protected") || token.is("public");
}

} // namespace

bool Parser::startsDeclaration() const {
    if (at("sub") || at("function") || at("class")) return true;
    if (at("module"))
        return ahead().kind == TokenKind::name && !isReserved(ahead().lower) &&
               ahead(2).kind == TokenKind::newline;
    return isAccess(now()) && (ahead().is("sub") || ahead().is("function") || ahead().is("class"));
}

void Parser::declaration(Program& program) {
    if (isAccess(now())) take(); // on its own a program has no outside
    if (at("class") || at("module")) {
        program.classes.push_back(classDeclaration());
    } else {
        program.routines.push_back(routine(false));
    }
}

std::vector<Parameter> Parser::parameters() {
    std::vector<Parameter> list;
    if (!accept("(")) return list;
    if (accept(")")) return list;
    do {
        list.push_back(parameter());
    } while (accept(","));
    if (!accept(")")) fail(now().place, "Expected ',' or ')' but found " + shown(now()) + ".");
    return list;
}

Parameter Parser::parameter() {
    Parameter made;
    for (;;) {
        if (accept("byref"))
            made.byRef = true;
        else if (accept("byval"))
            made.byRef = false;
        else if (at("optional") && ahead().kind == TokenKind::name && !ahead().is("as")) {
            take();
            made.optional = true;
        } else if (at("assigns") && ahead().kind == TokenKind::name && !ahead().is("as")) {
            take();
            made.assigns = true;
        } else
            break;
    }
    made.place = now().place;
    made.name = name("a parameter's name");
    bool array = false;
    if (at("(") && ahead().is(")")) {
        take();
        take();
        array = true;
    }
    if (accept("as"))
        made.type = typeName();
    else
        fail(now().place, "The parameter '" + made.name + "' needs a type: " + made.name + " As Integer.");
    if (array) made.type.array = true;
    if (accept("=")) {
        made.defaultValue = expression();
        made.optional = true;
    }
    return made;
}

std::unique_ptr<Routine> Parser::routine(bool inClass) {
    auto made = std::make_unique<Routine>();
    const bool function = take().is("function");
    made->place = now().place;
    const bool wasConstructor = at("constructor") && inClass;
    const bool wasDestructor = at("destructor") && inClass;
    made->name = name("a name");
    if (wasConstructor) made->kind = Routine::Kind::constructor;
    if (wasDestructor) made->kind = Routine::Kind::destructor;
    try {
        made->parameters = parameters();
        if (accept("as")) made->result = typeName();
        endStatement();
    } catch (const StatementBroken&) {
        skipToLineEnd();
        if (function && !made->result.given()) made->result.name = "Variant";
    }
    if (function && !made->result.given())
        diagnostics_.report(made->place, "The function '" + made->name +
                                             "' needs the type of its result: As Integer, or make it a Sub.");
    if (!function && made->result.given())
        diagnostics_.report(made->result.place, "A Sub has no result; make '" + made->name + "' a Function.");
    if (function)
        block(made->body, {"end function"}, made->place, "The Function") ? (take(), take(), 0) : 0;
    else
        block(made->body, {"end sub"}, made->place, "The Sub") ? (take(), take(), 0) : 0;
    return made;
}

std::unique_ptr<ClassDeclaration> Parser::classDeclaration() {
    auto made = std::make_unique<ClassDeclaration>();
    made->module = take().is("module");
    made->place = now().place;
    made->name = name(made->module ? "the module's name" : "the class's name");
    const char* end = made->module ? "module" : "class";
    if (at("inherits")) {
        take();
        made->superclass = typeName();
    }
    endStatement();
    for (;;) {
        skipLineEnds();
        if (now().kind == TokenKind::end || diagnostics_.full() || at("class")) {
            diagnostics_.report(made->place, std::string("The ") + end + " '" + made->name +
                                                 "' is not closed; its 'End " +
                                                 (made->module ? "Module" : "Class") + "' is missing.");
            return made;
        }
        if (atEndOf(end)) {
            take();
            take();
            return made;
        }
        try {
            classMember(*made);
            endOrUnclosed();
        } catch (const StatementBroken&) {
            skipToLineEnd();
        }
    }
}

void Parser::classMember(ClassDeclaration& into) {
    Access access = Access::everyone;
    bool shared = into.module;
    for (;;) {
        if (isAccess(now())) {
            const Token& word = take();
            access = word.is("private")     ? Access::classOnly
                     : word.is("protected") ? Access::family
                                            : Access::everyone;
        } else if (at("shared") && ahead().kind == TokenKind::name && !ahead().is("as")) {
            take();
            shared = true;
        } else
            break;
    }
    if (at("inherits") && ahead().kind == TokenKind::name) {
        take();
        into.superclass = typeName();
        return;
    }
    if (at("sub") || at("function")) {
        auto made = routine(true);
        made->shared = shared;
        made->access = access;
        into.routines.push_back(std::move(made));
        return;
    }
    const bool constructor = at("constructor") && (ahead().is("(") || ahead().kind == TokenKind::newline);
    const bool destructor = at("destructor") && (ahead().is("(") || ahead().kind == TokenKind::newline);
    const bool event = at("event") && ahead().kind == TokenKind::name && !ahead().is("as");
    if (constructor || destructor || event) {
        auto made = std::make_unique<Routine>();
        if (event) take();
        made->place = now().place;
        made->access = access;
        made->kind = constructor  ? Routine::Kind::constructor
                     : destructor ? Routine::Kind::destructor
                                  : Routine::Kind::event;
        made->name = event ? memberName() : name("a name");
        made->parameters = parameters();
        if (accept("as")) made->result = typeName();
        endStatement();
        bool closed = false;
        if (constructor)
            closed = block(made->body, {"end constructor"}, made->place, "The Constructor");
        else if (destructor)
            closed = block(made->body, {"end destructor"}, made->place, "The Destructor");
        else
            closed = block(made->body, {"end event"}, made->place, "The Event");
        if (closed) {
            take();
            take();
        }
        into.routines.push_back(std::move(made));
        return;
    }
    if (at("const")) {
        into.constants.emplace_back(static_cast<ConstantStatement*>(constant().release()));
        return;
    }
    propertyMember(into, access, shared);
}

void Parser::propertyMember(ClassDeclaration& into, Access access, bool shared) {
    const bool word = at("property") && ahead().kind == TokenKind::name && !ahead().is("as");
    if (at("dim") || at("var") || word) take();
    std::vector<PropertyDeclaration> made;
    do {
        PropertyDeclaration one;
        one.place = now().place;
        one.name = name("a property, a method or 'End Class'");
        one.access = access;
        one.shared = shared;
        if (at("(")) {
            one.array = true;
            one.bounds = argumentList();
            if (one.bounds.size() > 1) fail(one.place, "Arrays have one dimension.");
        }
        made.push_back(std::move(one));
    } while (accept(","));
    expect("as", "and the property's type");
    if (accept("new")) {
        if (made.size() != 1) fail(now().place, "'As New' declares one property at a time.");
        made[0].makesNew = true;
        made[0].type.place = now().place;
        made[0].type.name = name("a class after 'New'");
        if (at("(")) made[0].arguments = argumentList();
    } else {
        const TypeName type = typeName();
        for (PropertyDeclaration& one : made)
            one.type = type;
        if (accept("=")) {
            if (made.size() != 1) fail(now().place, "A value is given to one property at a time.");
            made[0].value = expression();
        }
    }
    endStatement();
    if (word && made.size() == 1) {
        const size_t before = at_;
        skipLineEnds();
        if ((at("get") && ahead().kind == TokenKind::newline) ||
            (at("set") && (ahead().kind == TokenKind::newline || ahead().is("("))))
            computedProperty(made[0]);
        else
            at_ = before;
    }
    for (PropertyDeclaration& one : made)
        into.properties.push_back(std::move(one));
}

void Parser::computedProperty(PropertyDeclaration& property) {
    for (;;) {
        skipLineEnds();
        if (atEndOf("property")) {
            take();
            take();
            return;
        }
        auto made = std::make_unique<Routine>();
        made->place = property.place;
        made->name = property.name;
        made->shared = property.shared;
        made->access = property.access;
        const Place opened = now().place;
        if (accept("get")) {
            made->result = property.type;
            made->result.array = made->result.array || property.array;
            if (!block(made->body, {"end get"}, opened, "The Get")) return;
            take();
            take();
            property.getter = std::move(made);
        } else if (accept("set")) {
            made->parameters = parameters();
            if (made->parameters.empty()) {
                Parameter value;
                value.name = "value";
                value.place = opened;
                value.type = property.type;
                value.type.array = value.type.array || property.array;
                made->parameters.push_back(std::move(value));
            }
            if (!block(made->body, {"end set"}, opened, "The Set")) return;
            take();
            take();
            property.setter = std::move(made);
        } else {
            fail(now().place, "Expected Get, Set or End Property but found " + shown(now()) + ".");
        }
    }
}

} // namespace host::basic
