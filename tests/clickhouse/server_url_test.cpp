#include "clickhouse/server_url.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace kiv::clickhouse {
namespace {

struct good_url {
  const char* text;
  bool secure;
  const char *user, *password, *address, *database, *cluster;
  int timeout;
};

TEST(ServerUrl, ItsPartsAreRead) {
  const good_url urls[] = {
      {"clickhouse://h/d", false, "default", "", "h:8123", "d", "", 30},
      {"clickhouses://h/d", true, "default", "", "h:8443", "d", "", 30},
      {"clickhouse://h/d?secure=1", true, "default", "", "h:8443", "d", "", 30},
      {"clickhouse://h:1/d?secure=0", false, "default", "", "h:1", "d", "", 30},
      {"clickhouse://u@h:65535/d?cluster=c&timeout=5", false, "u", "", "h:65535", "d", "c", 5},
      {"clickhouse://u:p@h/d", false, "u", "p", "h:8123", "d", "", 30},
      {"clickhouse://u:@h/d", false, "u", "", "h:8123", "d", "", 30},
      {"clickhouse://a%40b:c%3a%2F%25d@h/e%20f", false, "a@b", "c:/%d", "h:8123", "e f", "", 30},
      {"clickhouse://u:p:q@r@h/d", false, "u", "p:q@r", "h:8123", "d", "", 30},
      {"clickhouse://[::1]:90/d", false, "default", "", "[::1]:90", "d", "", 30},
      {"clickhouse://[::1]/d?cluster=%C3%A4", false, "default", "", "[::1]:8123", "d", "ä", 30},
  };
  for (const auto& want : urls) {
    std::string error;
    const auto url = parse_server_url(want.text, error);
    ASSERT_TRUE(url) << want.text << ": " << error;
    EXPECT_EQ(url->secure, want.secure) << want.text;
    EXPECT_EQ(url->user, want.user) << want.text;
    EXPECT_EQ(url->password, want.password) << want.text;
    EXPECT_EQ(url->address(), want.address) << want.text;
    EXPECT_EQ(url->database, want.database) << want.text;
    EXPECT_EQ(url->cluster, want.cluster) << want.text;
    EXPECT_EQ(url->timeout, want.timeout) << want.text;
  }
}

TEST(ServerUrl, WhatIsNoneIsRefusedWithoutItsPassword) {
  const char* const urls[] = {
      "clickhouse://",
      "clickhouse://h",
      "clickhouse://h/",
      "clickhouse:///d",
      "clickhouse://u:secret@/d",
      "clickhouse://u:secret@h:0/d",
      "clickhouse://u:secret@h:65536/d",
      "clickhouse://u:secret@h:x/d",
      "clickhouse://u:secret@h:80x/d",
      "clickhouse://u:secret@[::1/d",
      "clickhouse://u:secret@h h/d",
      "clickhouse://u:secret%4@h/d",
      "clickhouse://u:secret%zz@h/d",
      "clickhouse://:secret@h/d",
      "clickhouse://u:secret%0AHost:x@h/d",
      "clickhouse://u:secret@h/d/e",
      "clickhouse://u:secret@h/d?cluster=",
      "clickhouse://u:secret@h/d?cluster",
      "clickhouse://u:secret@h/d?secure=yes",
      "clickhouse://u:secret@h/d?timeout=0",
      "clickhouse://u:secret@h/d?timeout=-1",
      "clickhouse://u:secret@h/d?timeout=99999999999",
      "clickhouse://u:secret@h/d?user=x",
      "http://u:secret@h/d",
      "runs.db",
  };
  for (const char* text : urls) {
    std::string error;
    EXPECT_FALSE(parse_server_url(text, error)) << text;
    EXPECT_NE(error, "") << text;
    EXPECT_EQ(error.find("secret"), std::string::npos) << error;
  }
}

TEST(ServerUrl, MessagesShowNoPassword) {
  const std::pair<const char*, const char*> shown[] = {
      {"clickhouse://u:secret@h/d?cluster=c", "clickhouse://u@h/d?cluster=c"},
      {"clickhouses://u:se:c@ret@h:1/d", "clickhouses://u@h:1/d"},
      {"clickhouse://u@h:1/d", "clickhouse://u@h:1/d"},
      {"clickhouse://h:1/d?x=a@b", "clickhouse://h:1/d?x=a@b"},
      {"clickhouse://u:sec/ret@h/d", "clickhouse://u@h/d"},
      {"/a:b@c/runs.db", "/a:b@c/runs.db"},
  };
  for (const auto& [text, want] : shown) EXPECT_EQ(without_password(text), want);
}

TEST(ServerUrl, APasswordInTheUrlComesFirst) {
  setenv("KIVDB_CLICKHOUSE_PASSWORD", "of the environment", 1);
  std::string error;
  EXPECT_EQ(parse_server_url("clickhouse://u@h/d", error)->password, "of the environment");
  EXPECT_EQ(parse_server_url("clickhouse://u:p@h/d", error)->password, "p");
  EXPECT_EQ(parse_server_url("clickhouse://u:@h/d", error)->password, "");
  unsetenv("KIVDB_CLICKHOUSE_PASSWORD");
}

}  // namespace
}  // namespace kiv::clickhouse
