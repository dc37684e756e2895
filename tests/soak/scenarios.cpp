#include "scenarios.h"

#include <algorithm>

#include "runtime/array.h"
#include "runtime/object.h"
#include "runtime/registry.h"
#include "runtime/report.h"
#include "runtime/text.h"
#include "runtime/variant.h"

namespace soak {

using namespace host;

namespace {

constexpr const char* counterClass = "AtomicIntegerQTX";
constexpr const char* flagClass = "AtomicFlagQTX";
constexpr const char* queueClass = "AtomicQueueQTX";
constexpr const char* wideClasses[] = {"Int128QTX", "UInt128QTX"};

Ref<Object> make(const char* className) { return makeObject(*registry().findClass(className)); }

void require(bool holds, const std::string& what) {
  if (!holds) throw Loss(what);
}

// What a queue holds: who put it in, and as its how manyeth.
struct Item {
  std::uint64_t producer, number;
};
Ref<Heap> itemOf(Item item) {
  return box(slotOf(static_cast<std::int64_t>(item.producer << 48 | item.number)), Type{Kind::Int64});
}
Item itemIn(const Heap* variant, const char* what) {
  const auto word = static_cast<std::uint64_t>(toInt64(variant));
  const Item item{word >> 48, word & 0xFFFF'FFFF'FFFF};
  require(item.producer < threadCount && item.number > 0,
          std::string(what) + " holds what nobody has put in");
  return item;
}

// The members in use.
struct Names {
  const Member &increment = member(counterClass, "Increment as Int64"),
               &decrement = member(counterClass, "Decrement as Int64"),
               &exchange = member(counterClass, "Exchange(Value as Int64) as Int64"),
               &add = member(counterClass, "Add(Value as Int64) as Int64"),
               &subtract = member(counterClass, "Subtract(Value as Int64) as Int64"),
               &operatorAdd = member(counterClass, "Operator_Add(other as Int64) as Int64"),
               &operatorSubtract = member(counterClass, "Operator_Subtract(other as Int64) as Int64"),
               &bitwiseAnd = member(counterClass, "BitwiseAnd(Value as Int64) as Int64"),
               &bitwiseOr = member(counterClass, "BitwiseOr(Value as Int64) as Int64"),
               &bitwiseXOr = member(counterClass, "BitwiseXOr(Value as Int64) as Int64"),
               &assign = member(counterClass, "Operator_Convert(value as Int64)"),
               &read = member(counterClass, "Operator_Convert as Int64"),
               &getValue = member(counterClass, "get Value"), &setValue = member(counterClass, "set Value"),
               &compareExchange = member(
                   counterClass, "CompareExchange(byref expected as Int64, desired as Int64) as Boolean"),
               &compare = member(counterClass, "Operator_Compare(other as AtomicIntegerQTX) as Integer");
  const Member &testAndSet = member(flagClass, "TestAndSet as Boolean"),
               &test = member(flagClass, "Test as Boolean"), &clearFlag = member(flagClass, "Clear"),
               &assignFlag = member(flagClass, "Operator_Convert(value as Boolean)"),
               &readFlag = member(flagClass, "Operator_Convert as Boolean"),
               &getFlag = member(flagClass, "get Value"), &setFlag = member(flagClass, "set Value"),
               &compareFlags = member(flagClass, "Operator_Compare(other as AtomicFlagQTX) as Integer");
  const Member &push = member(queueClass, "Push(value as Variant)"),
               &insert = member(queueClass, "Insert(value as Variant)"),
               &popFirst = member(queueClass, "PopFirst as Variant"),
               &popLast = member(queueClass, "PopLast as Variant"), &clear = member(queueClass, "Clear"),
               &values = member(queueClass, "Values as Variant()"),
               &valuesByConversion = member(queueClass, "Operator_Convert as Variant()"),
               &addQueue = member(queueClass, "Add(values as AtomicQueueQTX)"),
               &addArray = member(queueClass, "Add(values() as Variant)"),
               &append = member(queueClass, "Operator_Add(value as Variant) as AtomicQueueQTX"),
               &compareQueues = member(queueClass, "Operator_Compare(other as AtomicQueueQTX) as Integer"),
               &count = member(queueClass, "get Count"), &topValue = member(queueClass, "get TopValue"),
               &setTopValue = member(queueClass, "set TopValue");
  const Member& draw = member("", "RandomNormalDistributionQTX(Mean as Double, StdDev as Double) as double");
  struct Wide {
    const Member *constants[3], *data, *low, *high, *bitwiseAnd;
  } wide[2];
  Names() {
    for (std::size_t i = 0; i < 2; ++i) {
      const std::string name = wideClasses[i], word = i == 0 ? "Int64" : "UInt64";
      wide[i] = {{&member(name, "zero as " + name), &member(name, "one as " + name),
                  &member(name, "two as " + name)},
                 &member(name, "get Data"),
                 &member(name, "get LowValue"),
                 &member(name, "get HighValue"),
                 &member(name, "BitwiseAnd(Value as " + word + ") as " + name)};
    }
  }
};
const Names& names() {
  static const Names all;
  return all;
}

constexpr std::int64_t none = 0;  // the parameter of accessors

// A word whose halves are alike, as one that another thread has only half written would not be.
std::int64_t doubled(std::uint64_t half) {
  return static_cast<std::int64_t>((half & 0xFFFF'FFFF) * 0x1'0000'0001);
}
bool isDoubled(std::int64_t value) { return doubled(static_cast<std::uint64_t>(value)) == value; }

}  // namespace

struct Scenarios::Objects {
  Ref<Object> sum = make(counterClass), tickets = make(counterClass), exchanged = make(counterClass),
              bits = make(counterClass), stored = make(counterClass), nothing = make(counterClass);
  Ref<Object> flag = make(flagClass), otherFlag = make(flagClass);
  std::int64_t guarded = 0;  // a plain number: whoever has set the flag is alone with it
  Ref<Object> line = make(queueClass), bag = make(queueClass), emptied = make(queueClass);
  Ref<Object> pair[2] = {make(queueClass), make(queueClass)};
  Ref<Object> mask[2] = {make(wideClasses[0]), make(wideClasses[1])};  // 15
};

// What one thread has done, or knows.
struct Scenarios::Share {
  std::uint64_t sum = 0, tickets = 0, ticketSum = 0, putIn = 0, gotOut = 0, guarded = 0;
  std::int64_t lastTicket = -1, known = 0;
  std::uint8_t bits = 0;
  struct Flow {
    std::uint64_t made = 0, in = 0, out = 0, inSum = 0, outSum = 0;
  } line, bag;
  std::uint64_t lastOf[threadCount] = {};  // of the line, from each producer
  std::vector<double> draws;

  void take(const Heap* variant, Flow& flow, const char* what) {
    const Item item = itemIn(variant, what);
    ++flow.out;
    flow.outSum += item.producer * 0x9E37'79B9 + item.number * 0x1'0000'01B3;
  }
  Ref<Heap> made(std::size_t producer, Flow& flow) {
    const Item item{producer, ++flow.made};
    ++flow.in;
    flow.inSum += item.producer * 0x9E37'79B9 + item.number * 0x1'0000'01B3;
    return itemOf(item);
  }
};

namespace {

// One thread at work.
class Steps {
 public:
  Steps(Worker& worker, Scenarios::Objects& objects, Scenarios::Share& share)
      : worker_(worker), objects_(objects), share_(share) {}

  void sums() {
    const auto by = static_cast<std::int64_t>(worker_.random() >> worker_.below(64));
    const Slot self = slotOf(objects_.sum.get());
    switch (worker_.below(6)) {
      case 0:
        worker_.call(names_.increment, {self});
        share_.sum += 1;
        break;
      case 1:
        worker_.call(names_.decrement, {self});
        share_.sum -= 1;
        break;
      case 2:
      case 3:
        worker_.call(worker_.below(2) == 0 ? names_.add : names_.operatorAdd, {self, slotOf(by)});
        share_.sum += static_cast<std::uint64_t>(by);
        break;
      default:
        worker_.call(worker_.below(2) == 0 ? names_.subtract : names_.operatorSubtract, {self, slotOf(by)});
        share_.sum -= static_cast<std::uint64_t>(by);
    }
  }

  // Each number is handed out once, and later ones are larger.
  void tickets() {
    const Slot self = slotOf(objects_.tickets.get());
    std::int64_t ticket = 0;
    if (worker_.below(2) == 0) {
      ticket = worker_.call(names_.increment, {self}).integer;
    } else {
      std::int64_t expected = share_.known;
      const std::int64_t before = expected;
      if (worker_.call(names_.compareExchange, {self, Slot{.pointer = &expected}, slotOf(expected + 1)})
              .word == 0) {
        require(expected > before, "CompareExchange fails where it should not");
        share_.known = expected;
        return;
      }
      ticket = before;
    }
    require(ticket > share_.lastTicket, "a counter goes back");
    share_.lastTicket = ticket;
    share_.known = ticket + 1;
    ++share_.tickets;
    share_.ticketSum += static_cast<std::uint64_t>(ticket);
    const Slot zero = slotOf(objects_.nothing.get());
    require(worker_.call(names_.compare, {self, zero}).integer == 1 &&
                worker_.call(names_.compare, {zero, self}).integer == -1,
            "counters compare wrongly");
  }

  void exchanges() {
    const std::uint64_t given = worker_.random();
    share_.putIn += given;
    share_.gotOut += worker_
                         .call(names_.exchange,
                               {slotOf(objects_.exchanged.get()), slotOf(static_cast<std::int64_t>(given))})
                         .word;
  }

  // Eight of the bits are this thread's alone.
  void bits() {
    const Slot self = slotOf(objects_.bits.get());
    const std::size_t shift = 8 * worker_.index;
    const auto given = static_cast<std::uint8_t>(worker_.random());
    const std::uint64_t mine = std::uint64_t{given} << shift, others = ~(std::uint64_t{0xFF} << shift);
    std::uint64_t found = 0;
    std::uint8_t now = share_.bits;
    switch (worker_.below(3)) {
      case 0:
        found = worker_.call(names_.bitwiseOr, {self, Slot{.word = mine}}).word;
        now |= given;
        break;
      case 1:
        found = worker_.call(names_.bitwiseAnd, {self, Slot{.word = mine | others}}).word;
        now &= given;
        break;
      default:
        found = worker_.call(names_.bitwiseXOr, {self, Slot{.word = mine}}).word;
        now ^= given;
    }
    require(static_cast<std::uint8_t>(found >> shift) == share_.bits, "bits are lost");
    share_.bits = now;
  }

  void stored() {
    const Slot self = slotOf(objects_.stored.get());
    const Slot value = slotOf(doubled(worker_.random()));
    switch (worker_.below(4)) {
      case 0:
        worker_.call(names_.assign, {self, value});
        break;
      case 1:
        worker_.call(names_.setValue, {self, slotOf(none), value});
        break;
      case 2:
        require(isDoubled(worker_.call(names_.read, {self}).integer), "half a value is read");
        break;
      default:
        require(isDoubled(worker_.call(names_.getValue, {self, slotOf(none)}).integer),
                "half a value is read");
    }
  }

  void flags() {
    const Slot self = slotOf(objects_.flag.get()), other = slotOf(objects_.otherFlag.get());
    if (worker_.call(names_.testAndSet, {self}).word == 0) {
      ++objects_.guarded;
      ++share_.guarded;
      require(worker_.call(names_.test, {self}).word == 1 &&
                  worker_.call(names_.readFlag, {self}).word == 1 &&
                  worker_.call(names_.getFlag, {self, slotOf(none)}).word == 1,
              "a flag that is set is not");
      require(worker_.call(names_.compareFlags, {self, other}).integer == 1, "flags compare wrongly");
      switch (worker_.below(3)) {
        case 0:
          worker_.call(names_.clearFlag, {self});
          break;
        case 1:
          worker_.call(names_.assignFlag, {self, slotOf(none)});
          break;
        default:
          worker_.call(names_.setFlag, {self, slotOf(none), slotOf(none)});
      }
    }
  }

  // What each thread has put in comes out in its order.
  void line() {
    const Slot self = slotOf(objects_.line.get());
    if (worker_.below(2) == 0) {
      const Ref<Heap> item = share_.made(worker_.index, share_.line);
      if (worker_.below(2) == 0) {
        worker_.call(names_.push, {self, slotOf(item.get())});
      } else {
        worker_.call(names_.append, {self, slotOf(item.get())});
        release(objects_.line.get());  // the result
      }
    } else if (const auto item = Ref<>::adopt(worker_.call(names_.popFirst, {self}).heap)) {
      share_.take(item.get(), share_.line, "PopFirst");
      const Item found = itemIn(item.get(), "PopFirst");
      require(found.number > share_.lastOf[found.producer], "a queue hands out of order");
      share_.lastOf[found.producer] = found.number;
    }
  }

  void bag() {
    const Slot self = slotOf(objects_.bag.get());
    const std::int64_t count = worker_.call(names_.count, {self, slotOf(none)}).integer;
    require(count >= 0, "Count is below 0");
    std::size_t choice = worker_.below(12);
    if (count > 500) choice = 4 + choice % 4;
    if (choice < 2) {
      const Ref<Heap> item = share_.made(worker_.index, share_.bag);
      worker_.call(choice == 0 ? names_.insert : names_.push, {self, slotOf(item.get())});
    } else if (choice < 4) {
      const Ref<Array> items = makeArray(Type{Kind::Variant}, 0);
      for (std::size_t i = worker_.below(4); i > 0; --i) {
        items->insert(items->count(), slotOf(share_.made(worker_.index, share_.bag).get()));
      }
      worker_.call(names_.addArray, {self, slotOf(items.get())});
    } else if (choice < 8) {
      const auto item =
          Ref<>::adopt(worker_.call(choice < 6 ? names_.popFirst : names_.popLast, {self}).heap);
      if (item) share_.take(item.get(), share_.bag, "a pop");
    } else if (choice < 10) {
      const auto all =
          Ref<>::adopt(worker_.call(choice == 8 ? names_.values : names_.valuesByConversion, {self}).heap);
      checkItems(static_cast<const Array&>(*all), "Values");
    } else if (choice == 10) {
      const auto top = Ref<>::adopt(worker_.call(names_.topValue, {self, slotOf(none)}).heap);
      if (top) itemIn(top.get(), "TopValue");
    } else {
      const Ref<Object> own = make(queueClass);
      worker_.call(names_.addQueue, {slotOf(own.get()), self});
      const auto all = Ref<>::adopt(worker_.call(names_.values, {slotOf(own.get())}).heap);
      checkItems(static_cast<const Array&>(*all), "a copied queue");
      require(static_cast<const Array&>(*all).count() ==
                  worker_.call(names_.count, {slotOf(own.get()), slotOf(none)}).integer,
              "a queue of one thread changes by itself");
      const std::int64_t order = worker_.call(names_.compareQueues, {slotOf(own.get()), self}).integer;
      require(order >= -1 && order <= 1, "queues compare wrongly");
    }
  }

  // Nothing of it is known afterwards, but that nothing waits and every reference is given back.
  void emptied() {
    const Slot self = slotOf(objects_.emptied.get());
    const Ref<Heap> item = itemOf({worker_.index, 1});
    switch (worker_.below(5)) {
      case 0:
        worker_.call(names_.clear, {self});
        break;
      case 1:
        worker_.call(names_.setTopValue, {self, slotOf(none), slotOf(item.get())});
        break;
      case 2:
        release(worker_.call(names_.popLast, {self}).heap);
        break;
      default:
        worker_.call(names_.push, {self, slotOf(item.get())});
    }
    const Slot one = slotOf(objects_.pair[worker_.index % 2].get()),
               other = slotOf(objects_.pair[1 - worker_.index % 2].get());
    if (worker_.call(names_.count, {one, slotOf(none)}).integer > 50) worker_.call(names_.clear, {one});
    worker_.call(names_.push, {other, slotOf(item.get())});
    worker_.call(names_.addQueue, {one, other});
    worker_.call(names_.compareQueues, {other, one});
  }

  // Results from 0 to 15 are objects that all threads share, until somebody asks where the value lies.
  void smallValues() {
    const std::size_t i = worker_.below(2);
    const Names::Wide& wide = names_.wide[i];
    const std::uint64_t value = worker_.below(4) == 0 ? worker_.below(16) : 2;  // where the threads meet
    const bool isConstant = value < 3 && worker_.below(2) == 0;
    const auto result = Ref<>::adopt(
        isConstant
            ? worker_.call(*wide.constants[value], std::span<const Slot>()).heap
            : worker_.call(*wide.bitwiseAnd, {slotOf(objects_.mask[i].get()), Slot{.word = value}}).heap);
    require(result && worker_.call(*wide.low, {slotOf(result.get()), slotOf(none)}).word == value &&
                worker_.call(*wide.high, {slotOf(result.get()), slotOf(none)}).word == 0,
            "a small value is another");
    if (worker_.below(4) == 0) {
      require(worker_.call(*wide.data, {slotOf(result.get()), slotOf(none)}).pointer != nullptr,
              "Data is nil");
    }
  }

  void draws() {
    const double drawn = worker_.call(names_.draw, {Slot{.number = 0}, Slot{.number = 1}}).number;
    require(drawn > -40 && drawn < 40, "a draw is out of range");
    if (share_.draws.size() < 10000) share_.draws.push_back(drawn);
  }

 private:
  static void checkItems(const Array& array, const char* what) {
    for (std::int64_t i = 0; i < array.count(); ++i) itemIn(array.elements.load()[i].heap, what);
  }

  Worker& worker_;
  Scenarios::Objects& objects_;
  Scenarios::Share& share_;
  const Names& names_ = names();
};

constexpr void (Steps::*all[])() = {&Steps::sums,    &Steps::tickets,     &Steps::exchanges, &Steps::bits,
                                    &Steps::stored,  &Steps::flags,       &Steps::line,      &Steps::bag,
                                    &Steps::emptied, &Steps::smallValues, &Steps::draws};

}  // namespace

const std::size_t Scenarios::count = std::size(all);

Scenarios::Scenarios(std::size_t round) : round_(round), objects_(std::make_unique<Objects>()) {
  for (auto& each : shares_) each = std::make_unique<Share>();
  for (const Ref<Object>& each : objects_->mask) {
    (*member(each->objectClass->name, "set LowValue").call)(
        std::array{slotOf(each.get()), slotOf(none), slotOf(std::int64_t{15})});
  }
}
Scenarios::~Scenarios() = default;

void Scenarios::run(Worker& worker) {
  Steps steps(worker, *objects_, *shares_[worker.index]);
  // Most of a round is spent on one, so that the threads meet in it; then mixed.
  const auto chosen = all[round_ % std::size(all)];
  for (int i = 0; i < 2000; ++i) (steps.*chosen)();
  for (int i = 0; i < 200; ++i) (steps.*all[worker.below(std::size(all))])();
}

void Scenarios::check(Worker& alone) {
  Share sum;
  std::uint64_t bits = 0;
  std::vector<double> draws;
  for (std::size_t i = 0; i < threadCount; ++i) {
    const Share& each = *shares_[i];
    sum.sum += each.sum;
    sum.tickets += each.tickets;
    sum.ticketSum += each.ticketSum;
    sum.putIn += each.putIn;
    sum.gotOut += each.gotOut;
    sum.guarded += each.guarded;
    for (const auto flow : {&Share::line, &Share::bag}) {
      (sum.*flow).in += (each.*flow).in;
      (sum.*flow).out += (each.*flow).out;
      (sum.*flow).inSum += (each.*flow).inSum;
      (sum.*flow).outSum += (each.*flow).outSum;
    }
    bits |= std::uint64_t{each.bits} << (8 * i);
    draws.insert(draws.end(), each.draws.begin(), each.draws.end());
  }
  const Names& names = soak::names();
  const auto valueOf = [&](const Ref<Object>& counter) {
    return alone.call(names.read, {slotOf(counter.get())}).word;
  };
  require(valueOf(objects_->sum) == sum.sum, "a change of a counter is lost");
  require(valueOf(objects_->tickets) == sum.tickets && sum.ticketSum == sum.tickets * (sum.tickets - 1) / 2,
          "a number was handed out twice, or never");
  require(sum.putIn - sum.gotOut == valueOf(objects_->exchanged), "an exchanged value is lost");
  require(valueOf(objects_->bits) == bits, "bits are lost");
  require(isDoubled(static_cast<std::int64_t>(valueOf(objects_->stored))), "half a value is stored");
  require(alone.call(names.test, {slotOf(objects_->flag.get())}).word == 0, "a flag was left set");
  require(static_cast<std::uint64_t>(objects_->guarded) == sum.guarded, "two threads had set one flag");
  for (const auto& [queue, flow] :
       {std::pair{objects_->line.get(), &Share::line}, std::pair{objects_->bag.get(), &Share::bag}}) {
    const auto left = alone.call(names.count, {slotOf(queue), slotOf(none)}).word;
    require((sum.*flow).in == (sum.*flow).out + left, "pushed values are not those popped and left");
    while (const auto item = Ref<>::adopt(alone.call(names.popLast, {slotOf(queue)}).heap)) {
      sum.take(item.get(), sum.*flow, "a queue");
    }
    require((sum.*flow).in == (sum.*flow).out && (sum.*flow).inSum == (sum.*flow).outSum,
            "pushed values are not those popped");
  }
  // They have 53 bits: two alike are two draws from one state of the generator.
  std::sort(draws.begin(), draws.end());
  require(std::adjacent_find(draws.begin(), draws.end()) == draws.end(), "two threads drew the same number");
}

void checkNothingLeft(Worker& alone) {
  for (const Names::Wide& wide : names().wide) {
    // Whoever takes one gives back what others had to leave.
    for (const Member* each : wide.constants) release(alone.call(*each, std::span<const Slot>()).heap);
  }
  const std::string left = leakReport({std::begin(wideClasses), std::end(wideClasses)}).leaks;
  require(left.empty(), "references are left:\n" + left);
  std::size_t small[2] = {};
  forEachLive([&](const Heap& thing) {
    for (std::size_t i = 0; i < 2; ++i) small[i] += thing.objectClass->name == wideClasses[i];
  });
  require(small[0] <= 16 && small[1] <= 16, "more small values are kept than there are");
}

}  // namespace soak
