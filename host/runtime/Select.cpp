// Select.cpp: which of several overloads a call means.
#include "host/runtime/Invoke.hpp"

namespace host {
namespace {

std::string typesOf(std::span<const Value> arguments) {
    if (arguments.empty()) return "no arguments";
    std::string text = "(";
    for (const auto& argument : arguments)
        text += (text.size() > 1 ? ", " : "") + argument.typeName();
    return text + ")";
}

std::string parametersOf(const Member& member, bool forAssign) {
    const auto& declaration = member.declaration;
    if (declaration.parameters.empty() && !forAssign) return "no arguments";
    const auto text = declaration.text();
    const auto from = text.find('(');
    std::string list = from == std::string::npos ? "" : text.substr(from, text.rfind(')') + 1 - from);
    if (forAssign && member.kind == MemberKind::Property)
        list += (list.empty() ? "" : " = ") + declaration.result.text();
    return list;
}

// The sum of what each argument costs; -1 when one does not fit or their number is wrong.
int costOf(const Member& member, std::span<const Value> arguments, bool forAssign) {
    const auto& parameters = member.declaration.parameters;
    std::size_t count = arguments.size();
    int cost = 0;
    const bool assignsProperty = forAssign && member.kind == MemberKind::Property;
    if (forAssign) {
        if (assignsProperty ? !member.canAssign() : !member.declaration.isAssigning()) return -1;
    } else if (member.declaration.isAssigning() || (member.kind == MemberKind::Property && !member.function &&
                                                    !member.body && member.setterBody)) {
        return -1;
    }
    if (assignsProperty) {
        cost = fit(arguments.back(), member.declaration.result);
        if (cost < 0) return -1;
        --count;
    }
    if (count > parameters.size()) return -1;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (i >= count) {
            if (!parameters[i].defaultValue) return -1;
            cost += 1;
            continue;
        }
        const int one = fit(arguments[i], parameters[i].type);
        if (one < 0) return -1;
        cost += one;
    }
    return cost;
}

} // namespace

const Member* bestOf(std::span<const Member* const> overloads, std::span<const Value> arguments,
                     bool forAssign) {
    const Member* best = nullptr;
    int bestCost = 0;
    for (const auto* member : overloads) {
        const int cost = costOf(*member, arguments, forAssign);
        if (cost < 0 || (best && cost >= bestCost)) continue;
        best = member;
        bestCost = cost;
    }
    return best;
}

void refuseAll(std::span<const Member* const> overloads, std::span<const Value> arguments, bool forAssign,
               std::string_view what) {
    std::string takes;
    for (const auto* member : overloads) {
        if (forAssign && !member->canAssign() && !member->declaration.isAssigning()) continue;
        if (!forAssign && member->declaration.isAssigning()) continue;
        takes += (takes.empty() ? "" : " or ") + parametersOf(*member, forAssign);
    }
    if (takes.empty())
        raise("UnsupportedOperationException",
              std::string(what) + (forAssign ? " can't be assigned to" : " can only be assigned to"));
    raise("TypeMismatchException", std::string(what) + " takes " + takes + ", not " + typesOf(arguments));
}

const Member& select(std::span<const Member* const> overloads, std::span<const Value> arguments,
                     bool forAssign, std::string_view what) {
    if (const Member* best = bestOf(overloads, arguments, forAssign)) return *best;
    refuseAll(overloads, arguments, forAssign, what);
}

} // namespace host
