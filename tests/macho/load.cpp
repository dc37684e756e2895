// Maps an image, fills its pointers in, tells the unwinder of it and runs its initialisers.
#include "macho/load.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>

#include "macho/mach_o.h"
#include "macho/system.h"
#include "macho/unwind.h"

extern "C" void __register_frame(const void* descriptions);  // of the unwinder that comes with the compiler

namespace macho {

namespace {

std::uint64_t pageOf(std::uint64_t address) { return address & ~(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) - 1); }
std::uint64_t pageAfter(std::uint64_t address) { return pageOf(address + static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) - 1); }

std::vector<std::byte> contentOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (!stream) throw BadImage("cannot be read: " + std::string(std::strerror(errno ? errno : EIO)));
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

// Room for the whole image with the file's bytes in it; the result is the slide.
std::uint64_t place(const Image& image) {
  const std::uint64_t lowest = pageOf(image.lowest()), size = pageAfter(image.highest()) - lowest;
  void* room = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED) throw BadImage("there is no room for " + std::to_string(size) + " bytes");
  const std::uint64_t slide = reinterpret_cast<std::uint64_t>(room) - lowest;
  for (const Segment& each : image.segments) {
    const auto content = image.at(each.address, each.fileSize);
    if (!content.empty()) std::memcpy(reinterpret_cast<void*>(each.address + slide), content.data(), content.size());
  }
  return slide;
}

void fillIn(const Image& image, std::uint64_t slide, const Imports& given) {
  std::vector<void*> addresses;
  for (const Import& each : image.imports) {
    const auto own = image.exports.find(each.name);
    const auto override = given.find(each.name);
    void* address = nullptr;
    if (own != image.exports.end() && (each.library == library::self || each.library == library::weakLookup)) {
      address = reinterpret_cast<void*>(own->second + slide);
    } else if (override != given.end()) {
      address = override->second;
    } else {
      address = systemSymbol(each.name);
    }
    const bool replacement = each.library == library::weakLookup;
    if (!address && !each.weak && !replacement) {
      const std::string from = each.library > 0 ? " of " + image.libraries[static_cast<std::size_t>(each.library - 1)] : "";
      throw BadImage("needs " + each.name + from + ", which is not known here");
    }
    addresses.push_back(address);
  }
  for (const Fixup& each : image.fixups) {
    std::uint64_t value = each.target + slide;
    if (each.import != Fixup::none) {
      void* const found = addresses[each.import];
      if (!found && each.replaces) continue;  // what stands there is the image's own
      value = reinterpret_cast<std::uint64_t>(found) + static_cast<std::uint64_t>(each.addend);
    }
    std::memcpy(reinterpret_cast<void*>(each.address + slide), &value, sizeof value);
  }
}

void setUpThreadLocals(const Image& image, std::uint64_t slide) {
  std::uint64_t start = 0, end = 0, filled = 0;
  unsigned alignment = 1;
  for (const Section& each : image.sections) {
    const bool zeros = each.type == sectionType::threadLocalZeroFill;
    if (!zeros && each.type != sectionType::threadLocalData) continue;
    if (end == 0) start = each.address;
    if (each.address < start || each.address < end) throw BadImage("its thread-local sections are not in order");
    end = each.address + each.size;
    if (!zeros) filled = end;
    alignment = std::max(alignment, each.alignment);
  }
  for (const Section& each : image.sections) {
    if (each.type != sectionType::threadLocalVariables) continue;
    auto* variables = new ThreadLocals;  // as long as the image
    if (pthread_key_create(&variables->key, std::free) != 0) throw BadImage("there are too many thread-local variables in this process");
    *variables = {variables->key, reinterpret_cast<const void*>(start + slide), filled ? filled - start : 0, end - start, alignment};
    auto* records = reinterpret_cast<ThreadLocalVariable*>(each.address + slide);
    for (std::uint64_t i = 0; i < each.size / sizeof *records; ++i) {
      if (records[i].offset >= variables->bytes) throw BadImage("a thread-local variable lies outside its sections");
      records[i].variables = variables;
    }
  }
}

