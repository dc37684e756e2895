// Reads and writes fields.
#include "language/fields.h"

#include "language/shared_reference.h"
#include "runtime/exception.h"

namespace host {

void failForNil(const std::string& member) {
  throw HostException("NilObjectException",
                      "A member of Nil is used" + (member.empty() ? "." : ": " + member + "."));
}

Slot loadField(const Slot& slot, Type type) {
  if (type.isReference()) return {.heap = loadShared(slot).detach()};
  return {.word = __atomic_load_n(&slot.word, __ATOMIC_RELAXED)};
}

void storeField(Slot& slot, Type type, Slot owned) {
  if (type.isReference()) {
    storeShared(slot, owned.heap);
  } else {
    __atomic_store_n(&slot.word, owned.word, __ATOMIC_RELAXED);
  }
}

namespace {

// Of the object whose method runs.
struct OfSelf {
  template <typename Use>
  auto with(Frame& frame, Use use) const {
    return use(*frame.locals[0].heap);
  }
  bool isSame(const OfSelf&) const { return true; }
};

// Of the one in a variable, which stays there while the field is read or written.
struct OfVariable {
  std::size_t slot;
  std::string member;  // as the program writes it
  template <typename Use>
  auto with(Frame& frame, Use use) const {
    return use(*notNil(frame.locals[slot], member).heap);
  }
  bool isSame(const OfVariable& other) const { return other.slot == slot; }
};

// Of one that is computed.
struct OfValue {
  Expr object;
  std::string member;
  template <typename Use>
  auto with(Frame& frame, Use use) const {
    const Ref<Heap> held = object->reference(frame);
    return use(*notNil({.heap = held.get()}, member).heap);
  }
  bool isSame(const OfValue& other) const {
    return object->place() && other.object->place() && object->place()->isSame(*other.object->place());
  }
};

// Of one that has been found, and is held.
struct OfFound {
  Heap& object;
  template <typename Use>
  auto with(Frame&, Use use) const {
    return use(object);
  }
  bool isSame(const OfFound& other) const { return &other.object == &object; }
};

template <typename Object>
class FieldPlace final : public Place {
 public:
  FieldPlace(const Property& property, Object object)
      : Place(property.type),
        property_(property),
        object_(std::move(object)),
        isPlain_(!property.type.isReference()) {
    if constexpr (std::is_same_v<Object, OfSelf>) {
      if (isPlain_ && type.kind != Kind::Single) variable = Variable::ofSelf(property.offset);
    }
  }
  std::int64_t integer(Frame& frame) const override { return plain(frame).integer; }
  double real(Frame& frame) const override { return plain(frame).number; }
  float single(Frame& frame) const override { return plain(frame).single; }
  Ref<Heap> reference(Frame& frame) const override {
    return object_.with(frame, [&](Heap& object) { return loadShared(slotIn(object, property_)); });
  }
  void put(Frame& frame, Slot owned) const override {
    if (isPlain_) return putPlain(frame, owned);
    Held held(owned, type);
    object_.with(frame, [&](Heap& object) { storeField(slotIn(object, property_), type, held.detach()); });
  }
  void update(Frame& frame, const Change& change) const override {
    object_.with(frame, [&](Heap& found) {
      const Ref<Heap> object = Ref<Heap>::share(&found);  // the change may take it out of its variable
      Slot& slot = slotIn(found, property_);
      const Held current(loadField(slot, type), type);
      if (const std::optional<Slot> changed = change(current.slot)) storeField(slot, type, *changed);
    });
  }
  std::unique_ptr<Place> again() const override {
    if constexpr (std::is_same_v<Object, OfSelf>) return std::make_unique<FieldPlace>(property_, OfSelf());
    return nullptr;
  }
  bool isSame(const Place& other) const override {
    const auto* field = dynamic_cast<const FieldPlace*>(&other);
    return field && &field->property_ == &property_ && field->object_.isSame(object_);
  }
  bool grow(Frame& frame, const Growth& growth) const override {
    return object_.with(frame, [&](Heap& object) { return growShared(slotIn(object, property_), growth); });
  }
  bool withFound(Frame& frame, const std::function<void(const Place&)>& use) const override {
    object_.with(frame, [&](Heap& found) {
      const Ref<Heap> object = Ref<Heap>::share(&found);
      use(FieldPlace<OfFound>(property_, OfFound{*object}));
    });
    return true;
  }

 private:
  void putPlain(Frame& frame, Slot value) const {
    object_.with(frame, [&](Heap& object) {
      __atomic_store_n(&slotIn(object, property_).word, value.word, __ATOMIC_RELAXED);
    });
  }
  Slot plain(Frame& frame) const {
    return object_.with(frame, [&](Heap& object) {
      return Slot{.word = __atomic_load_n(&slotIn(object, property_).word, __ATOMIC_RELAXED)};
    });
  }

  const Property& property_;
  Object object_;
  const bool isPlain_;
};

}  // namespace

Expr selfObject(Type type) {
  Expr self = referenceNode(type, [](Frame& frame) { return Ref<Heap>::share(frame.locals[0].heap); });
  self->heldIn = 0;
  self->isSelf = true;
  return self;
}

Expr field(const Property& property, Expr object, const std::string& member) {
  if (object->isSelf) return std::make_unique<FieldPlace<OfSelf>>(property, OfSelf());
  if (object->heldIn) {
    return std::make_unique<FieldPlace<OfVariable>>(property, OfVariable{*object->heldIn, member});
  }
  return std::make_unique<FieldPlace<OfValue>>(property, OfValue{std::move(object), member});
}

}  // namespace host
