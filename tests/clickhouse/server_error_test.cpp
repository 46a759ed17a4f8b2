#include "clickhouse/server_error.h"

#include <gtest/gtest.h>

namespace kiv::clickhouse {
namespace {

struct answer {
  int status;
  const char* body;
  failure_kind kind;
  int code;
  const char* text;
};

TEST(ServerError, IsReadForWhatMayBeDoneAboutIt) {
  const answer answers[] = {
      {404,
       "Code: 60, e.displayText() = DB::Exception: Table a.b doesn't exist., e.what() = "
       "DB::Exception\n",
       failure_kind::statement, 60, "Table a.b doesn't exist."},
      {404, "Code: 60. DB::Exception: Table a.b does not exist. (UNKNOWN_TABLE) (version 24.8.1)\n",
       failure_kind::statement, 60, "Table a.b does not exist. (UNKNOWN_TABLE)"},
      {500, "Code: 202, e.displayText() = DB::Exception: Too many queries", failure_kind::busy, 202,
       "Too many queries"},
      {500, "Code: 210, e.displayText() = DB::NetException: Connection refused (h:9), e.what() = x",
       failure_kind::unclear, 210, "Connection refused (h:9)"},
      {500, "Code: 164, e.displayText() = DB::Exception: read\nonly \x01\xff", failure_kind::server,
       164, "read only ??"},
      {503, "<html>", failure_kind::busy, 0, nullptr},
      {504, "", failure_kind::unclear, 0, nullptr},
      {404, "Code: ", failure_kind::server, 0, nullptr},
      {500, "Code: -5, e", failure_kind::server, 0, nullptr},
      {200, "Code: 99999999999, e", failure_kind::server, 0, nullptr},
  };
  for (const auto& want : answers) {
    const server_failure failure = read_server_error(want.status, want.body);
    EXPECT_EQ(failure.kind, want.kind) << want.body;
    EXPECT_EQ(failure.code, want.code) << want.body;
    if (want.text != nullptr) {
      EXPECT_EQ(failure.text, want.text);
    } else {
      EXPECT_NE(failure.text.find(std::to_string(want.status)), std::string::npos) << failure.text;
    }
  }
}

TEST(ServerError, AnEndlessMessageIsCut) {
  const std::string body =
      "Code: 62, e.displayText() = DB::Exception: " + std::string(100'000, 'x');
  EXPECT_LT(read_server_error(400, body).text.size(), 1000u);
}

}  // namespace
}  // namespace kiv::clickhouse
