#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "same_tables.h"
#include "support/run_trace.h"
#include "support/sparing_files.h"
#include "support/stories.h"
#include "trace/data_files.h"
#include "trace/diagnostics.h"
#include "trace/file_source.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"

// A window of a data file is in memory: where it ends makes no difference.

namespace kiv::test {
namespace {

void expect_windows_make_no_difference(const trace& t) {
  const temp_dir whole, sparing;
  ASSERT_TRUE(t.write(whole.path(), ".") && t.write(sparing.path(), "."));
  const run_result expected = run_in_order(whole.path(), {t.header_name()}, 1 << 30);
  disk_files disk;
  sparing_files files(disk);
  const run_result actual = run_in_order(sparing.path(), {t.header_name()}, 1 << 30, &files);
  expect_same_tables(expected, actual);
  EXPECT_EQ(first_difference(expected.out, actual.out), "");
  EXPECT_EQ(first_difference(expected.err, actual.err), "");
}

TEST(DataFiles, EachRecordCanBeReadWhereverTheWindowEnds) {
  std::vector<story> stories = clean_stories();
  stories.insert(stories.end(), damaged_stories().begin(), damaged_stories().end());
  stories.push_back({"some windows", [=](trace& t) { random_operations(t, 3, 60'000); }});
  for (const story& one : stories) {
    SCOPED_TRACE(one.name);
    trace t;
    one.tell(t);
    if (one.name == "some windows") {
      EXPECT_GT(t.data().size(), 2 * disk_files::usual_window);
    }
    expect_windows_make_no_difference(t);
  }
}

// A reservation's text that goes on over the next records, and a process number far behind its
// record: both are read, up to the file's end.
TEST(DataFiles, ADecoderThatRunsBehindItsRecordReadsWhatTheFileHolds) {
  const std::string all_m(65'530, 'm');
  trace endless;
  for (const int shift : {0, 1, 2, 3, 9, 12}) {
    for (int i = 0; i < shift; ++i) endless.flow_out();
    const char id = static_cast<char>(20 + shift);
    endless.raw(std::string("R\x15\0", 3) + id + std::string(3, '\0') + std::string(17, '\1'));
    endless.marker(all_m).marker(all_m);
  }
  expect_windows_make_no_difference(endless);

  for (const int width : {300'000, 3'000'000}) {
    SCOPED_TRACE(width);
    trace far;
    constexpr std::uint32_t mmmm = 0x6d6d6d6d;
    far.proc(mmmm, "far").width('s', "curr_pid", width);
    for (int i = 0; i < 60; ++i) {
      far.raw(std::string("s\x08\0", 3) + std::string(8, '\0')).malloc_wf(1, 0, 16 + i, 1, 8);
      far.marker(all_m);
    }
    expect_windows_make_no_difference(far);
  }
}

// Claims more than it has, as a file that is cut while it is read.
class shrinking_file : public memory_files {
 public:
  std::optional<std::int64_t> open(const std::string& path) override {
    const auto size = memory_files::open(path);
    return size ? std::optional(*size + 40) : std::nullopt;
  }
};

TEST(DataFiles, AFileThatBecomesShorterIsToldAndReadAsFarAsItGoes) {
  struct lost : diagnostics {
    void file_shorter_than_recorded(const std::string& path, std::int64_t recorded,
                                    std::int64_t held) override {
      told.emplace_back(path, recorded, held);
    }
    std::vector<std::tuple<std::string, std::int64_t, std::int64_t>> told;
  } faults;
  trace t;
  t.flow_out().flow_out().recorded_size(0, "46");
  XmlParser parser(faults);
  kiv_hdr header(parser);
  ASSERT_EQ(header.read_document(t.header("."), "header"), 0);
  shrinking_file source;
  const std::string path = "./" + t.data_name(0);
  source.add(path, {reinterpret_cast<const unsigned char*>(t.data().data()), t.data().size()});
  data_files files(header.files(), true, header.layout(), source, faults);
  ASSERT_TRUE(files.rd_open());
  for (int record = 0; record < 2; ++record) {
    ASSERT_FALSE(files.eof());
    files.cursor().read_tag();
    files.cursor().read_size();
  }
  EXPECT_TRUE(files.eof());
  ASSERT_EQ(faults.told.size(), 1u);
  EXPECT_EQ(faults.told[0], std::tuple(path, 46, 6));
}

}  // namespace
}  // namespace kiv::test
