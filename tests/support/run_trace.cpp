#include "support/run_trace.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <sstream>

#include "kiv/kiv_main.h"
#include "kiv/process_file.h"
#include "kiv/stream_diagnostics.h"
#include "tables/csv_tables.h"
#include "tables/run_output.h"
#include "trace/file_source.h"

namespace kiv::test {
namespace {

namespace fs = std::filesystem;

// Gives a run streams of its own and a working directory, and puts both back.
class run_guard {
 public:
  explicit run_guard(const std::string& cwd) : cwd_(fs::current_path()) {
    fs::current_path(cwd);
    setenv("TZ", "UTC", 1);
    tzset();
  }
  ~run_guard() {
    std::cout.rdbuf(out_buffer_);
    std::cerr.rdbuf(err_buffer_);
    fs::current_path(cwd_);
  }
  run_guard(const run_guard&) = delete;
  run_guard& operator=(const run_guard&) = delete;
  std::string out() const { return out_.str(); }
  std::string err() const { return err_.str(); }

 private:
  fs::path cwd_;
  std::ostringstream out_, err_;
  std::streambuf* out_buffer_ = std::cout.rdbuf(out_.rdbuf());
  std::streambuf* err_buffer_ = std::cerr.rdbuf(err_.rdbuf());
};

int run_child(const std::string& cwd, std::vector<std::string> args, const std::string& program) {
  args.insert(args.begin(), program);
  std::vector<char*> argv;
  argv.reserve(args.size() + 1);
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    setenv("TZ", "UTC", 1);
    if (chdir(cwd.c_str()) != 0) _exit(127);
    for (const auto& [name, stream] : {std::pair{"stdout", 1}, std::pair{"stderr", 2}}) {
      dup2(open(name, O_WRONLY | O_CREAT | O_TRUNC, 0600), stream);
    }
    execv(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

run_result called(const std::string& cwd, const std::function<int()>& run) {
  run_result result;
  run_guard guard(cwd);
  result.status = run();
  result.out = guard.out();
  result.err = guard.err();
  return result;
}

void collect_files(run_result& result, const std::string& cwd) {
  for (const auto& entry : fs::recursive_directory_iterator(cwd)) {
    const std::string name = entry.path().filename();
    if (!entry.is_directory() && (name.ends_with(".csv") || name.ends_with(".sql")))
      result.files[name] = read_file(entry.path());
  }
}

bool fits(const csv_column& column, std::string_view cell) {
  const std::size_t sign = column.type == column_type::i64 && cell.starts_with('-') ? 1 : 0;
  switch (column.type) {
    case column_type::text:
    case column_type::free_text:
      return column.label.empty() || column.label == cell;
    case column_type::character:
      return cell.size() == 1;
    case column_type::time:
      // Nanoseconds of a second or more make the milliseconds longer.
      return cell.empty() || cell.size() == 23 || cell.size() == 24;
    case column_type::i64:
    case column_type::u64:
      return cell.size() > sign && cell.find_first_not_of("0123456789", sign) == cell.npos;
  }
  return false;
}

}  // namespace

temp_dir::temp_dir() {
  // Tests write thousands of small files: in memory where the system has a place for that.
  const bool in_memory = std::getenv("TMPDIR") == nullptr && access("/dev/shm", W_OK) == 0;
  path_ = (in_memory ? fs::path("/dev/shm") : fs::temp_directory_path()) / "kiv_test_XXXXXX";
  EXPECT_NE(mkdtemp(path_.data()), nullptr) << path_;
}
temp_dir::~temp_dir() { fs::remove_all(path_); }

table::table(std::string_view name, std::string_view bytes, char data_sep, char fun_sep) {
  const csv_table* described = find_csv_table(name);
  EXPECT_NE(described, nullptr) << name;
  if (described == nullptr) return;
  const auto& columns = described->columns;
  for (std::size_t i = 0; i < columns.size(); ++i) columns_[columns[i].name] = i;

  const bool marked = described->end == row_end::marker;
  const std::string end = marked ? std::string(row_end_marker) + "\n" : "\n";
  while (!bytes.empty()) {
    const std::size_t length = std::min(bytes.find(end), bytes.size());
    EXPECT_LT(length, bytes.size()) << name << ": the last row has no end";
    std::string_view row = bytes.substr(0, length);
    bytes.remove_prefix(std::min(bytes.size(), length + end.size()));
    if (marked && row.empty()) continue;  // a process without symbols

    auto& cells = rows_.emplace_back();
    for (std::size_t i = 0; i + 1 < columns.size(); ++i) {
      const std::size_t cut = row.find(columns[i].joined_to_next ? fun_sep : data_sep);
      if (cut == std::string_view::npos) break;
      cells.emplace_back(row.substr(0, cut));
      row.remove_prefix(cut + 1);
    }
    cells.emplace_back(row);
    EXPECT_EQ(cells.size(), columns.size()) << name << " row " << rows_.size();
    EXPECT_TRUE(marked || row.find(data_sep) == row.npos) << name << " row " << rows_.size();
    cells.resize(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
      EXPECT_TRUE(fits(columns[i], cells[i]))
          << name << " row " << rows_.size() << ", " << columns[i].name << ": " << cells[i];
    }
  }
}

std::string_view table::text(std::size_t row, std::string_view column) const {
  return rows_.at(row).at(columns_.at(column));
}

std::int64_t table::number(std::size_t row, std::string_view column) const {
  const std::string_view digits = text(row, column);
  std::int64_t value = 0;
  std::uint64_t large = 0;
  const char* end = digits.data() + digits.size();
  const auto read = std::from_chars(digits.data(), end, value);
  if (read.ptr == end && read.ec == std::errc() && !digits.empty()) return value;
  EXPECT_TRUE(std::from_chars(digits.data(), end, large).ptr == end && !digits.empty())
      << column << ": " << digits;
  return static_cast<std::int64_t>(large);
}

std::vector<std::string_view> run_result::parts(std::string_view table_name) const {
  std::vector<std::string_view> found;
  std::map<int, std::string_view> by_number;
  const std::string key = "." + std::string(table_name) + ".";
  for (const auto& [name, content] : files) {
    const std::size_t at = name.rfind(key);
    if (at != std::string::npos) by_number[std::atoi(name.c_str() + at + key.size())] = content;
  }
  for (const auto& [number, content] : by_number) found.push_back(content);
  return found;
}

std::string run_result::bytes(std::string_view table_name) const {
  std::string all;
  for (const std::string_view part : parts(table_name)) all += part;
  return all;
}

table run_result::rows(std::string_view table_name) const {
  return {table_name, bytes(table_name), data_sep, fun_sep};
}

run_result run_kiv(const std::string& cwd, const std::vector<std::string>& args,
                   const std::string& program) {
  run_result result;
  if (!program.empty()) {
    result.status = run_child(cwd, args, program);
    result.out = read_file(cwd + "/stdout");
    result.err = read_file(cwd + "/stderr");
  } else {
    std::vector<const char*> argv{"kiv"};
    argv.reserve(args.size() + 2);
    for (const std::string& arg : args) argv.push_back(arg.c_str());
    const int argc = static_cast<int>(argv.size());
    argv.push_back(nullptr);
    result = called(cwd, [&] { return kiv_main(argc, argv.data()); });
  }
  for (std::size_t i = 0; i + 1 < args.size(); ++i) {
    if (args[i] == "-sd") result.data_sep = args[i + 1][0];
    if (args[i] == "-sf") result.fun_sep = args[i + 1][0];
  }
  collect_files(result, cwd);
  return result;
}

run_result run_trace(const trace& t, std::vector<std::string> args) {
  const temp_dir dir;
  EXPECT_TRUE(t.write(dir.path(), "."));
  args.insert(args.end(), {"-H", t.header_name()});
  return run_kiv(dir.path(), args);
}

run_result run_in_order(const std::string& cwd, const std::vector<std::string>& headers,
                        int size_limit, file_source* source) {
  run_result result = called(cwd, [&] {
    stream_diagnostics faults(0, std::cout, std::cerr);
    run_context context(faults);
    open_files files;
    run_output output(context, files);
    disk_files disk;
    const trace_options options{"in order", size_limit};
    int worst = 0;
    bool first = true;
    for (const std::string& header : headers) {
      worst = std::max(worst, process_file(output, source == nullptr ? disk : *source, ".", header,
                                           options, std::exchange(first, false)));
    }
    return worst;
  });
  collect_files(result, cwd);
  return result;
}

std::string first_difference(std::string_view expected, std::string_view actual) {
  const auto [e, a] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  if (e == expected.end() && a == actual.end()) return {};
  const auto line_at = [](std::string_view all, std::size_t at) {
    const std::size_t start = at == 0 ? 0 : all.rfind('\n', at - 1) + 1;
    return std::string(all.substr(start, all.find('\n', at) - start));
  };
  const auto at = static_cast<std::size_t>(e - expected.begin());
  return "line " + std::to_string(1 + std::count(expected.begin(), e, '\n')) +
         "\nexpected: " + line_at(expected, at) + "\nactual:   " + line_at(actual, at) + "\n";
}

std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace kiv::test
