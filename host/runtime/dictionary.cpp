// Keeps what Dictionaries hold. Threads may share one: each member is one step to all others.
#include "runtime/dictionary.h"

#include <bit>
#include <cmath>
#include <iterator>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "runtime/array.h"
#include "runtime/exception.h"
#include "runtime/host_record.h"
#include "runtime/sharing.h"
#include "runtime/variant.h"

namespace host {

namespace {

// What makes two Variants the same key: numbers of any type by what they are, texts but for the case of A to
// Z, other things only by being the same.
struct Key {
  enum class Sort : std::uint8_t { nil, negative, whole, fraction, text, boolean, pointer, identity };
  Sort sort = Sort::nil;
  std::uint64_t bits = 0;
  std::string text;

  friend bool operator==(const Key&, const Key&) = default;
};

struct KeyHash {
  std::size_t operator()(const Key& key) const {
    const std::uint64_t mixed = (key.bits ^ key.bits >> 29) * 0x9E3779B97F4A7C15;
    return std::hash<std::string>()(key.text) ^ static_cast<std::size_t>(mixed ^ mixed >> 32) ^
           static_cast<std::size_t>(key.sort);
  }
};

Key keyOf(double number) {
  if (number == std::floor(number) && number < 0x1p64 && number >= -0x1p63) {
    if (number < 0) {
      return {Key::Sort::negative, static_cast<std::uint64_t>(static_cast<std::int64_t>(number)), {}};
    }
    return {Key::Sort::whole, static_cast<std::uint64_t>(number), {}};
  }
  return {Key::Sort::fraction, std::isnan(number) ? 0 : std::bit_cast<std::uint64_t>(number), {}};
}

Key keyOf(const Heap* variant) {
  const Type type = typeIn(variant);
  if (type.array) return {Key::Sort::identity, reinterpret_cast<std::uintptr_t>(variant), {}};
  switch (type.kind) {
    case Kind::Nil:
      return {};
    case Kind::Object:
      return {Key::Sort::identity, reinterpret_cast<std::uintptr_t>(variant), {}};
    case Kind::String: {
      std::string text = utf8Of(toText(variant).get());
      for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
      return {Key::Sort::text, 0, std::move(text)};
    }
    case Kind::Boolean:
      return {Key::Sort::boolean, toUInt64(variant), {}};
    case Kind::Pointer:
      return {Key::Sort::pointer, toUInt64(variant), {}};
    case Kind::UInt64:
      return {Key::Sort::whole, toUInt64(variant), {}};
    case Kind::Single:
    case Kind::Double:
    case Kind::Currency:
      return keyOf(toDouble(variant));
    default: {
      const std::int64_t number = toInt64(variant);
      return {number < 0 ? Key::Sort::negative : Key::Sort::whole, static_cast<std::uint64_t>(number), {}};
    }
  }
}

struct Entry {
  Ref<> key, value;
  const Key* found = nullptr;  // under what it is found; null: it has been removed
};

// In the order in which the keys came.
class Contents {
 public:
  std::size_t count() const { return places_.size(); }
  const Entry* find(const Key& key) const {
    const auto found = places_.find(key);
    return found == places_.end() ? nullptr : &entries_[found->second];
  }
  // Gives back the value that was there.
  Ref<> put(Key key, Ref<> given, Ref<> value) {
    if (const auto found = places_.find(key); found != places_.end()) {
      return std::exchange(entries_[found->second].value, std::move(value));
    }
    if (entries_.size() == entries_.capacity()) entries_.reserve(2 * entries_.size() + 8);
    const auto place = places_.emplace(std::move(key), entries_.size()).first;
    entries_.push_back({std::move(given), std::move(value), &place->first});
    return nullptr;
  }
  // Without a key: there was none.
  Entry remove(const Key& key) {
    const auto found = places_.find(key);
    if (found == places_.end()) return {};
    Entry removed = std::exchange(entries_[found->second], {});
    places_.erase(found);
    if (entries_.size() > 2 * count() + 16) close();
    return removed;
  }
  // As if nothing had been removed.
  const std::vector<Entry>& entries() {
    if (entries_.size() != count()) close();
    return entries_;
  }
  template <typename Visit>
  void forEach(Visit visit) const {
    for (const Entry& each : entries_) {
      if (each.found) visit(each);
    }
  }

 private:
  void close() {
    std::erase_if(entries_, [](const Entry& each) { return !each.found; });
    for (std::size_t i = 0; i < entries_.size(); ++i) places_.find(*entries_[i].found)->second = i;
  }

