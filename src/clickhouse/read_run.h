#pragma once

#include <optional>
#include <string>

#include "clickhouse/profile_rows.h"
#include "clickhouse/server.h"

namespace kiv::clickhouse {

// Reads what a load stored of a run, by one question. Nothing, with `error` set, when the server
// failed or holds what no profile can hold.
std::optional<run_profile> read_run(server& from, const load_id& load, std::size_t traces,
                                    std::string& error);

}  // namespace kiv::clickhouse
