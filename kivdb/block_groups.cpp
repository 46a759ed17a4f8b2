#include "block_groups.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <unordered_map>
#include <vector>

namespace kiv::db {
namespace {

enum class fold : std::uint8_t { key, sum, min, max };

struct group_column {
  std::string_view name;
  fold how;
  std::string_view value;  // of one row
};

#define WHEN(condition, value) "CASE WHEN " condition " THEN " value " ELSE 0 END"
#define MADE "b.type <> 'r'"
#define LIVE "b.end_rec IS NULL"
#define AT_PEAK "b.rec <= p.peak_rec AND (b.end_rec IS NULL OR b.end_rec > p.peak_rec)"
#define SHORT_LIVED "b.end_type = 'f' AND b.end_rec - b.rec <= 100"

// clang-format off
constexpr group_column columns[] = {
  {"run_id",            fold::key, "b.run_id"},
  {"main_pid",          fold::key, "b.main_pid"},
  {"kind",              fold::key, "CASE WHEN b.type = 'n' THEN 'no free' ELSE 'with free' END"},
  {"malid",             fold::key, "b.malid"},
  {"color",             fold::key, "b.color"},
  {"location",          fold::key, "b.location"},
  {"pid",               fold::key, "b.pid"},
  {"arc",               fold::key, "b.arc"},
  {"qid",               fold::key, "q.qid"},
  {"caller_object",     fold::min, "b.caller_object"},
  {"caller_function",   fold::min, "b.caller_function"},
  {"callee_object",     fold::min, "b.callee_object"},
  {"callee_function",   fold::min, "b.callee_function"},
  {"blocks",            fold::sum, "1"},
  {"allocs",            fold::sum, WHEN(MADE, "1")},
  {"alloc_bytes",       fold::sum, WHEN(MADE, "b.size")},
  {"alloc_tot_bytes",   fold::sum, WHEN(MADE, "b.tot_size")},
  {"resizes",           fold::sum, WHEN("b.type = 'r'", "1")},
  {"resize_bytes",      fold::sum, WHEN("b.type = 'r'", "b.size_change")},
  {"frees",             fold::sum, WHEN("b.end_type = 'f'", "1")},
  {"live_blocks",       fold::sum, WHEN(LIVE, "1")},
  {"live_bytes",        fold::sum, WHEN(LIVE, "b.size")},
  {"live_tot_bytes",    fold::sum, WHEN(LIVE, "b.tot_size")},
  {"peak_blocks",       fold::sum, WHEN(AT_PEAK, "1")},
  {"peak_bytes",        fold::sum, WHEN(AT_PEAK, "b.size")},
  {"peak_tot_bytes",    fold::sum, WHEN(AT_PEAK, "b.tot_size")},
  {"short_lived",       fold::sum, WHEN(SHORT_LIVED, "1")},
  {"short_lived_bytes", fold::sum, WHEN(SHORT_LIVED, "b.size")},
  {"ended",             fold::sum, WHEN("b.end_rec IS NOT NULL", "1")},
  {"shortest_life",     fold::min, "b.end_rec - b.rec"},
  {"longest_life",      fold::max, "b.end_rec - b.rec"},
  {"together_lived",    fold::sum, "COALESCE(b.end_rec - b.rec, 0)"},
};
// clang-format on

#undef WHEN
#undef MADE
#undef LIVE
#undef AT_PEAK
#undef SHORT_LIVED

constexpr std::string_view source =
    " FROM block b JOIN peak p ON p.run_id = b.run_id AND p.main_pid = b.main_pid LEFT JOIN "
    "queryevents q ON q.run_id = b.run_id AND q.main_pid = b.main_pid AND q.seq = b.query_seq";

using value = std::optional<std::int64_t>;

void fold_in(value& into, const value& next, fold how) {
  if (!next) return;
  if (into && how == fold::sum) {
    into = static_cast<std::int64_t>(static_cast<std::uint64_t>(*into) +
                                     static_cast<std::uint64_t>(*next));
  } else if (!into || (how == fold::min ? *next < *into : *next > *into)) {
    into = next;
  }
}

// Groups under construction, by the bytes of their key columns.
class group_table {
 public:
  explicit group_table(database& db) {
    std::string marks;
    for (std::size_t i = 0; i < std::size(columns); ++i) marks += marks.empty() ? "?" : ", ?";
    insert_ = db.prepare("INSERT INTO block_groups VALUES (" + marks + ")");
  }

