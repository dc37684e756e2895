// Collects the frame descriptions of an image from both of its tables.
#include "macho/unwind.h"

#include <algorithm>
#include <map>

#include "macho/compact_unwind.h"
#include "macho/cursor.h"
#include "macho/frames.h"

namespace macho {

namespace {

// The image's own descriptions, with their pointers as they are in the process.
class OwnDescriptions {
 public:
  OwnDescriptions(const Image& image, const Section& section, std::uint64_t slide, Descriptions& found)
      : image_(image),
        base_(section.address),
        bytes_(image.at(section.address, section.size)),
        slide_(slide),
        found_(found) {}

  void copy() {
    for (std::size_t at = 0; at < bytes_.size();) {
      Cursor cursor(bytes_, what);
      const auto length = cursor.readAt<std::uint32_t>(at);
      if (length == 0) return;
      const std::size_t field = cursor.position(), end = field + length;
      if (length >= 0xFFFFFFF0 || end > bytes_.size()) throw BadImage(std::string(what) + " ends too early");
      Cursor record(bytes_.first(end), what);
      if (const auto back = record.readAt<std::uint32_t>(field); back == 0) {
        kinds_.emplace(at, kindOf(record, end));
      } else {
        const auto kind = kinds_.find(field - back);
        if (kind == kinds_.end()) throw BadImage(std::string(what) + " refers to a record that it has not");
        describe(record, end, kind->second);
      }
      at = end;
    }
  }

 private:
  static constexpr const char* what = "__eh_frame";
  struct Kind {
    Descriptions::Kind common;
    bool augmented = false;
    std::uint8_t functionPointers = pointer::absolute, lsdaPointers = pointer::omitted;
  };

  std::uint64_t read(Cursor& cursor, unsigned form) {
    const unsigned format = form & ~unsigned{pointer::relative};
    if (format != pointer::absolute && format != pointer::signed4)
      throw BadImage(std::string(what) + " has a pointer of form " + std::to_string(form) +
                     ", which is not understood");
    const std::uint64_t here = base_ + cursor.position();
    const std::uint64_t value = format == pointer::signed4
                                    ? static_cast<std::uint64_t>(std::int64_t{cursor.read<std::int32_t>()})
                                    : cursor.read<std::uint64_t>();
    if (value == 0) return 0;
    return form & pointer::relative ? value + here : value;
  }

  // The cursor stands behind the mark of a kind's record.
  Kind kindOf(Cursor& record, std::size_t end) {
    if (record.read<std::uint8_t>() != 1)
      throw BadImage(std::string(what) + " has a record of a version that is not understood");
    const std::string augmentation = record.text();
    Kind kind;
    Common common;
    common.codeUnit = record.uleb();
    common.dataUnit = record.sleb();
    common.returnAddress = record.read<std::uint8_t>();
    for (const char each : augmentation) {
      if (each == 'z') {
        record.uleb();
        kind.augmented = true;
      } else if (each == 'P') {
        const auto form = record.read<std::uint8_t>();
        const std::uint64_t place = read(record, form & ~pointer::indirect);
        if (place == 0) continue;
        common.personality = form & pointer::indirect ? pointerAt(image_, slide_, place) : place + slide_;
      } else if (each == 'L') {
        kind.lsdaPointers = record.read<std::uint8_t>();
      } else if (each == 'R') {
        kind.functionPointers = record.read<std::uint8_t>();
      } else {
        throw BadImage(std::string(what) + " has the augmentation " + augmentation +
                       ", which is not understood");
      }
    }
    const auto instructions = bytes_.subspan(record.position(), end - record.position());
    common.instructions.assign(instructions.begin(), instructions.end());
    kind.common = found_.addKind(common);
    return kind;
  }

  void describe(Cursor& record, std::size_t end, const Kind& kind) {
    const std::uint64_t start = read(record, kind.functionPointers);
    const std::uint64_t size = read(record, kind.functionPointers & pointer::formatMask);
    std::uint64_t lsda = 0;
    if (kind.augmented) {
      const std::uint64_t bytes = record.uleb();
      const std::size_t from = record.position();
      if (bytes > end - from) throw BadImage(std::string(what) + " ends too early");
      if (kind.lsdaPointers != pointer::omitted && bytes > 0) lsda = read(record, kind.lsdaPointers);
      record.moveTo(from + bytes);
    }
    found_.describe(start, start + size, kind.common, lsda,
                    bytes_.subspan(record.position(), end - record.position()));
  }

  const Image& image_;
  std::uint64_t base_;
  std::span<const std::byte> bytes_;
  std::uint64_t slide_;
  std::map<std::size_t, Kind> kinds_;  // by their records' positions
  Descriptions& found_;
};

}  // namespace

std::vector<std::byte> frameDescriptions(const Image& image, std::uint64_t slide) {
  Descriptions found(image, slide);
  if (const Section* table = image.section("__TEXT", "__unwind_info"))
    describeCompact(image, *table, slide, found);
  if (const Section* own = image.section("__TEXT", "__eh_frame"))
    OwnDescriptions(image, *own, slide, found).copy();
  return found.finish();
}

}  // namespace macho
