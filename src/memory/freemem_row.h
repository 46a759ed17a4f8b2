#pragma once

#include <cstdint>

#include "events/kiv_type.h"

namespace kiv {

class kiv_reader;

// Writes a row of the `freemem` table: which memory record ended which, and the type of the former.
void write_freemem_row(kiv_reader& reader, std::uint64_t ended, std::uint64_t cause, kiv_type type);

}  // namespace kiv
