#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "clickhouse/server_url.h"

namespace kiv::clickhouse {

// Deletes from one server, which is one shard, the rows of loads that no question counts: that are
// not the newest of their run, that belong to a forgotten run, or that came to no end and began
// more than so many hours ago. Gives their number; waits, at most as long as the URL's time-out,
// for the server to be done. Nothing, with `error` set, when it failed.
std::optional<std::size_t> prune(const server_url& url, std::int64_t hours, std::string& error);

}  // namespace kiv::clickhouse
