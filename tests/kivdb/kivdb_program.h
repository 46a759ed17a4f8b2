#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "support/run_trace.h"

namespace kiv::test {

struct outcome {
  int status;
  std::string out, err;
};

// The program as its users and their scripts call it, in a directory of its own.
class Kivdb : public ::testing::Test {
 protected:
  outcome kivdb(const std::string& arguments, const char* out = "out") {
    const int status = std::system(("cd '" + dir_.path() + "' && TZ=UTC '" KIVDB_PROGRAM "' " +
                                    arguments + " >" + out + " 2>err </dev/null")
                                       .c_str());
    return {WEXITSTATUS(status), read_file(dir_ / "out"), read_file(dir_ / "err")};
  }

  // A trace that makes a block of `kept` bytes, which leaks, and one of 10, which is freed.
  static trace leaking(std::string_view run, std::int64_t pid, std::uint32_t kept) {
    trace t;
    t.runid(run).pid(pid).proc(7, "server").reserve(1, "oic:core");
    t.malloc_wf(1, 0, 0x1000, kept, kept + 8).malloc_wf(1, 0, 0x2000, 10, 16).free(1, 0, 0x2000);
    return t;
  }

  void write(const std::string& directory, const trace& t) {
    ASSERT_TRUE(t.write(dir_ / directory));
  }

  // Run A leaks 100 + 20 bytes, B 150 + 20; C like B, but its last data file is cut short.
  void write_runs() {
    for (const auto& [run, kept] : {std::pair("A", 100u), {"B", 150u}, {"C", 150u}}) {
      write(run, leaking(run, 41, kept));
      write(run, leaking(run, 42, 20));
    }
    for (const auto& item : std::filesystem::directory_iterator(dir_ / "C")) {
      if (item.path().extension() != ".kivdat") continue;
      std::filesystem::resize_file(item.path(), item.file_size() - 3);
    }
  }

  // Calls it in a shell in which `commands` were carried out before.
  outcome kivdb_after(const std::string& commands, const std::string& arguments) {
    const int status =
        std::system(("cd '" + dir_.path() + "' && " + commands + " && TZ=UTC '" KIVDB_PROGRAM "' " +
                     arguments + " >out 2>err </dev/null")
                        .c_str());
    return {WEXITSTATUS(status), read_file(dir_ / "out"), read_file(dir_ / "err")};
  }

  temp_dir dir_;
};

}  // namespace kiv::test
