// Texts from one process to another: each with its length before it.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

inline void pack(std::string& to, std::string_view text) {
  to += std::to_string(text.size()) + ":";
  to += text;
}
template <typename Texts>
void packAll(std::string& to, const Texts& texts) {
  pack(to, std::to_string(texts.size()));
  for (const auto& each : texts) pack(to, each);
}

// Takes them back from the front of a text. Throws std::runtime_error where it ends too early.
class Unpacking {
 public:
  explicit Unpacking(std::string_view text) : rest_(text) {}
  bool atEnd() const { return rest_.empty(); }
  std::string next() {
    const std::size_t colon = rest_.find(':');
    if (colon == std::string_view::npos)
      throw std::runtime_error("what another process has said is incomplete");
    const std::size_t size = std::stoul(std::string(rest_.substr(0, colon)));
    if (size > rest_.size() - colon - 1)
      throw std::runtime_error("what another process has said is incomplete");
    std::string text(rest_.substr(colon + 1, size));
    rest_.remove_prefix(colon + 1 + size);
    return text;
  }
  std::vector<std::string> all() {
    std::vector<std::string> texts(std::stoul(next()));
    for (std::string& each : texts) each = next();
    return texts;
  }

 private:
  std::string_view rest_;
};

}  // namespace host
