#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <random>
#include <thread>

#include "store_fixture.h"

namespace kiv::test {
namespace {

// Runs `work` in a process of its own.
pid_t in_child(auto work) {
  const pid_t pid = fork();
  if (pid == 0) _exit(work() ? 0 : 1);
  return pid;
}

bool succeeded(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

class StoreFile : public store_test {
 protected:
  texts files() const {
    texts all;
    for (const auto& entry : std::filesystem::directory_iterator(dir_)) {
      all.push_back(entry.path().filename().string());
    }
    std::sort(all.begin(), all.end());
    return all;
  }

  // Whether a user without privileges sees these runs.
  bool others_read(const std::string& path, const texts& expected) {
    return succeeded(in_child([&] {
      if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) return false;
      return names(path) == expected;
    }));
  }
};

// Whatever the moment of the kill: what was complete is there, and the next import works.
TEST_F(StoreFile, SurvivesKilledImports) {
  const run_profile large{"R", {rich_profile("R", 1, 1000)}};
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(save(large), save_result::saved);
  const auto took = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  std::mt19937 random(1);
  int killed = 0;
  for (int i = 0; i < 50; ++i) {
    const bool first_import = i % 3 == 0;  // else "R" is there and is replaced
    if (first_import) {
      for (const auto& name : files()) std::filesystem::remove(dir_ / name);
    }
    const pid_t child = in_child([&] { return save(large) != save_result::failed; });
    std::this_thread::sleep_for(
        std::chrono::microseconds(random() % static_cast<unsigned>(took.count() + 1)));
    kill(child, SIGKILL);
    killed += !succeeded(child);

    const auto seen = std::filesystem::exists(file()) ? names() : texts{"R"};
    const bool no_run_yet =
        first_import && seen.size() == 1 && seen[0].find("holds no runs") != std::string::npos;
    EXPECT_TRUE(no_run_yet || seen == texts{"R"}) << seen.at(0);
    if (!no_run_yet && std::filesystem::exists(file())) {
      run_store s;
      ASSERT_TRUE(s.open(file(), open_mode::read_only, error_)) << error_;
      const auto run = s.load("R", error_);
      ASSERT_TRUE(run) << error_;
      EXPECT_TRUE(to_text(run->traces.at(0)) == to_text(large.traces[0]));
    }
    const auto again = save(large);
    EXPECT_TRUE(again == save_result::saved || again == save_result::replaced) << error_;
    EXPECT_EQ(names(), texts{"R"});
    EXPECT_EQ(rows("PRAGMA integrity_check").at(0).substr(0, 1), "!");  // refused here
    run_store s;
    ASSERT_TRUE(s.open(file(), open_mode::create, error_));
    auto check = s.connection().prepare("PRAGMA integrity_check");
    ASSERT_TRUE(check.step());
    EXPECT_EQ(check.text(0), "ok");
  }
  EXPECT_GT(killed, 20);
}

TEST_F(StoreFile, ImportsFollowEachOther) {
  const run_profile a{"A", {rich_profile("A", 1, 500)}}, b{"B", {rich_profile("B", 1, 500)}};
  for (int i = 0; i < 12; ++i) {
    if (i % 3 != 2) {  // else they import into a file that is there
      for (const auto& name : files()) std::filesystem::remove(dir_ / name);
    }
    const pid_t first = in_child([&] { return save(a) != save_result::failed; });
    const pid_t second = in_child([&] { return save(b) != save_result::failed; });
    // A third one fails, and may not take the file of the others away.
    const pid_t third = in_child([&] {
      const store::save_options failing{
          "",
          {},
          [](store::row_target&, const run_profile&, std::string&) -> std::optional<std::uint64_t> {
            return std::nullopt;
          }};
      return save(small_run("C", 1), failing) == save_result::failed;
    });
    for (const pid_t child : {first, second, third}) EXPECT_TRUE(succeeded(child));
    auto both = names();
    std::sort(both.begin(), both.end());
    EXPECT_EQ(both, (texts{"A", "B"}));
  }
}

TEST_F(StoreFile, ReadersAndImportsDoNotWaitForEachOther) {
  ASSERT_EQ(save({"R", {rich_profile("R", 1, 100)}}), save_result::saved);
  run_store slow;
  ASSERT_TRUE(slow.open(file(), open_mode::read_only, error_));
  auto query = slow.select("SELECT place FROM block_group", {}, error_);
  ASSERT_TRUE(query);
  ASSERT_TRUE(query->step());

  const auto start = std::chrono::steady_clock::now();
  bool read_meanwhile = false;
  const store::save_options options{
      "",
      {},
      [&](store::row_target&, const run_profile&, std::string&) -> std::optional<std::uint64_t> {
        read_meanwhile = names() == texts{"R"};
        return 0;
      }};
  EXPECT_EQ(save(small_run("S", 1), options), save_result::saved) << error_;
  EXPECT_TRUE(read_meanwhile);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_EQ(names(), (texts{"R", "S"}));
  std::size_t left = 1;
  while (query->step()) ++left;
  EXPECT_FALSE(query->failed());
  EXPECT_EQ(left, 600u);
}

TEST_F(StoreFile, ReadsWhereNothingCanBeWritten) {
  ASSERT_EQ(save(small_run("R", 1)), save_result::saved);
  EXPECT_EQ(files(), texts{"t.db"});
  std::filesystem::rename(file(), file("100% #1?.db"));
  const auto read_only = std::filesystem::perms(0555);
  std::filesystem::permissions(file("100% #1?.db"), std::filesystem::perms(0444));
  std::filesystem::permissions(dir_, read_only);
  EXPECT_TRUE(others_read(file("100% #1?.db"), {"R"}));
  EXPECT_TRUE(succeeded(in_child([&] {
    if (geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) return false;
    run_store s;
    std::string error;
    return !s.open(file("100% #1?.db"), open_mode::create, error) &&
           error.find("cannot be") != std::string::npos;
  })));

  // An import that was killed behind its end leaves the run in the log.
  std::filesystem::permissions(dir_, std::filesystem::perms::all);
  std::filesystem::rename(file("100% #1?.db"), file());
  std::filesystem::permissions(file(), std::filesystem::perms(0644));
  EXPECT_FALSE(succeeded(in_child([&] {
    run_store s, reader;
    std::string error;
    if (!s.open(file(), open_mode::create, error)) return true;
    if (!reader.open(file(), open_mode::read_only, error)) return true;
    auto query = reader.select("SELECT run FROM run", {}, error);
    if (!query || !query->step()) return true;
    if (s.save(small_run("S", 1), {}, error) != save_result::saved) return true;
    kill(getpid(), SIGKILL);
    return true;
  })));
  EXPECT_EQ(files(), (texts{"t.db", "t.db-shm", "t.db-wal"}));
  for (const auto& name : files()) {
    std::filesystem::permissions(dir_ / name, std::filesystem::perms(0444));
  }
  std::filesystem::permissions(dir_, read_only);
  EXPECT_TRUE(others_read(file(), {"R", "S"}));
  std::filesystem::permissions(dir_, std::filesystem::perms::all);
  std::filesystem::remove(file("t.db-shm"));
  std::filesystem::permissions(dir_, read_only);
  EXPECT_TRUE(
      others_read(file(), {"! an import was interrupted, and its traces (" + file() +
                           "-wal) can only be taken in where the directory can be written"}));
}

TEST_F(StoreFile, FailuresAreClearAndLeaveNothing) {
  std::ofstream(file("text")) << "no database here, only some text that is long enough to look at";
  std::ofstream(file("empty")).flush();
  std::filesystem::create_directory(file("folder"));
  ASSERT_EQ(mkfifo(file("fifo").c_str(), 0600), 0);
  {
    store::database other;
    ASSERT_TRUE(other.open(file("other"), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE));
    ASSERT_TRUE(other.exec("CREATE TABLE t(x)"));
    store::database old;
    ASSERT_TRUE(old.open(file("old"), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE));
    ASSERT_TRUE(
        old.exec("PRAGMA application_id = 0x4b495644; PRAGMA user_version = 1; CREATE TABLE t(x)"));
  }
  const struct {
    const char* name;
    const char* to_read;
    const char* to_write;  // null: works
  } cases[] = {
      {"text", "not a database made by kivdb", "not a database made by kivdb"},
      {"folder", "a directory, not a database", "a directory, not a database"},
      {"fifo", "not a regular file", "not a regular file"},
      {"other", "a database of another program, not of kivdb",
       "a database of another program, not of kivdb"},
      {"old", "made by another version of kivdb", "made by another version of kivdb"},
      {"empty", "holds no runs", nullptr},
      {"missing", "no such file", nullptr},
      {"nowhere/t.db", "no such file", "cannot be opened: No such file or directory"},
  };
  for (const auto& c : cases) {
    run_store s;
    EXPECT_FALSE(s.open(file(c.name), open_mode::read_only, error_)) << c.name;
    EXPECT_EQ(error_.substr(0, std::string(c.to_read).size()), c.to_read) << c.name;
    error_.clear();
    EXPECT_EQ(s.open(file(c.name), open_mode::create, error_), c.to_write == nullptr) << c.name;
    const std::string reason = c.to_write == nullptr ? "" : c.to_write;
    EXPECT_EQ(error_.substr(0, reason.size()), reason) << c.name;
  }
  run_store s;
  EXPECT_FALSE(s.open("", open_mode::create, error_));
  EXPECT_EQ(error_, "the name of the database is empty");
  EXPECT_EQ(std::filesystem::exists(file("missing")), false);
}

TEST_F(StoreFile, AFullDiskLosesNothing) {
  EXPECT_TRUE(succeeded(in_child([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{400'000, 400'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    const run_profile large{"L", {rich_profile("L", 1, 3000)}};
    if (save(large) != save_result::failed || std::filesystem::exists(file())) return false;
    if (save(small_run("R", 1)) != save_result::saved) return false;
    if (save(large) != save_result::failed) return false;
    return names() == texts{"R"} && error_ != "not an error" && !error_.empty();
  })));
}

}  // namespace
}  // namespace kiv::test
