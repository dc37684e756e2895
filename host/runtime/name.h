// Names of the host's language, which mean the same in any case.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace host {

constexpr char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// ASCII, case-insensitive.
constexpr bool sameName(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return lowered(a) == lowered(b); });
}

// For tables that are searched by name.
struct NameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view name) const {
    std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a (Fowler, Noll and Vo), of the name in lower case
    for (const char c : name) hash = (hash ^ static_cast<unsigned char>(lowered(c))) * 0x100000001B3;
    return static_cast<std::size_t>(hash);
  }
};
struct NameEqual {
  using is_transparent = void;
  bool operator()(std::string_view left, std::string_view right) const { return sameName(left, right); }
};

}  // namespace host
