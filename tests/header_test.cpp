#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <sstream>

#include "kiv/stream_diagnostics.h"
#include "support/run_trace.h"
#include "trace/kiv_hdr.h"
#include "trace/xml_parser.h"
#include "util/time_text.h"

namespace kiv {
namespace {

class zone_guard {
 public:
  explicit zone_guard(const char* zone) {
    if (const char* before = std::getenv("TZ")) before_ = before;
    setenv("TZ", zone, 1);
    tzset();
  }
  ~zone_guard() {
    before_.empty() ? unsetenv("TZ") : setenv("TZ", before_.c_str(), 1);
    tzset();
  }
  zone_guard(const zone_guard&) = delete;
  zone_guard& operator=(const zone_guard&) = delete;

 private:
  std::string before_;
};

// Reads a header with the given content.
struct parsed {
  explicit parsed(std::string_view document, int level = 0)
      : faults(level, out, err), parser(faults), header(std::make_unique<kiv_hdr>(parser)) {
    result = header->read_document(document, "x.kivhdr");
  }

  std::ostringstream out, err;
  stream_diagnostics faults;
  XmlParser parser;
  std::unique_ptr<kiv_hdr> header;
  int result = -1;
};

TEST(Header, ValuesCountByPositionAndMissingOnesChangeNothing) {
  const parsed p(R"(<?xml version="1.0" encoding="ISO-8859-1"?><kiv>
      <version any="1"/><filetype x="bin" y="asc"/><pid value="12 3"/><pid/>
      <m_entry size=" 16x"/><mem_block size="99999999999"/><m_group size="-99999999999"/>
      <time_start nsecs="5" secs="7000000"/><time_end secs="-1"/>
      <endianess values="big"/><endianess/>
      <progname a="p"/><runid a="r"/><user a="u"/><lom a="l"/><pacc a="a"/><hostname a=")"
                 "\xE4"
                 R"("/></kiv>)");
  EXPECT_EQ(p.result, 0);
  EXPECT_EQ(p.header->version(), 1);
  EXPECT_EQ(p.header->filetype(), "bin");
  EXPECT_EQ(p.header->pid(), 12);
  EXPECT_FALSE(p.header->little_endian());
  EXPECT_EQ(p.header->start().secs, 5);
  EXPECT_EQ(p.header->start().nsecs, 7'000'000);
  EXPECT_EQ(p.header->end().secs, -1);
  EXPECT_EQ(p.header->runid() + p.header->user() + p.header->lom() + p.header->pacc(), "rula");
  EXPECT_EQ(p.header->hostname(), "\xC3\xA4");
  EXPECT_EQ(p.header->m_entry_size(), 16);
  EXPECT_EQ(p.header->mem_block_size(), 2147483647);
  EXPECT_EQ(p.header->m_group_size(), -2147483648);
  EXPECT_TRUE(p.header->closed());
}

TEST(Header, WidthsOfTheLastDefinitionOfATag) {
  const char* document = R"(<kiv><entry tag="a" name="n" desc="d"><elem name="x" size="8"/></entry>
      <entry tag="a" name="n2"><elem name="addr" size="4"/><elem name="tot" size="-3"/>
        <elem name="none"/><format fmt="%u"/></entry>
      <entry tag="&#228;"><elem name="y" size="2"/></entry><entry/>
      <kivfile><file value="./d"/><size value="77"/></kivfile>
      <kivfile><size value="-1"/></kivfile></kiv>)";
  const parsed p(document);
  const struct {
    int type, index, width;
  } cases[] = {{'a', 0, 4}, {'a', 1, 0}, {'a', 2, 0}, {'a', 3, 0},       {'a', -1, 0},
               {-61, 0, 2}, {195, 0, 0}, {'x', 0, 0}, {'a' + 256, 0, 0}, {-1000, 0, 0}};
  for (const auto& c : cases)
    EXPECT_EQ(p.header->get_elem_size(c.type, c.index), c.width) << c.type;
  ASSERT_EQ(p.header->files().size(), 2U);
  EXPECT_EQ(p.header->files()[0]->file(), "./d");
  EXPECT_EQ(p.header->files()[0]->size(), 77);
  EXPECT_EQ(p.header->files()[1]->size(), 0);