void protect(const Image& image, std::uint64_t slide) {
  for (const Segment& each : image.segments) {
    int protection = PROT_NONE;
    if (each.protection & readable) protection |= PROT_READ;
    if ((each.protection & writable) && !(each.flags & readOnlyAfterFixups)) protection |= PROT_WRITE;
    if (each.protection & executable) protection |= PROT_EXEC;
    const std::uint64_t start = pageOf(each.address + slide), end = pageAfter(each.address + each.memorySize + slide);
    __builtin___clear_cache(reinterpret_cast<char*>(start), reinterpret_cast<char*>(end));
    if (mprotect(reinterpret_cast<void*>(start), end - start, protection) != 0)
      throw BadImage("segment " + each.name + " cannot be protected: " + std::strerror(errno));
  }
}

void registerFrames(const Image& image, std::uint64_t slide) {
  // The unwinder keeps what it is told of, as long as the process lives.
  static std::vector<std::vector<std::byte>>& kept = *new std::vector<std::vector<std::byte>>;
  static std::mutex keeping;
  const std::lock_guard lock(keeping);
  kept.push_back(frameDescriptions(image, slide));
  if (kept.back().size() > sizeof(std::uint32_t)) __register_frame(kept.back().data());
  const Section* frames = image.section("__TEXT", "__eh_frame");
  if (!frames || frames->size == 0) return;
  // The unwinder reads up to a record of length zero, where the Mac's goes by the section's size.
  const auto* end = reinterpret_cast<const char*>(frames->address + frames->size + slide);
  constexpr char zeros[sizeof(std::uint32_t)] = {};
  bool ended = false;
  for (const Segment& each : image.segments) {
    const std::uint64_t behind = frames->address + frames->size;
    if (each.address <= behind && behind + sizeof zeros <= pageAfter(each.address + each.memorySize))
      ended = ended || std::memcmp(end, zeros, sizeof zeros) == 0;
  }
  if (!ended) throw BadImage("something lies right behind its __eh_frame, where this system's unwinder needs an end");
  __register_frame(reinterpret_cast<const void*>(frames->address + slide));
}

void runInitialisers(const Image& image, std::uint64_t slide) {
  using Initialiser = void (*)(int, const char**, const char**, const char**, const void*);
  static const char* nothing[] = {nullptr};
  const auto run = [&](std::uint64_t address) {
    reinterpret_cast<Initialiser>(address)(0, nothing, nothing, nothing, nullptr);
  };
  for (const Section& each : image.sections) {
    if (each.type == sectionType::initialiserPointers) {
      const auto* pointers = reinterpret_cast<const std::uint64_t*>(each.address + slide);
      for (std::uint64_t i = 0; i < each.size / sizeof *pointers; ++i) run(pointers[i]);
    } else if (each.type == sectionType::initialiserOffsets) {
      const auto* offsets = reinterpret_cast<const std::uint32_t*>(each.address + slide);
      for (std::uint64_t i = 0; i < each.size / sizeof *offsets; ++i) run(image.lowest() + offsets[i] + slide);
    }
  }
}

}  // namespace

void* LoadedLibrary::find(const std::string& symbol) const {
  const auto found = image_.exports.find("_" + symbol);
  return found == image_.exports.end() ? nullptr : at(found->second);
}

bool isMachO(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  std::uint32_t magic = 0;
  stream.read(reinterpret_cast<char*>(&magic), sizeof magic);
  return stream && (magic == magic64 || magic == __builtin_bswap32(fatMagic));
}

const LoadedLibrary& load(const std::string& file, const Imports& imports) {
  auto* library = new LoadedLibrary;  // for the life of the process
  try {
    const std::vector<std::byte> content = contentOf(file);
    library->image_ = readImage(content, thisProcessor);
    library->slide_ = place(library->image_);
    fillIn(library->image_, library->slide_, imports);
    setUpThreadLocals(library->image_, library->slide_);
    protect(library->image_, library->slide_);
    registerFrames(library->image_, library->slide_);
  } catch (const BadImage& error) {
    throw BadImage(file + ": " + error.what());
  }
  runInitialisers(library->image_, library->slide_);
  return *library;
}

}  // namespace macho
