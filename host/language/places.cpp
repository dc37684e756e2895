// Variables of the frame and of the module, properties, memory.
#include "language/places.h"

#include "language/fields.h"
#include "language/invocation.h"
#include "language/shared_reference.h"
#include "language/widen.h"
#include "runtime/object.h"
#include "runtime/text.h"

namespace host {

namespace {

template <typename Derived>
class FoundPlace : public Place {  // a place that is a slot of memory
 public:
  explicit FoundPlace(Type ofType) : Place(ofType) {}
  std::int64_t integer(Frame& frame) const override { return slot(frame).integer; }
  double real(Frame& frame) const override { return slot(frame).number; }
  float single(Frame& frame) const override { return slot(frame).single; }
  Ref<Heap> reference(Frame& frame) const override { return Ref<Heap>::share(slot(frame).heap); }
  void put(Frame& frame, Slot owned) const override {
    const Slot old = std::exchange(slot(frame), owned);
    releaseSlot(old, type);
  }
  bool isSame(const Place& other) const override {
    const auto* found = dynamic_cast<const Derived*>(&other);
    return found && found->number() == static_cast<const Derived*>(this)->number();
  }
  bool grow(Frame& frame, const Growth& growth) const override { return growth.happensIn(slot(frame).heap); }

 private:
  Slot& slot(Frame& frame) const { return static_cast<const Derived*>(this)->find(frame); }
};

class LocalPlace final : public FoundPlace<LocalPlace> {
 public:
  LocalPlace(Type ofType, std::size_t slot) : FoundPlace(ofType), slot_(slot) {
    if (!ofType.isReference() && ofType.kind != Kind::Single) variable = Variable::local(slot);
    if (isPlainObject(ofType)) heldIn = slot;
  }
  std::size_t number() const { return slot_; }
  Slot& find(Frame& frame) const { return frame.locals[slot_]; }
  std::unique_ptr<Place> again() const override { return localPlace(type, slot_); }

 private:
  std::size_t slot_;
};

class ByRefPlace final : public FoundPlace<ByRefPlace> {
 public:
  ByRefPlace(Type ofType, std::size_t slot) : FoundPlace(ofType), slot_(slot) {}
  std::size_t number() const { return slot_; }
  Slot& find(Frame& frame) const { return *static_cast<Slot*>(frame.locals[slot_].pointer); }
  std::unique_ptr<Place> again() const override { return byRefPlace(type, slot_); }

 private:
  std::size_t slot_;
};

class GlobalPlace final : public Place {
 public:
  explicit GlobalPlace(Global& global)
      : Place(global.type), global_(global), slot_(Variable::global(global.slot)) {
    if (!type.isReference() && type.kind != Kind::Single) variable = slot_;
  }
  std::int64_t integer(Frame& frame) const override { return slot_.integer(frame); }
  double real(Frame& frame) const override { return slot_.real(frame); }
  float single(Frame& frame) const override { return Slot{.word = slot_.load(frame)}.single; }
  Ref<Heap> reference(Frame&) const override { return loadShared(global_.slot); }
  void put(Frame& frame, Slot owned) const override {
    if (type.isReference()) {
      storeShared(global_.slot, owned.heap);
    } else {
      slot_.store(frame, owned.word);
    }
  }
  std::unique_ptr<Place> again() const override { return globalPlace(global_); }
  bool isSame(const Place& other) const override {
    const auto* global = dynamic_cast<const GlobalPlace*>(&other);
    return global && &global->global_ == &global_;
  }
  bool grow(Frame&, const Growth& growth) const override { return growShared(global_.slot, growth); }

 private:
  Global& global_;
  Variable slot_;
};

}  // namespace

std::unique_ptr<Place> localPlace(Type type, std::size_t slot) {
  return std::make_unique<LocalPlace>(type, slot);
}
std::unique_ptr<Place> byRefPlace(Type type, std::size_t slot) {
  return std::make_unique<ByRefPlace>(type, slot);
}
std::unique_ptr<Place> globalPlace(Global& global) { return std::make_unique<GlobalPlace>(global); }

Expr property(const Property& property, Expr self, const std::string& member) {
  if (property.offset != 0) return field(property, std::move(self), member);
  if (property.get) return invoke(*property.get, std::move(self), {}, member);
  const Type type = property.type;
  const Property* record = &property;
  if (property.field) {
    const auto locate = [record, member](const Slot& object) {
      Heap* held = notNil(object, member).heap;
      return reinterpret_cast<std::byte*>(held) + record->owner->dataOffset + record->parameter;
    };
    return operandPlace<1>(
        type, {std::move(self)},
        [locate, type](const Slot* object) { return readMemory(locate(*object), type); },
        [locate, type](const Slot* object, Slot value) { writeMemory(locate(*object), value, type); });
  }
  if (!self) {
    const auto get = [record](const Slot*) { return record->getter({}); };
    if (!property.setter) return slotNode(type, [get](Frame&) { return get(nullptr); });
    return operandPlace<0>(type, {}, get, [record](const Slot*, Slot value) {
      const Slot arguments[] = {value};
      record->setter(arguments);
    });
  }
  const auto get = [record, member](const Slot* object) {
    const Slot arguments[] = {notNil(*object, member), {.integer = record->parameter}};
    return record->getter(arguments);
  };
  if (!property.setter) {
    return slotNode(type, [get, self = std::move(self)](Frame& f) {
      const Held held(*self, f);
      return get(&held.slot);
    });
  }
  return operandPlace<1>(type, {std::move(self)}, get, [record, member](const Slot* object, Slot value) {
    const Slot arguments[] = {notNil(*object, member), {.integer = record->parameter}, value};
    record->setter(arguments);
  });
}

Expr pointedTo(Type type, Expr pointer, Expr offset) {
  const auto locate = [](const Slot* operands) {
    auto* memory = static_cast<std::byte*>(operands[0].pointer);
    if (!memory) throw HostException("NilObjectException", "The Ptr is Nil.");
    return memory + operands[1].integer;
  };
  return operandPlace<2>(
      type, {std::move(pointer), std::move(offset)},
      [locate, type](const Slot* operands) { return readMemory(locate(operands), type); },
      [locate, type](const Slot* operands, Slot value) { writeMemory(locate(operands), value, type); });
}

}  // namespace host
