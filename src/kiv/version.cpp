#include "kiv/version.h"

#include <iostream>
#include <string>

namespace kiv {
namespace {

#if defined(__x86_64__) && !defined(__ILP32__)
constexpr const char* machine = "x86-64";
#elif defined(__i386__)
constexpr const char* machine = "x86";
#elif defined(__aarch64__)
constexpr const char* machine = "arm64";
#else
constexpr const char* machine = "other";
#endif

}  // namespace

void print_version() {
  const std::string dashes(48, '-');
  std::cerr << dashes
            << "\nkiv: analyser for memory-allocation traces\n"
               "version " KIV_VERSION "\nplatform linux "
            << machine << ", " << 8 * sizeof(void*) << " bit\n"
            << dashes << '\n';
}

}  // namespace kiv
