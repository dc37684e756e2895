// Maps an image, fills its pointers in, tells the unwinder of it and runs its initialisers.
#include "macho/load.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>

#include "macho/mach_o.h"
#include "macho/system.h"
#include "macho/unwind.h"

extern "C" void __register_frame(const void* descriptions);  // of the unwinder that comes with the compiler

namespace macho {

namespace {

std::uint64_t pageOf(std::uint64_t address) {
  return address & ~(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) - 1);
}
std::uint64_t pageAfter(std::uint64_t address) {
  return pageOf(address + static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) - 1);
}

std::vector<std::byte> contentOf(const std::string& file) {
  const auto failed = [] { return BadImage("cannot be read: " + std::string(std::strerror(errno))); };
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "rb"), &std::fclose);
  if (!stream) throw failed();
  std::vector<std::byte> content;
  for (;;) {
    std::byte part[0x10000];
    const std::size_t count = std::fread(part, 1, sizeof part, stream.get());
    if (count < sizeof part && std::ferror(stream.get())) throw failed();
    content.insert(content.end(), part, part + count);
    if (count < sizeof part) return content;
  }
}

// The section's content in the process, as records that lie as they have to. The file has bytes for all of
// them, which keeps a damaged one from asking for billions.
template <class Record>
std::span<Record> recordsOf(const Image& image, const Section& section, std::uint64_t slide) {
  if (section.address % alignof(Record) || section.size % sizeof(Record))
    throw BadImage("section " + section.name + " does not hold whole records");
  image.at(section.address, section.size);
  return {reinterpret_cast<Record*>(section.address + slide), section.size / sizeof(Record)};
}

// For the life of the process; the unwinder reads its frames' descriptions whenever it looks for one.
const LoadedLibrary& keep(std::unique_ptr<LoadedLibrary> library) {
  static auto& kept = *new std::vector<std::unique_ptr<LoadedLibrary>>;
  static std::mutex keeping;
  const std::lock_guard lock(keeping);
  kept.push_back(std::move(library));
  return *kept.back();
}

}  // namespace

Mapping::Mapping(const Image& image) : image_(image) {
  const std::uint64_t lowest = pageOf(image.lowest()), size = pageAfter(image.highest()) - lowest;
  void* room =
      mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (room == MAP_FAILED) throw BadImage("there is no room for " + std::to_string(size) + " bytes");
  slide_ = reinterpret_cast<std::uint64_t>(room) - lowest;
  for (const Segment& each : image.segments) {
    const auto content = image.at(each.address, each.fileSize);
    if (!content.empty())
      std::memcpy(reinterpret_cast<void*>(each.address + slide_), content.data(), content.size());
  }
}

Mapping::~Mapping() {
  if (threadLocals_) pthread_key_delete(threadLocals_->key);
  const std::uint64_t lowest = pageOf(image_.lowest());
  munmap(reinterpret_cast<void*>(lowest + slide_), pageAfter(image_.highest()) - lowest);
}

void Mapping::fillIn(const Imports& given) {
  std::vector<void*> addresses;  // null: there is none
  for (const Import& each : image_.imports) {
    const auto own = image_.exports.find(each.name);
    void* const inside =
        own == image_.exports.end() ? nullptr : reinterpret_cast<void*>(own->second + slide_);
    const auto override = given.find(each.name);
    void* const outside = override != given.end() ? override->second : systemSymbol(each.name);
    const bool takesInside = each.library == library::self || each.library == library::weakLookup ||
                             (each.library == library::anyLibrary && !outside);
    addresses.push_back(inside && takesInside ? inside : outside);
  }
  for (const Fixup& each : image_.fixups) {
    std::uint64_t value = each.target + slide_;
    if (each.import != Fixup::none) {
      const Import& import = image_.imports[each.import];
      void* const found = addresses[each.import];
      if (!found && each.replaces) continue;  // what stands there is the image's own
      if (!found && !import.weak) {
        const std::string from =
            import.library > 0 ? " of " + image_.libraries[static_cast<std::size_t>(import.library - 1)] : "";
        throw BadImage("needs " + import.name + from + ", which is not known here");
      }
      value = reinterpret_cast<std::uint64_t>(found) + static_cast<std::uint64_t>(each.addend);
    }
    std::memcpy(reinterpret_cast<void*>(each.address + slide_), &value, sizeof value);
  }
}

