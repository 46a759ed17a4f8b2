#include <numeric>

#include "kivtrace/written_run.h"
#include "same_tables.h"

namespace kiv::test {
namespace {

TEST(WrittenHeader, TextsComeBackAsTheyWere) {
  const struct {
    const char* given;
    std::string read;
  } cases[] = {
      {"a \"b\" & 'c' <d> ]]>", "a \"b\" & 'c' <d> ]]>"},
      {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"tab\tline\nreturn\r", "tab\tline\nreturn\r"},
      {"\x01 \x1f \x7f", "? ? \x7f"},      // no document can hold the first two
      {"\xE4 \xC3", "\xC3\xA4 \xC3\x83"},  // no UTF-8: taken for Latin-1
      {"\xEF\xBF\xBF \xEF\xBF\xBE", "\xEF\xBF\xBD \xEF\xBF\xBD"},  // no characters: U+FFFD
      {"", ""},
  };
  const std::string longest(100'000, '&');
  for (const auto& [given, read] : cases) {
    written_run run;
    run.options.program = run.options.user = given;
    run.options.environment = run.options.account = given;
    run.options.host = longest.c_str();
    ASSERT_EQ(kiv_trace_close_at(run.open(), 1'700'000'009, 5), 0);
    const read_back back(run.header_path());
    EXPECT_EQ(back.result, 0);
    EXPECT_TRUE(back.header.closed());
    for (const std::string* text :
         {&back.header.progname(), &back.header.user(), &back.header.lom(), &back.header.pacc()}) {
      EXPECT_EQ(*text, read);
    }
    EXPECT_EQ(back.header.hostname(), longest);
    EXPECT_EQ(back.header.start().secs, 1'700'000'000);
    EXPECT_EQ(back.header.end().secs, 1'700'000'009);
    EXPECT_EQ(back.header.end().nsecs, 5);
  }
}

TEST(WrittenHeader, DefaultsAreThoseOfTheProcess) {
  written_run run;
  run.options.pid = 0;
  run.options.start_secs = 0;
  kiv_trace* trace = run.open();
  const std::string path = kiv_trace_header_path(trace);
  ASSERT_EQ(kiv_trace_close(trace), 0);
  EXPECT_EQ(path, run.directory() + "/kiv." + std::to_string(getpid()) + ".kivhdr");
  const read_back back(path);
  EXPECT_EQ(back.header.pid(), getpid());
  EXPECT_FALSE(back.header.progname().empty());
  EXPECT_FALSE(back.header.hostname().empty());
  EXPECT_LE(std::abs(back.header.start().secs - time(nullptr)), 60);
  EXPECT_LE(std::abs(back.header.end().secs - time(nullptr)), 60);
}

// Records of many sizes, the largest beyond the smallest limit of a file.
void write_records(kiv_trace* trace) {
  kiv_trace_process_start(trace, 7, 0, "server");
  kiv_trace_reserve_id(trace, 1, 0, 0, 1, "oic:orders");
  kiv_trace_schedule(trace, 0, 7);
  for (std::uint32_t i = 0; i < 300; ++i) {
    kiv_trace_marker(trace, std::string(i == 200 ? 5000 : i % 97, 'm').c_str());
    kiv_trace_malloc_wf(trace, 1, 0, 4096 + 16 * i, 0, i, 16, 0);
    if (i % 3 == 0) kiv_trace_free(trace, 1, 0, 4096 + 16 * i, 0);
  }
}

TEST(WrittenFiles, LimitAndBufferChangeNothingButWhereFilesEnd) {
  const written_run whole;
  kiv_trace* trace = whole.open();
  write_records(trace);
  ASSERT_EQ(kiv_trace_close_at(trace, 1'700'000'009, 0), 0);
  ASSERT_EQ(whole.data().size(), 1U);
  const run_result expected = whole.analysed();

  const std::pair<std::uint64_t, std::uint64_t> cases[] = {
      {1024, 0}, {1024, 1}, {1024, 700}, {1024, 1 << 20}, {1025, 0}, {2000, 64}, {0, 1}, {0, 333}};
  for (const auto& [limit, buffer] : cases) {
    SCOPED_TRACE(testing::Message() << limit << " " << buffer);
    written_run run;
    run.options.max_file_size = limit;
    run.options.buffer_size = buffer;
    trace = run.open();
    write_records(trace);
    ASSERT_EQ(kiv_trace_close_at(trace, 1'700'000'009, 0), 0);

    const std::vector<std::string> data = run.data();
    EXPECT_EQ(std::accumulate(data.begin(), data.end(), std::string()), whole.data()[0]);
    const read_back back(run.header_path());
    ASSERT_EQ(back.header.files().size(), data.size());
    EXPECT_EQ(data.size() > 10, limit != 0);
    for (std::size_t i = 0; i < data.size(); ++i) {
      EXPECT_EQ(static_cast<std::size_t>(back.header.files()[i]->size()), data[i].size());
      const bool is_one_record = data[i].size() == 3 + 5001;
      EXPECT_TRUE(limit == 0 || data[i].size() <= limit || is_one_record) << data[i].size();
    }
    expect_same_tables(expected, run.analysed());
  }
}

TEST(WrittenFiles, AProcessThatChangesItsDirectoryGoesOnWhereItBegan) {
  const temp_dir dir;
  ASSERT_TRUE(holds_in_child([&] {
    if (chdir(dir.path().c_str()) != 0) return false;
    kiv_trace_options options;
    kiv_trace_options_init(&options);
    options.run_id = "RUN";
    options.directory = "RUN/";
    options.max_file_size = 1024;
    kiv_trace* trace = kiv_trace_open(&options);
    if (chdir("/") != 0) return false;
    for (int i = 0; i < 1000; ++i) kiv_trace_marker(trace, "elsewhere");
    return kiv_trace_close(trace) == 0;
  }));
  EXPECT_EQ(markers(run_kiv(dir.path(), {"-R", "RUN"})).size(), 1000U);
}

}  // namespace
}  // namespace kiv::test