  p.header->dump_entries();
  EXPECT_EQ(p.out.str() + p.err.str(), "");
  const parsed listed(document, 1);
  listed.header->dump_entries();
  EXPECT_EQ(listed.out.str(),
            "  name: x size: 8\n  name: addr size: 4\n  name: tot size: -3\n"
            "  name: none size: 0\n  name: y size: 2\n");
  EXPECT_TRUE(listed.err.str().ends_with(
      "tag: 97 entry_name: n\n desc: d format: \ntag: 97 entry_name: n2\n desc:  format: %u\n"
      "tag: -61 entry_name: \n desc:  format: \ntag: 0 entry_name: \n desc:  format: \n"));
}

TEST(Header, ResultsAndMessages) {
  const struct {
    const char* document;
    int result;
    std::string message;  // without the path
    int version;
    bool closed = false;
  } cases[] = {
      {"<kiv><version v='1'/></kiv>", 0, "", 1, true},
      {"<kiv><version v='1'/><kivfile><fi", 0, "", 1},  // the writer is still at it
      {"<kiv><entry tag='a'>", 0, "", 0},
      {"", 2, "no kiv element in header file ", 0},
      {"<other><version v='1'/></other>", 2, "no kiv element in header file ", 1},
      {"<kiv><version v='1'/>\n<pid x=1/>", 2, "not well-formed (invalid token) at line 2", 1},
      {"<kiv/><kiv/>", 2, "junk after document element at line 1", 0, true},
      // A nested root's end closes the model; the rest goes nowhere.
      {"<kiv><kiv><version v='1'/></kiv><version v='2'/></kiv>", 0, "", 1, true},
  };
  for (const auto& c : cases) {
    parsed p(c.document);
    EXPECT_EQ(p.result, c.result) << c.document;
    EXPECT_EQ(p.header->version(), c.version) << c.document;
    const bool names_file = c.message.ends_with("file ");
    const std::string end = c.message.empty() ? "" : names_file ? "x.kivhdr\n" : "\n";
    EXPECT_EQ(p.err.str(), c.message + end) << c.document;
    EXPECT_EQ(p.header->closed(), c.closed) << c.document;
    p.header.reset();
    EXPECT_TRUE(p.parser.elements().empty()) << c.document;
  }
}

TEST(Header, DebugLinesFollowTheStack) {
  const parsed p("<kiv><foo/><kivfile><foo/></kivfile><entry tag='a'><foo/>x</entry></kiv>", 1);
  EXPECT_EQ(p.err.str(),
            "\t\tpush kiv_hdr\n"
            "startElement:  'kiv' from 'kiv_hdr'\n>tag: kiv\n"
            "startElement:  'foo' from 'kiv_hdr'\n>tag: foo\n"
            "kiv_hdr::startElement >>>> Unknown tag 'foo' \n"
            "endElement:  'foo' from 'kiv_hdr'\n<tag: foo\n"
            "startElement:  'kivfile' from 'kiv_hdr'\n>tag: kivfile\n\t\tpush kivfile\n"
            "startElement:  'foo' from 'kivfile'\n"
            "kivfile::set_attrs >>>>>>>>>> Unknown tag 'foo' \n"
            "endElement:  'foo' from 'kivfile'\nendElement:  'kivfile' from 'kivfile'\n"
            "\t\tpop  kivfile\n"
            "startElement:  'entry' from 'kiv_hdr'\n>tag: entry\n\t\tpush entry\n"
            "startElement:  'foo' from 'entry'\nentry::startElemen: >>>>> Unknown tag 'foo' \n"
            "endElement:  'foo' from 'entry'\nuserdata: x\n"
            "endElement:  'entry' from 'entry'\n\t\tpop  entry\n"
            "endElement:  'kiv' from 'kiv_hdr'\n<tag: kiv\n\t\tpop  kiv_hdr\n");
}

// What the C library says, whatever the zone: whole hours, half hours, summer time that begins in
// the middle of a minute, offsets with seconds.
TEST(TimeText, ClockAgreesWithTheCLibraryInEveryZone) {
  const char* zones[] = {"UTC", "CET-1CEST,M3.5.0,M10.5.0/3", "<+0545>-5:45", "<-004430>0:44:30",
                         "AAA5BBB4:59:30,M3.2.0/2:00:17,M11.1.0/1:30:31"};
  constexpr std::uint32_t nsecs[] = {0, 5'000'000, 999'999'999, 1'000'000'000, 4'294'967'295};
  for (const char* zone : zones) {
    const zone_guard guard(zone);
    minute_clock clock;
    std::minstd_rand random(7);
    std::uint32_t secs = 0;
    for (int i = 0; i < 20'000; ++i) {
      const std::uint32_t step = static_cast<std::uint32_t>(random());
      // Mostly forward by seconds, at times far away; both ends are reached.
      secs = i % 500 == 0 ? step * 2 : i % 1000 == 999 ? 0xffffffffU - step % 90 : secs + step % 9;
      const std::uint32_t nsec = nsecs[step % std::size(nsecs)];
      const std::time_t time = secs;
      std::tm local{};
      localtime_r(&time, &local);
      char date[64], expected[80];
      std::strftime(date, sizeof date, "%Y-%m-%d %H:%M:%S", &local);
      std::snprintf(expected, sizeof expected, "%s.%03u", date, nsec / 1'000'000);
      ASSERT_EQ(clock.text({secs, nsec}), expected) << zone << ' ' << secs;
      ASSERT_EQ(time_text({secs, nsec}), expected) << zone << ' ' << secs;
    }
  }
  const zone_guard utc("UTC");
  EXPECT_EQ(time_text({-1, -5'000'000}), "1969-12-31 23:59:59.-05");
  minute_clock clock;
  EXPECT_EQ(clock.text({0xffffffffU, 0}), "2106-02-07 06:28:15.000");
  EXPECT_EQ(clock.text({5, 0}), "1970-01-01 00:00:05.000");  // not the next second of that minute
}

}  // namespace
}  // namespace kiv
