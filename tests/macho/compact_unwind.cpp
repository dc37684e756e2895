// Translates compact unwind encodings. What they mean: Apple's published mach-o/compact_unwind_encoding.h.
#include "macho/compact_unwind.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <optional>

#include "macho/cursor.h"
#include "macho/mach_o.h"

namespace macho {

namespace {

// DWARF's numbers of the registers.
namespace x86 {
constexpr unsigned rbx = 3, rbp = 6, rsp = 7, r12 = 12, returnAddress = 16;
}
namespace arm {
constexpr unsigned x19 = 19, x29 = 29, x30 = 30, sp = 31, d8 = 72;
}

[[noreturn]] void notUnderstood(std::uint32_t encoding, const char* why) {
  char text[100];
  std::snprintf(text, sizeof text, "unwind encoding 0x%08x is not understood: %s", encoding, why);
  throw BadImage(text);
}

// The rules of one function: where its caller's frame (the CFA) and its registers are.
struct Rules {
  Bytes code;

  void frame(unsigned registerNumber, std::uint64_t offset) {
    code.byte(0x0C);  // DW_CFA_def_cfa
    code.uleb(registerNumber);
    code.uleb(offset);
  }
  // The register lies `words` words below the caller's frame.
  void saved(unsigned registerNumber, std::uint64_t words) {
    if (registerNumber < 64) {
      code.byte(0x80 | registerNumber);  // DW_CFA_offset
    } else {
      code.byte(0x05);  // DW_CFA_offset_extended
      code.uleb(registerNumber);
    }
    code.uleb(words);
  }
};

constexpr std::uint32_t framePointerNumber = 6;
unsigned x86Register(std::uint32_t encoding, std::uint32_t number) {
  if (number == 1) return x86::rbx;
  if (number >= 2 && number <= 5) return x86::r12 + number - 2;
  if (number == framePointerNumber) return x86::rbp;
  notUnderstood(encoding, "it saves a register that there is not");
}

Rules x86FramePointer(std::uint32_t encoding) {
  Rules rules;
  rules.frame(x86::rbp, 16);
  rules.saved(x86::returnAddress, 1);
  rules.saved(x86::rbp, 2);
  const std::uint32_t lowest = encoding >> 16 & 0xFF;  // in words below rbp
  for (unsigned i = 0; i < 5; ++i) {
    const std::uint32_t number = encoding >> (3 * i) & 7;
    if (number == 0) continue;
    if (i >= lowest) notUnderstood(encoding, "it saves a register above the frame");
    if (number == framePointerNumber) notUnderstood(encoding, "it saves the frame pointer twice");
    rules.saved(x86Register(encoding, number), lowest - i + 2);
  }
  return rules;
}

// Which registers are saved, and in which order, is the number of their permutation, digit by digit: each
// digit is a register's place among those that are not named yet.
Rules x86Frameless(std::uint32_t encoding, std::uint64_t stackBytes) {
  const unsigned count = encoding >> 10 & 7;
  std::uint32_t permutation = encoding & 0x3FF;
  if (count > 6) notUnderstood(encoding, "it saves more registers than there are");
  if (stackBytes < 8 * (count + 1)) notUnderstood(encoding, "its frame has no room for its registers");
  Rules rules;
  rules.frame(x86::rsp, stackBytes);
  rules.saved(x86::returnAddress, 1);
  std::vector<unsigned> left = {1, 2, 3, 4, 5, 6};
  for (unsigned i = 0; i < count; ++i) {
    std::uint32_t weight = 1;  // of this digit: how many ways there are to order those after it
    for (unsigned j = i + 1; j < count; ++j) weight *= 6 - j;
    const std::uint32_t digit = permutation / weight;
    permutation %= weight;
    if (digit >= left.size()) notUnderstood(encoding, "its order of registers is none");
    rules.saved(x86Register(encoding, left[digit]), count - i + 1);
    left.erase(left.begin() + digit);
  }
  return rules;
}

Rules armFrameless(std::uint32_t encoding) {
  if (encoding & 0xFFF) notUnderstood(encoding, "it saves registers without a frame");
  Rules rules;
  rules.frame(arm::sp, std::uint64_t{encoding >> 12 & 0xFFF} * 16);
  return rules;
}

Rules armFrame(std::uint32_t encoding) {
  Rules rules;
  rules.frame(arm::x29, 16);
  rules.saved(arm::x30, 1);
  rules.saved(arm::x29, 2);
  unsigned words = 3;
  for (unsigned pair = 0; pair < 12; ++pair) {
    if (!(encoding >> pair & 1)) continue;
    if (pair > 4 && pair < 8) notUnderstood(encoding, "it saves registers that there are not");
    const unsigned first = pair < 8 ? arm::x19 + 2 * pair : arm::d8 + 2 * (pair - 8);
    rules.saved(first, words++);
    rules.saved(first + 1, words++);
  }
  return rules;
}

// The rules that an encoding stands for; nothing where it leaves them to __eh_frame, or where nobody unwinds
// through.
std::optional<Rules> rulesOf(const Image& image, std::uint64_t start, std::uint32_t encoding) {
  const std::uint32_t mode = encoding & encoding::modeMask;
  if (mode == 0) return std::nullopt;
  if (image.processor == Processor::x86_64) {
    switch (mode) {
      case encoding::x86_64::dwarf:
        return std::nullopt;
      case encoding::x86_64::framePointer:
        return x86FramePointer(encoding);
      case encoding::x86_64::framelessSmall:
        return x86Frameless(encoding, std::uint64_t{encoding >> 16 & 0xFF} * 8);
      case encoding::x86_64::framelessLarge: {
        // The size stands in the instruction that makes room, so many bytes behind the function's start.
        const auto subtracted =
            Cursor(image.at(start + (encoding >> 16 & 0xFF), 4), "code").read<std::uint32_t>();
        return x86Frameless(encoding, subtracted + std::uint64_t{encoding >> 13 & 7} * 8);
      }
      default:
        notUnderstood(encoding, "its mode is unknown");
    }
  }
  switch (mode) {
    case encoding::arm64::dwarf:
      return std::nullopt;
    case encoding::arm64::frameless:
      return armFrameless(encoding);
    case encoding::arm64::frame:
      return armFrame(encoding);
    default:
      notUnderstood(encoding, "its mode is unknown");
  }
}

// Walks the table of two levels.
class Table {
 public:
  Table(const Image& image, const Section& section, std::uint64_t slide, Descriptions& found)
      : image_(image),
        slide_(slide),
        cursor_(image.at(section.address, section.size), "the unwind table"),
        found_(found) {}

