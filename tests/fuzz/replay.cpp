// In the fuzzer's place where there is none: tries every file of the folders that are named. Options, which
// the fuzzer would take, are ignored.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size);
// Not every fuzzer has one.
extern "C" __attribute__((weak)) int LLVMFuzzerInitialize(int*, char***) { return 0; }
// For those that change inputs themselves: nothing is changed here.
extern "C" std::size_t LLVMFuzzerMutate(char*, std::size_t size, std::size_t) { return size; }

int main(int count, char** arguments) {
  LLVMFuzzerInitialize(&count, &arguments);
  int tried = 0;
  for (int i = 1; i < count; ++i) {
    const std::string_view folder = arguments[i];
    if (folder.starts_with('-')) continue;
    for (const auto& each : std::filesystem::directory_iterator(folder)) {
      std::ifstream file(each.path(), std::ios::binary);
      const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
      // Memory of exactly its size, so that a sanitizer sees what is read behind it.
      const std::unique_ptr<char[]> input(new char[content.size()]);
      std::copy(content.begin(), content.end(), input.get());
      std::fprintf(stderr, "%s\n",
                   each.path().filename().c_str());  // the last one said is the one that fails
      LLVMFuzzerTestOneInput(input.get(), content.size());
      ++tried;
    }
  }
  std::fprintf(stderr, "%d tried\n", tried);
  return tried > 0 ? 0 : 1;
}