  std::unordered_map<Key, std::size_t, KeyHash> places_;
  std::vector<Entry> entries_;
};

// Instance data.
struct DictionaryData {
  Contents* contents;
};
const Class* dictionaryClass;

Contents& contentsOf(REALobject self) { return *dataIn<DictionaryData>(self, *dictionaryClass).contents; }
Heap* heapOf(REALobject handle) { return reinterpret_cast<Heap*>(handle); }
REALobject handleOf(Ref<> thing) { return reinterpret_cast<REALobject>(thing.detach()); }

void make(REALobject self) { dataIn<DictionaryData>(self, *dictionaryClass).contents = new Contents; }
void destroy(REALobject self) { delete &contentsOf(self); }

[[noreturn]] void failForNoKey(const Heap* key) {
  throw HostException("KeyNotFoundException",
                      "There is no key " +
                          display(Slot{.heap = const_cast<Heap*>(key)}, {Kind::Variant}).substr(0, 200) +
                          ".");
}

// The value of a key, if there is one.
std::optional<Ref<>> find(REALobject self, const Key& key) {
  const Using use(self);
  const Entry* found = contentsOf(self).find(key);
  return found ? std::optional(found->value) : std::nullopt;
}

REALobject getValue(REALobject self, REALobject key) {
  return asPending([&] {
    std::optional<Ref<>> found = find(self, keyOf(heapOf(key)));
    if (!found) failForNoKey(heapOf(key));
    return handleOf(std::move(*found));
  });
}
REALobject lookup(REALobject self, REALobject key, REALobject otherwise) {
  return asPending(
      [&] { return handleOf(find(self, keyOf(heapOf(key))).value_or(Ref<>::share(heapOf(otherwise)))); });
}
bool hasKey(REALobject self, REALobject key) {
  return asPending([&] { return find(self, keyOf(heapOf(key))).has_value(); });
}
void put(REALobject self, Ref<> key, Ref<> value) {
  Key found = keyOf(key.get());
  Ref<> old;  // given back when this thread is no longer alone with the Dictionary
  const Changing change(self);
  old = contentsOf(self).put(std::move(found), std::move(key), std::move(value));
}
void setValue(REALobject self, REALobject key, REALobject value) {
  asPending([&] { put(self, Ref<>::share(heapOf(key)), Ref<>::share(heapOf(value))); });
}
void removeKey(REALobject self, REALobject key) {
  asPending([&] {
    const Key wanted = keyOf(heapOf(key));
    Entry removed;
    {
      const Changing change(self);
      removed = contentsOf(self).remove(wanted);
    }
    if (!removed.found) failForNoKey(heapOf(key));
  });
}
void removeAll(REALobject self) {
  Contents old;
  const Changing change(self);
  std::swap(old, contentsOf(self));
}
RBInteger getCount(REALobject self, RBInteger) {
  const Using use(self);
  return static_cast<RBInteger>(contentsOf(self).count());
}

REALobject keyAt(REALobject self, RBInteger index) {
  return asPending([&] {
    RBInteger count;
    {
      const Changing change(self);
      const std::vector<Entry>& entries = contentsOf(self).entries();
      count = static_cast<RBInteger>(entries.size());
      if (index >= 0 && index < count) return handleOf(entries[static_cast<std::size_t>(index)].key);
    }
    throw HostException("OutOfBoundsException", "There is no key at " + std::to_string(index) +
                                                    "; there are " + std::to_string(count) + ".");
  });
}

// As it is now; the entries are shared with it.
std::vector<Entry> snapshot(REALobject self) {
  std::vector<Entry> entries;
  const Using use(self);
  entries.reserve(contentsOf(self).count());
  contentsOf(self).forEach([&](const Entry& each) { entries.push_back(each); });
  return entries;
}

template <Ref<> Entry::*part>
REALarray arrayOf(REALobject self) {
  return asPending([&] {
    const std::vector<Entry> entries = snapshot(self);
    Ref<Array> array = makeArray({Kind::Variant}, 0);
    for (const Entry& each : entries) array->append(Slot{.heap = (each.*part).get()});
    return reinterpret_cast<REALarray>(array.detach());
  });
}

REALobject clone(REALobject self) {
  return asPending([&] {
    Ref<Object> made = makeObject(*dictionaryClass);
    for (Entry& each : snapshot(self)) {
      put(reinterpret_cast<REALobject>(made.get()), std::move(each.key), std::move(each.value));
    }
    return handleOf(std::move(made));
  });
}

}  // namespace

bool isDictionary(const Heap& thing) { return dictionaryClass && isInstance(&thing, *dictionaryClass); }

std::vector<std::pair<Ref<>, Ref<>>> entriesOf(const Heap& dictionary) {
  std::vector<std::pair<Ref<>, Ref<>>> entries;
  for (Entry& each : snapshot(reinterpret_cast<REALobject>(const_cast<Heap*>(&dictionary)))) {
    entries.emplace_back(std::move(each.key), std::move(each.value));
  }
  return entries;
}

void forEachInDictionary(const Heap& thing, const std::function<void(const Heap&)>& visit) {
  if (!isDictionary(thing)) return;
  contentsOf(reinterpret_cast<REALobject>(const_cast<Heap*>(&thing))).forEach([&](const Entry& each) {
    for (const Heap* held : {each.key.get(), each.value.get()}) {
      if (held) visit(*held);
    }
  });
}

void registerDictionary(Registry& registry) {
  static REALproperty properties[] = {
      hostProperty("Count", "Integer", &getCount),
      hostProperty("KeyCount", "Integer", &getCount),
  };
  static REALmethodDefinition methods[] = {
      hostMethod("Value(key as Variant) as Variant", &getValue, &setValue),
      hostMethod("Operator_Subscript(key as Variant) as Variant", &getValue, &setValue),
      hostMethod("Lookup(key as Variant, otherwise as Variant) as Variant", &lookup),
      hostMethod("HasKey(key as Variant) as Boolean", &hasKey),
      hostMethod("Remove(key as Variant)", &removeKey),
      hostMethod("RemoveAll", &removeAll),
      hostMethod("Clear", &removeAll),
      hostMethod("Key(index as Integer) as Variant", &keyAt),
      hostMethod("Keys as Variant()", &arrayOf<&Entry::key>),
      hostMethod("Values as Variant()", &arrayOf<&Entry::value>),
      hostMethod("Clone as Dictionary", &clone),
  };
  static REALclassDefinition record =
      hostClass<DictionaryData>("Dictionary", properties, methods, &destroy, &make);
  dictionaryClass = &registry.addClass(record, false);
}

}  // namespace host