  void translate() {
    header_ = cursor_.readAt<UnwindHeader>(0);
    if (header_.version != 1)
      throw BadImage("the unwind table is of version " + std::to_string(header_.version));
    for (std::uint32_t i = 0; i + 1 < header_.indexCount; ++i) {  // the last entry only ends the one before
      const auto entry = index(i), next = index(i + 1);
      if (entry.pageOffset != 0) translatePage(entry, next);
    }
  }

 private:
  UnwindIndexEntry index(std::uint32_t i) {
    return cursor_.readAt<UnwindIndexEntry>(header_.indexOffset +
                                            std::uint64_t{i} * sizeof(UnwindIndexEntry));
  }

  void translatePage(const UnwindIndexEntry& entry, const UnwindIndexEntry& next) {
    UnwindPage page = {};
    page.kind = cursor_.readAt<std::uint32_t>(entry.pageOffset);
    page.entryOffset = cursor_.read<std::uint16_t>();
    page.entryCount = cursor_.read<std::uint16_t>();
    if (page.kind == unwindPage::compressed) {
      page.encodingsOffset = cursor_.read<std::uint16_t>();
      page.encodingCount = cursor_.read<std::uint16_t>();
    } else if (page.kind != unwindPage::regular) {
      throw BadImage("the unwind table has a page of kind " + std::to_string(page.kind) +
                     ", which is not understood");
    }
    const auto at = [&](std::uint32_t i) -> UnwindRegularEntry {
      if (i == page.entryCount) return {next.functionOffset, 0};
      const std::uint64_t entries = std::uint64_t{entry.pageOffset} + page.entryOffset;
      if (page.kind == unwindPage::regular)
        return cursor_.readAt<UnwindRegularEntry>(entries + i * sizeof(UnwindRegularEntry));
      const auto word = cursor_.readAt<std::uint32_t>(entries + i * sizeof(std::uint32_t));
      const std::uint32_t number = word >> 24;
      std::uint64_t where = header_.commonEncodingsOffset + std::uint64_t{number} * sizeof(std::uint32_t);
      if (number >= header_.commonEncodingCount) {
        if (number - header_.commonEncodingCount >= page.encodingCount)
          throw BadImage("the unwind table has no encoding " + std::to_string(number));
        where = std::uint64_t{entry.pageOffset} + page.encodingsOffset +
                std::uint64_t{number - header_.commonEncodingCount} * sizeof(std::uint32_t);
      }
      return {entry.functionOffset + (word & 0xFFFFFF), cursor_.readAt<std::uint32_t>(where)};
    };
    // Pages may lie in each other; together they have no more than the table has room for.
    entries_ += page.entryCount;
    if (entries_ > cursor_.size() / sizeof(std::uint32_t))
      throw BadImage("the unwind table has more functions than room for them");
    for (std::uint32_t i = 0; i < page.entryCount; ++i) {
      const UnwindRegularEntry function = at(i);
      const std::uint64_t start = image_.lowest() + function.functionOffset,
                          end = image_.lowest() + at(i + 1).functionOffset;
      if (end < start) throw BadImage("the unwind table is not in order");
      const bool hasLsda = (function.encoding & encoding::hasLsda) != 0;
      if (const auto rules = rulesOf(image_, start, function.encoding)) {
        found_.describe(start, end, kindOf(function.encoding),
                        hasLsda ? lsda(function.functionOffset, entry, next) : 0, rules->code.all);
      }
    }
  }

