#pragma once

#include <string>

#include "clickhouse/server_url.h"

namespace kiv::clickhouse {

// Makes the database, its tables and its views where they are not there yet; on one server, which
// is one shard when the URL names a cluster. False, with `error` set, when the server refuses.
bool set_up(const server_url& url, std::string& error);

}  // namespace kiv::clickhouse
