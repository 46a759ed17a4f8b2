#include <fstream>
#include <iterator>

#include "kivdb/kivdb_program.h"

namespace kiv::test {
namespace {

using KivdbOutputFile = Kivdb;

TEST_F(KivdbOutputFile, IsReplacedWholeOrNotAtAll) {
  namespace fs = std::filesystem;
  constexpr auto permissions = fs::perms::owner_read | fs::perms::owner_write;
  write_runs();
  for (const std::string command : {"html A", "export A --format speedscope"}) {
    SCOPED_TRACE(command);
    ASSERT_EQ(kivdb(command + " -o fresh").status, 0);
    const std::string content = read_file(dir_ / "fresh");
    EXPECT_GT(content.size(), 512u);
    std::ofstream(dir_ / "old") << "old";
    fs::permissions(dir_ / "old", permissions);
    fs::remove(dir_ / "link");
    fs::create_symlink("old", dir_ / "link");
    const auto count = [&] {
      return std::distance(fs::directory_iterator(dir_.path()), fs::directory_iterator());
    };
    const auto before = count();
    // A limit on the size of files, of 512 bytes, stands for a full disk.
    for (const std::string file : {"old", "link"}) {
      const auto full = kivdb_after("trap '' XFSZ && ulimit -f 1", command + " -o " + file);
      EXPECT_EQ(full.status, 2);
      EXPECT_NE(full.err.find(file + ": File too large"), std::string::npos) << full.err;
      EXPECT_EQ(read_file(dir_ / "old"), "old");
      EXPECT_EQ(count(), before) << "nothing is left beside it";
    }
    const auto run = kivdb(command + " -o link");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(read_file(dir_ / "old"), content);
    EXPECT_TRUE(fs::is_symlink(dir_ / "link"));
    EXPECT_EQ(fs::status(dir_ / "old").permissions(), permissions);
    EXPECT_EQ(count(), before);
  }
}

}  // namespace
}  // namespace kiv::test
