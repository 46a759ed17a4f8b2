#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiv::clickhouse {

// Whether a statement begins as one that reads: behind blanks, comments and brackets, SELECT or
// WITH. The server decides whether it is one.
bool is_select(std::string_view sql);

// The statement with the n-th '?' outside of literals, names and comments replaced by the n-th of
// `texts` as a literal; as it is when there are none.
std::string with_texts(std::string_view sql, const std::vector<std::string>& texts);

}  // namespace kiv::clickhouse
