// Makes delegates and calls them.
#include "language/delegates.h"

#include "runtime/object.h"

namespace host {

namespace {

struct DelegateData {
  const Method* method;
  Heap* self;  // owned; null where the method needs none
};

DelegateData& dataOf(Heap& delegate) {
  return *reinterpret_cast<DelegateData*>(static_cast<Object&>(delegate).dataOf(*delegate.objectClass));
}

void finalizeDelegate(Heap& delegate) { release(std::exchange(dataOf(delegate).self, nullptr)); }

}  // namespace

const Method* MethodReference::fitting(const Method& signature) const {
  const std::vector<Parameter>& wanted = signature.declaration.parameters;
  for (const Method* each : candidates_) {
    const std::vector<Parameter>& parameters = each->declaration.parameters;
    const auto same = [](const Parameter& a, const Parameter& b) {
      return a.type == b.type && a.byRef == b.byRef;
    };
    if (each->declaration.result == signature.declaration.result &&
        std::equal(parameters.begin(), parameters.end(), wanted.begin(), wanted.end(), same)) {
      return each;
    }
  }
  return nullptr;
}

void becomeDelegate(Class& made) {
  made.dataOffset = sizeof(Heap);
  made.instanceSize = sizeof(Heap) + sizeof(DelegateData);
  made.finalize = &finalizeDelegate;
}

Expr newDelegate(const Class& made, const Method& method, Expr self) {
  return referenceNode({Kind::Object, false, &made},
                       [&made, &method, self = std::move(self)](Frame& f) -> Ref<Heap> {
                         Ref<Heap> object = self ? self->reference(f) : nullptr;
                         if (self) notNil({.heap = object.get()}, method.declaration.name);
                         Ref<Object> delegate = makeObject(made);
                         dataOf(*delegate) = {&method, object.detach()};
                         return delegate;
                       });
}

Slot callDelegateNow(Heap& delegate, const std::vector<Passed>& arguments, Frame& frame) {
  const DelegateData& data = dataOf(delegate);
  return callNow(*data.method, data.self, arguments, frame);
}

Expr invokeDelegate(const Class& made, Expr delegate, std::vector<Passed> arguments,
                    const std::string& written) {
  const std::string message = "The delegate is Nil" + (written.empty() ? "." : ": " + written + ".");
  return slotNode(made.signature->declaration.result,
                  [delegate = std::move(delegate), arguments = std::move(arguments), message](Frame& f) {
                    const Ref<Heap> held = delegate->reference(f);
                    if (!held) throw HostException("NilObjectException", message);
                    return callDelegateNow(*held, arguments, f);
                  });
}

}  // namespace host
