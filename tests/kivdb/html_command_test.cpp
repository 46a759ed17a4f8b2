#include "kivdb/kivdb_program.h"
#include "report/json_reader.h"

namespace kiv::test {
namespace {

using KivdbHtml = Kivdb;

// What stands in a page for its scripts.
json_value data_of(const std::string& page) {
  const std::string begin = R"(<script type="application/json" id="kiv-report">)";
  const std::size_t at = page.find(begin);
  if (at == std::string::npos) return {};
  const std::size_t from = at + begin.size();
  return read_json(page.substr(from, page.find("</script>", from) - from));
}

// A value in one form, whatever blanks and escapes it was written with.
std::string canonical(const json_value& value) {
  std::string text = value.scalar;
  for (std::size_t i = 0; i < value.size(); ++i) {
    text +=
        (i < value.keys.size() ? "," + value.keys[i] + ":" : ",") + canonical(value.elements[i]);
  }
  return "[" + text + "]";
}

TEST_F(KivdbHtml, APageHoldsWhatTheReportSays) {
  for (const std::string sample : {"MIX", "NEXT", "SQL1"}) {
    const std::string source = KIV_SOURCE_DIR "/samples/" + sample;
    const auto report = kivdb("report " + source +
                              " --json --by id,color,line,function,path,process,query"
                              " --of leaked,peak,live,allocated,temporary");
    const auto run = kivdb("html " + source + " -o p.html");
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string page = read_file(dir_ / "p.html");
    const auto runs = canonical(data_of(page)["runs"]);
    EXPECT_GT(runs.size(), 1000u);
    EXPECT_EQ(runs, canonical(read_json(report.out)["runs"])) << sample;
    EXPECT_NE(page.find("<title>" + sample + " "), std::string::npos);
    for (const char* mark : {"@TITLE@", "@DATA@", "@STYLE@", "@D3@", "@SCRIPT@", "@POLICY@"}) {
      EXPECT_EQ(page.find(mark), std::string::npos) << mark;
    }
  }
}

TEST_F(KivdbHtml, APageComparesRunsOfSourcesOrOfADatabase) {
  write_runs();
  ASSERT_EQ(kivdb("import A B -o t.db").status, 0);
  std::string first;
  for (const char* runs : {"A B", "t.db A B", "t.db --run A --run B", "A B --run A --run B"}) {
    const auto run = kivdb(std::string("html -o p.html ") + runs);
    ASSERT_EQ(run.status, 0) << runs << ": " << run.err;
    const std::string page = read_file(dir_ / "p.html");
    const auto data = data_of(page);
    EXPECT_EQ(data["runs"][0]["run"].scalar, "A") << runs;
    EXPECT_EQ(data["runs"][1]["run"].scalar, "B") << runs;
    EXPECT_EQ(data["page"]["runs"].size(), 2u) << runs;
    if (first.empty()) first = page;
    EXPECT_EQ(page, first) << runs;
  }
}

}  // namespace
}  // namespace kiv::test
