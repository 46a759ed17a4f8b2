// Runs a fuzz target over every file of the directories given, without a fuzzer: for builds with
// any compiler. Each input lies in a buffer of its own size, so that sanitizers see a read beyond.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size);

int main(int argc, char** argv) {
  std::size_t inputs = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string content(std::istreambuf_iterator<char>(file), {});
      const auto bytes = std::make_unique<unsigned char[]>(content.size());
      std::copy(content.begin(), content.end(), bytes.get());
      // Said before the run: when it dies, this was the input.
      std::printf("%s\n", entry.path().c_str());
      std::fflush(stdout);
      LLVMFuzzerTestOneInput(bytes.get(), content.size());
      ++inputs;
    }
  }
  std::printf("%zu inputs\n", inputs);
  return inputs == 0 ? 1 : 0;
}