void Mapping::setUpThreadLocals() {
  std::uint64_t start = 0, end = 0, filled = 0;
  unsigned alignment = 1;
  for (const Section& each : image_.sections) {
    const bool zeros = each.type == sectionType::threadLocalZeroFill;
    if (!zeros && each.type != sectionType::threadLocalData) continue;
    if (end == 0) start = each.address;
    if (each.address < start || each.address < end)
      throw BadImage("its thread-local sections are not in order");
    end = each.address + each.size;
    if (!zeros) filled = end;
    alignment = std::max(alignment, each.alignment);
  }
  for (const Section& each : image_.sections) {
    if (each.type != sectionType::threadLocalVariables) continue;
    const auto records = recordsOf<ThreadLocalVariable>(image_, each, slide_);
    if (!threadLocals_) {
      pthread_key_t key;
      if (pthread_key_create(&key, std::free) != 0)
        throw BadImage("there are too many thread-local variables in this process");
      threadLocals_ =
          std::make_unique<ThreadLocals>(ThreadLocals{key, reinterpret_cast<const void*>(start + slide_),
                                                      filled ? filled - start : 0, end - start, alignment});
    }
    for (ThreadLocalVariable& record : records) {
      if (record.offset >= threadLocals_->bytes)
        throw BadImage("a thread-local variable lies outside its sections");
      record.variables = threadLocals_.get();
    }
  }
}

void Mapping::protect() {
  for (const Segment& each : image_.segments) {
    if (each.memorySize == 0) continue;  // which qemu-user refuses
    int protection = PROT_NONE;
    if (each.protection & readable) protection |= PROT_READ;
    if ((each.protection & writable) && !(each.flags & readOnlyAfterFixups)) protection |= PROT_WRITE;
    if (each.protection & executable) protection |= PROT_EXEC;
    const std::uint64_t start = pageOf(each.address + slide_),
                        end = pageAfter(each.address + each.memorySize + slide_);
    __builtin___clear_cache(reinterpret_cast<char*>(start), reinterpret_cast<char*>(end));
    if (mprotect(reinterpret_cast<void*>(start), end - start, protection) != 0)
      throw BadImage("segment " + each.name + " cannot be protected: " + std::strerror(errno));
  }
}

std::vector<std::uint64_t> Mapping::initialisers() const {
  std::vector<std::uint64_t> addresses;
  for (const Section& each : image_.sections) {
    if (each.type == sectionType::initialiserPointers) {
      for (const std::uint64_t pointer : recordsOf<const std::uint64_t>(image_, each, slide_))
        addresses.push_back(pointer);
    } else if (each.type == sectionType::initialiserOffsets) {
      for (const std::uint32_t offset : recordsOf<const std::uint32_t>(image_, each, slide_))
        addresses.push_back(image_.lowest() + offset + slide_);
    }
  }
  for (const std::uint64_t each : addresses) {
    if (each - slide_ < image_.lowest() || each - slide_ >= image_.highest())
      throw BadImage("an initialiser lies outside the image");
  }
  return addresses;
}

void* LoadedLibrary::find(const std::string& symbol) const {
  const auto found = image_.exports.find("_" + symbol);
  return found == image_.exports.end() ? nullptr : reinterpret_cast<void*>(found->second + mapping_.slide());
}

bool isMachO(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  std::uint32_t magic = 0;
  stream.read(reinterpret_cast<char*>(&magic), sizeof magic);
  return stream && (magic == magic64 || magic == __builtin_bswap32(fatMagic));
}

const LoadedLibrary& load(const std::string& file, const Imports& imports) {
  try {
    const std::vector<std::byte> content = contentOf(file);
    std::unique_ptr<LoadedLibrary> library(new LoadedLibrary(readImage(content, thisProcessor)));
    library->mapping_.fillIn(imports);
    library->mapping_.setUpThreadLocals();
    library->frames_ = frameDescriptions(library->image_, library->mapping_.slide());
    const std::vector<std::uint64_t> initialisers = library->mapping_.initialisers();
    library->mapping_.protect();
    const LoadedLibrary& kept = keep(std::move(library));
    if (kept.frames_.size() > sizeof(std::uint32_t)) __register_frame(kept.frames_.data());
    static const char* nothing[] = {nullptr};
    for (const std::uint64_t each : initialisers) {
      // What the system hands to an initialiser: the program's arguments, its environment and more.
      using Initialiser = void (*)(int, const char**, const char**, const char**, const void*);
      reinterpret_cast<Initialiser>(each)(0, nothing, nothing, nothing, nullptr);
    }
    return kept;
  } catch (const BadImage& error) {
    throw BadImage(file + ": " + error.what());
  }
}

}  // namespace macho
