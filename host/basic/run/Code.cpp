// Running compiled routines, called from BASIC or from outside of it.
#include "Node.hpp"

#include "host/runtime/Lock.hpp"

namespace host::basic {

Value Code::run(Context& context, REALobject self, Value* slots) const {
    context.checkStack();
    const Place caller = context.place;
    const Ref keepsSelf =
        Ref::borrow(self); // the last variable that holds the object may go while its method runs
    Frame frame{context, slots, self, Value::defaultFor(declaration.result), 0};
    try {
        context.poll(); // a Sub without statements may still call itself for ever
        runAll(body, frame);
    } catch (const Exception& exception) {
        context.noteRaised(exception);
        throw;
    }
    context.place = caller;
    return std::move(frame.result);
}

Value CodeBody::operator()(REALobject self, Arguments arguments) const {
    const Locked locked;
    Context& context = Context::ofThisThread();
    Slots slots(code->slotCount);
    for (size_t i = 0; i < arguments.size() && i < code->declaration.parameters.size(); ++i)
        slots.data()[i] = arguments[i];
    const bool wasLeaving = context.leaving;
    const Place caller = context.place;
    try {
        Value result = code->run(context, self, slots.data());
        for (size_t i = 0; i < arguments.size() && i < code->declaration.parameters.size(); ++i) {
            if (code->declaration.parameters[i].byRef) arguments[i] = std::move(slots.data()[i]);
        }
        return result;
    } catch (const Exception& exception) {
        // It may come up again on the program's own thread, and has to be found at its own place there.
        context.handOver(exception);
        throw;
    } catch (const Stopped&) {
        // What called may be C: the stop goes no further here. The program's next statement leaves again.
        context.leaving = wasLeaving;
        context.place = caller;
        return Value::defaultFor(code->declaration.result);
    }
}

} // namespace host::basic