  const Descriptions::Kind& kindOf(std::uint32_t encoding) {
    const std::uint32_t number = (encoding & encoding::personalityMask) >> encoding::personalityShift;
    std::optional<Descriptions::Kind>& known = kinds_[number];
    if (!known) {
      const unsigned returnAddress = image_.processor == Processor::x86_64 ? x86::returnAddress : arm::x30;
      known = found_.addKind(
          {.personality = personality(encoding, number), .returnAddress = returnAddress, .instructions = {}});
    }
    return *known;
  }

  std::uint64_t personality(std::uint32_t encoding, std::uint32_t number) {
    if (number == 0) return 0;
    if (number > header_.personalityCount) notUnderstood(encoding, "there is no such personality routine");
    const auto offset = cursor_.readAt<std::uint32_t>(header_.personalitiesOffset +
                                                      std::uint64_t{number - 1} * sizeof(std::uint32_t));
    return pointerAt(image_, slide_, image_.lowest() + offset);
  }

  std::uint64_t lsda(std::uint32_t functionOffset, const UnwindIndexEntry& entry,
                     const UnwindIndexEntry& next) {
    // They are in the order of the functions.
    const auto at = [&](std::uint64_t i) {
      return cursor_.readAt<UnwindLsdaEntry>(entry.lsdaOffset + i * sizeof(UnwindLsdaEntry));
    };
    const std::uint64_t count =
        (std::max(next.lsdaOffset, entry.lsdaOffset) - entry.lsdaOffset) / sizeof(UnwindLsdaEntry);
    std::uint64_t first = 0, last = count;
    while (first < last) {
      const std::uint64_t middle = (first + last) / 2;
      if (at(middle).functionOffset < functionOffset) {
        first = middle + 1;
      } else {
        last = middle;
      }
    }
    if (first < count && at(first).functionOffset == functionOffset)
      return image_.lowest() + at(first).lsdaOffset;
    throw BadImage("the unwind table names no exception table for the function at offset " +
                   std::to_string(functionOffset));
  }

  const Image& image_;
  std::uint64_t slide_;
  Cursor cursor_;
  UnwindHeader header_ = {};
  std::uint64_t entries_ = 0;                               // read so far
  std::array<std::optional<Descriptions::Kind>, 4> kinds_;  // by the number of their personality routine
  Descriptions& found_;
};

}  // namespace

void describeCompact(const Image& image, const Section& table, std::uint64_t slide, Descriptions& found) {
  Table(image, table, slide, found).translate();
}

}  // namespace macho
