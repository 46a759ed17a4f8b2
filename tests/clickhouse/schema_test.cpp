#include "clickhouse/schema.h"

#include <gtest/gtest.h>

#include "store/view_catalogue.h"

namespace kiv::clickhouse {
namespace {

std::string select_of(std::string_view view, std::string_view cluster, const one_load* only) {
  return select_of_view(view, "my db", cluster, only);
}

TEST(ClickHouseSchema, HasEveryViewOfSqlite) {
  ASSERT_FALSE(store::views().empty());
  for (const auto& view : store::views()) {
    EXPECT_NE(select_of(view.name, "", nullptr), "") << view.name;
  }
  EXPECT_EQ(select_of("no_such_view", "", nullptr), "");
}

TEST(ClickHouseSchema, ViewsSeeOnlyLoadsThatCount) {
  for (const std::string_view cluster : {"", "c"}) {
    for (const auto& statement : schema_statements(cluster, "d'b")) {
      const std::string& sql = statement.sql;
      if (!sql.starts_with("CREATE VIEW") ||
          sql.find("VIEW IF NOT EXISTS newest_import") != std::string::npos)
        continue;
      std::size_t reads = 0, chosen = 0;
      for (auto at = sql.find("FROM "); at != std::string::npos; at = sql.find("FROM ", at + 1)) {
        const std::string table = sql.substr(at + 5, sql.find_first_of(" \n)", at + 5) - at - 5);
        reads += table.ends_with("_stored") || table.ends_with("_everywhere");
        chosen += table == "newest_import";
      }
      EXPECT_GT(reads, 0u) << sql;
      EXPECT_EQ(reads, chosen) << sql;
    }
  }
}

TEST(ClickHouseSchema, OneLoadIsAskedByItsKey) {
  const one_load only{"it's FROM list_stored", 77};
  for (const auto& view : store::views()) {
    const std::string sql = select_of(view.name, "c", &only);
    EXPECT_NE(sql.find("run = 'it\\'s FROM list_stored' AND _part"), std::string::npos) << sql;
    EXPECT_NE(sql.find(" AND import = 77"), std::string::npos) << sql;
    EXPECT_EQ(sql.find("newest_import"), std::string::npos) << sql;
    EXPECT_NE(sql.find("FROM `my db`."), std::string::npos) << sql;
  }
}

TEST(ClickHouseSchema, StaysWithinWhatOldAndNewReleasesRun) {
  for (const std::string_view cluster : {"", "c"}) {
    for (const auto& statement : schema_statements(cluster, "d'b")) {
      for (const char* word :
           {"WITH ", " OVER ", "EXISTS (", "OR REPLACE", "CODEC", "DateTime", ";"}) {
        EXPECT_EQ(statement.sql.find(word), std::string::npos) << statement.sql;
      }
    }
  }
}

TEST(ClickHouseSchema, QuotesTheClusterAndKeepsEveryTableOnce) {
  const std::string sql = schema_sql("it's", "d'b");
  EXPECT_NE(sql.find("Distributed('it\\'s', 'd\\'b'"), std::string::npos);
  EXPECT_EQ(schema_sql("", "d").find("Distributed"), std::string::npos);
  EXPECT_EQ(schema_sql("", "d").find("_everywhere"), std::string::npos);
  EXPECT_EQ(stored_tables().size(), 5u + 18u);
}

}  // namespace
}  // namespace kiv::clickhouse
