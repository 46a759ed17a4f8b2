#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string_view>

#include "replay/reserve_type.h"

namespace kiv {
namespace {

using link = reserve_class::process_link;
using part = std::optional<std::string_view>;
constexpr part nothing = std::nullopt;

TEST(ReserveType, TheBeginningOfTheTextTellsWhatTheRestIs) {
  const struct {
    std::string_view text, category;
    part description, reference;
    link to_process = link::none;
    bool session = false;
  } cases[] = {
      {"oic:orders:body", "oic", "orders", "body"},
      {"oic:orders", "oic", "orders", ""},
      {"oic::0:init", "oic", "", "0:init"},
      {"oic:", "oic", "", ""},
      {"oic", "oic", "", ""},
      {"proc:7:server -v", "proc", "server -v", "7", link::mal},
      {"proc:7", "proc", "7", "7", link::mal},
      {"proc:", "proc", "", "", link::mal},
      {"proc", "proc", nothing, nothing, link::mal},
      {"process:1", "proc", "1", "ss", link::mal},
      {"xml_tree:7:list", "xml", nothing, "7", link::xml, true},
      {"xml_list:8", "xml", nothing, "8", link::xml, true},
      {"xml_tree:", "xml", nothing, "", link::xml, true},
      {"xml_tree", "xml", nothing, nothing, link::xml},
      {"xml", "xml", nothing, nothing, link::xml},
      {"dlock:stock:write", "dlock", "stock", "write"},
      {"dlock:stock", "dlock", "stock", "stock"},
      {"dlock:", "dlock", "", ""},
      {"dlock", "dlock", nothing, nothing},
      {"qdb:orders:x", "qdb", "orders:x", ""},
      {"qdb", "qdb", "", ""},
      {"make_new_sql_stmt:sel:x", "sql stmt", "sel:x", ""},
      {"make_new_sql_stmt", "sql stmt", "", ""},
      {"dbs_session:77:x", "dbsession", "", "77:x"},
      {"dbs_session", "dbsession", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const reserve_class found = classify_reserve_type(c.text);
    EXPECT_EQ(found.category, c.category);
    EXPECT_EQ(found.has_description, c.description.has_value());
    EXPECT_EQ(found.description, c.description.value_or(""));
    EXPECT_EQ(found.has_reference, c.reference.has_value());
    EXPECT_EQ(found.reference, c.reference.value_or(""));
    EXPECT_EQ(found.link, c.to_process);
    EXPECT_EQ(found.description_is_session, c.session);
  }
}

TEST(ReserveType, OtherTextsAreOfNoKind) {
  for (const std::string_view text : {"", "o", "oi", "pro:7", "Proc:7", " proc", "xm", "dloc", "qd",
                                      "make_new_sql_stm", "dbs_sessio", "cache:proc"}) {
    const reserve_class found = classify_reserve_type(text);
    EXPECT_EQ(found.category, "") << text;
    EXPECT_FALSE(found.has_description || found.has_reference) << text;
    EXPECT_EQ(found.link, link::none) << text;
  }
}

TEST(ReserveType, TheProcessIsTheNumberBehindTheFirstColonModulo32Bits) {
  const struct {
    std::string_view text;
    std::uint32_t process;
  } cases[] = {
      {"proc:7:server", 7},   {"proc:12b:9", 12},
      {"proc::9", 0},         {"proc", 0},
      {"proc:", 0},           {"proc:-7", 0},
      {"proc: 7", 0},         {"proc:4294967295", 0xffffffff},
      {"proc:4294967297", 1}, {"proc:99999999999999999999", 1661992959},
  };
  for (const auto& c : cases) EXPECT_EQ(process_of_reserve_type(c.text), c.process) << c.text;
}

}  // namespace
}  // namespace kiv
