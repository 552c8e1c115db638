// Exceptions.cpp: host exceptions thrown, pending and stray.
#include "host/runtime/Exceptions.hpp"

#include "host/runtime/Class.hpp"
#include "host/runtime/Pending.hpp"

#include <atomic>
#include <mutex>
#include <new>
#include <utility>

namespace host {
namespace {

thread_local std::exception_ptr pending;
thread_local int calledBack = 0; // how many handlers and destructors run on this thread
thread_local unsigned foreignDepth = 0;

std::mutex strayMutex;
std::exception_ptr stray;
std::atomic<bool> hasStray{false};

void setStray(std::exception_ptr thrown) {
    std::lock_guard guard(strayMutex);
    if (!stray) stray = std::move(thrown);
    hasStray = true;
}

std::string messageOf(const Value& object) {
    if (!object.isObject()) return "";
    for (const Class* c = &classOf(object.object()); c; c = c->superOrNull())
        for (const auto& member : c->members())
            if (member->field != kNoField && !member->shared && sameName(member->declaration.name, "Message"))
                return fieldOf(object.object(), member->field).toText();
    return "";
}

} // namespace

Exception::Exception(Value object) : object_(std::move(object)) {
    what_ = className();
    if (const auto text = message(); !text.empty()) what_ += ": " + text;
}

std::string Exception::className() const {
    return object_.isObject() ? classOf(object_.object()).name() : "RuntimeException";
}

std::string Exception::message() const { return messageOf(object_); }

Value newException(std::string_view className, std::string_view message) {
    const Class* base = findClass("RuntimeException");
    Class* wanted = findClass(className);
    if (!wanted || !wanted->isA(*base)) wanted = findClass("RuntimeException");
    Value object = Value::adopt(newObject(*wanted));
    for (const auto& member : base->members())
        if (sameName(member->declaration.name, "Message"))
            fieldOf(object.object(), member->field) = Value(message);
    return object;
}

void raise(std::string_view className, std::string_view message) {
    throw Exception(newException(className, message));
}

void setPendingException(Value object) {
    if (!pending && object.isObject()) pending = std::make_exception_ptr(Exception(std::move(object)));
}

bool hasPendingException() { return pending != nullptr; }

Value takePendingException() {
    if (!pending) return {};
    try {
        std::rethrow_exception(std::exchange(pending, nullptr));
    } catch (const Exception& exception) {
        return exception.object();
    } catch (...) {
        return newException("RuntimeException", "the program ended inside an event handler");
    }
}

void throwPendingException() {
    if (pending) std::rethrow_exception(std::exchange(pending, nullptr));
}

void setStrayException(Value object) { setStray(std::make_exception_ptr(Exception(std::move(object)))); }

void throwStrayException() {
    if (!hasStray.load(std::memory_order_relaxed) || calledBack > 0) return;
    std::exception_ptr thrown;
    {
        std::lock_guard guard(strayMutex);
        thrown = std::exchange(stray, nullptr);
        hasStray = false;
    }
    if (thrown) std::rethrow_exception(thrown);
}

bool isInForeignCall() { return foreignDepth > 0; }
ForeignCallScope::ForeignCallScope() { ++foreignDepth; }
ForeignCallScope::~ForeignCallScope() { --foreignDepth; }

void keepForLater(std::exception_ptr thrown) {
    if (!isInForeignCall()) return setStray(std::move(thrown));
    if (!pending) pending = std::move(thrown);
}

void strayPendingException() {
    if (pending) setStray(std::exchange(pending, nullptr));
}

PendingAside::PendingAside() : aside_(std::exchange(pending, nullptr)) { ++calledBack; }
PendingAside::~PendingAside() {
    --calledBack;
    if (aside_) pending = std::move(aside_);
}

} // namespace host