  bool is_ready() const { return static_cast<bool>(insert_); }

  // Takes a row in. The caller flushes when `size` grows too large, and at the end.
  void add(const statement& row) {
    key_.clear();
    for (std::size_t i = 0; i < std::size(columns); ++i) {
      if (columns[i].how == fold::key) append_key(row, static_cast<int>(i));
    }
    auto [at, is_new] = groups_.try_emplace(key_);
    if (is_new) at->second.resize(std::size(columns));
    for (std::size_t i = 0; i < std::size(columns); ++i) {
      if (columns[i].how == fold::key) continue;
      const int column = static_cast<int>(i);
      // Sums have a value in every row; asking for NULL costs as much as the number itself.
      const bool is_null = columns[i].how != fold::sum && row.is_null(column);
      const value next = is_null ? value() : value(row.number(column));
      fold_in(at->second[i], next, columns[i].how);
    }
  }

  std::size_t size() const { return groups_.size(); }

  bool flush() {
    for (const auto& [key, values] : groups_) {
      std::string_view rest = key;
      for (std::size_t i = 0; i < std::size(columns); ++i) {
        const int parameter = static_cast<int>(i) + 1;
        if (columns[i].how == fold::key) {
          bind_key(rest, parameter);
        } else if (values[i]) {
          insert_.bind(parameter, *values[i]);
        } else {
          insert_.bind_null(parameter);
        }
      }
      if (!insert_.run()) return false;
    }
    groups_.clear();
    return true;
  }

 private:
  // A key column is 'T', length and text, 'N' and number, or '0' for NULL.
  void append_key(const statement& row, int column) {
    if (row.is_null(column)) {
      key_ += '0';
    } else if (row.is_number(column)) {
      append('N', row.number(column));
    } else {
      const auto text = row.text(column);
      append('T', static_cast<std::int64_t>(text.size()));
      key_ += text;
    }
  }
  void append(char kind, std::int64_t number) {
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    key_ += kind;
    key_.append(bytes, sizeof bytes);
  }
  void bind_key(std::string_view& rest, int parameter) {
    const char kind = rest.front();
    rest.remove_prefix(1);
    if (kind == '0') return insert_.bind_null(parameter);
    std::int64_t number = 0;
    std::memcpy(&number, rest.data(), sizeof number);
    rest.remove_prefix(sizeof number);
    if (kind == 'N') return insert_.bind(parameter, number);
    const auto size = static_cast<std::size_t>(number);
    insert_.bind(parameter, rest.substr(0, size));
    rest.remove_prefix(size);
  }

  statement insert_;
  std::unordered_map<std::string, std::vector<value>> groups_;
  std::string key_;
};

std::string folded_value(const group_column& column) {
  const std::string in_brackets = "(" + std::string(column.value) + ")";
  switch (column.how) {
    case fold::sum:
      return "SUM" + in_brackets;
    case fold::min:
      return "MIN" + in_brackets;
    case fold::max:
      return "MAX" + in_brackets;
    case fold::key:
      break;
  }
  return std::string(column.value);
}

std::string select_list(bool folded) {
  std::string list;
  for (const auto& column : columns) {
    if (!list.empty()) list += ", ";
    list += folded ? folded_value(column) : std::string(column.value);
    list += " AS ";
    list += column.name;
  }
  return list;
}

}  // namespace

std::string block_groups_select() {
  std::string keys;
  for (const auto& column : columns) {
    if (column.how != fold::key) continue;
    keys += (keys.empty() ? "" : ", ") + std::string(column.value);
  }
  return "SELECT " + select_list(true) + std::string(source) + " GROUP BY " + keys;
}

bool fill_block_groups(database& db, const std::string& run_id, std::size_t max_groups) {
  statement rows =
      db.prepare("SELECT " + select_list(false) + std::string(source) + " WHERE b.run_id = ?");
  group_table groups(db);
  if (!rows || !groups.is_ready()) return false;
  rows.bind(1, std::string_view(run_id));
  while (rows.step()) {
    groups.add(rows);
    if (groups.size() >= max_groups && !groups.flush()) return false;
  }
  return !rows.failed() && groups.flush();
}

}  // namespace kiv::db
