// A program's life: read, compile, run, clean up, tell how it ended.
#include "Program.hpp"

#include "host/basic/compile/Compiler.hpp"
#include "host/basic/library/Tables.hpp"
#include "host/basic/run/LiveObjects.hpp"
#include "host/basic/syntax/Parser.hpp"
#include "host/plugin/PluginLoader.hpp"
#include "host/runtime/Lock.hpp"
#include "host/services/Platform.hpp"

#include <cstdio>
#include <new>

namespace host::basic {

namespace {

void tell(const std::string& text) { std::fputs(text.c_str(), stderr); }

int runMain(const Compiled& compiled, const Source& source) {
    Context& context = Context::ofThisThread();
    try {
        Slots slots(compiled.main->slotCount);
        const Value status = compiled.main->run(context, nullptr, slots.data());
        throwStrayException();
        flushOut();
        return static_cast<int>(status.toInt64() & 0xFF);
    } catch (const Stopped&) {
        return kExitGood; // the cause says the rest
    } catch (const Exception& exception) {
        context.noteRaised(exception);
        const Place place = context.raisedPlace();
        try {
            flushOut();
        } catch (const Exception&) { // it is the output that fails, and was told
        }
        const std::string message = exception.message();
        tell(source.describe(place) + ": uncaught " + exception.className() +
             (message.empty() ? "" : ": " + message) + "\n" + source.excerpt(place));
    } catch (const std::bad_alloc&) {
        tell(source.describe(context.place) + ": the program needs more memory than there is.\n" +
             source.excerpt(context.place));
    }
    return kExitUncaught;
}

int statusOf(int status) {
    switch (stop::cause()) {
    case StopCause::quit:
        return stop::exitCode() & 0xFF;
    case StopCause::interrupted:
        tell("Interrupted.\n");
        return kExitInterrupted;
    case StopCause::terminated:
        tell("Interrupted.\n");
        return kExitTerminated;
    default:
        return status;
    }
}

void tellLeaks() {
    for (const auto& [name, count] : liveObjects())
        tell("still alive at the end: " + std::to_string(count) + " of " + name + "\n");
}

} // namespace

int runSource(const Source& source, bool listLeaks) {
    Diagnostics diagnostics;
    std::unique_ptr<Compiled> compiled;
    bool parsed = false;
    {
        const ast::Program program = parse(source, diagnostics);
        parsed = diagnostics.empty();
        if (parsed) compiled = compile(program, source, diagnostics);
    }
    if (!compiled) {
        tell(diagnostics.render(source));
        if (parsed && loadedPlugins().empty())
            tell("No plug-in is loaded, so there are no classes but the host's own.\n");
        return kExitUnusable;
    }
    int status = runMain(*compiled, source);
    Context& context = Context::ofThisThread();
    context.leaving = true; // destructors run even when a stop was requested
    context.forgetRaised();
    for (Value& variable : compiled->globals)
        variable = Value();
    dropCycles();
    clearSharedProperties();
    dropCycles();
    try {
        flushOut();
    } catch (const Exception& exception) {
        if (status == kExitGood) {
            tell(source.fileName() + ": " + exception.message() + "\n");
            status = kExitUncaught;
        }
    }
    if (listLeaks) tellLeaks();
    return statusOf(status);
}

int runProgram(const std::string& file, const std::vector<std::string>& arguments, bool listLeaks) {
    const Locked locked;
    int status = kExitUnusable;
    try {
        const Pool pool;
        setProgram(file, arguments);
        defineLibraryClasses();
        stop::installSignalHandlers();
        status = runSource(readProgram(file), listLeaks);
    } catch (const UnreadableProgram& problem) {
        tell(problem.message + "\n");
    } catch (const Exception& exception) {
        tell(file + ": " + exception.what() + "\n");
        status = kExitUncaught;
    }
    forgetProgramClasses();
    return status;
}

} // namespace host::basic
