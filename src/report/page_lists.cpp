#include "report/page_lists.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "report/json_size.h"

namespace kiv::report {
namespace {

constexpr std::string_view members = R"({"frames":[],"blocks":,"bytes":,"tot_bytes":},)";
// More than any page has room for.
constexpr std::size_t most_rows = 50'000;
// A list without rows: its key, measure, total and others.
constexpr std::size_t empty_list = 240;

std::size_t row_size(group_key by, const list_row& row, shown_names& names) {
  const amount sum = row.sum.sum();
  std::size_t size =
      members.size() + json_size(sum.blocks) + json_size(sum.bytes) + json_size(sum.tot_bytes);
  if (by != group_key::path) return size + names.of(by, row.name).json_bytes + 1;
  for (const auto* frame : names.frames(row.name)) size += frame->json_bytes + 1;
  return size;
}

std::uint64_t bytes_of(const list_row* row) { return row ? row->sum.sum().bytes : 0; }

}  // namespace

struct whole_lists::fit {
  std::size_t rows = 0;
  std::size_t longest = 0;  // of all lists
  std::size_t bytes = 0;
};

whole_lists::whole_lists(const std::vector<page_run>& runs, const name_book& names)
    : run_count_(runs.size()) {
  lists_.reserve(measure_count * key_count);
  // To compare names all of them are needed.
  const auto top = run_count_ == 1 ? std::optional(most_rows) : std::nullopt;
  for (std::size_t of = 0; of < measure_count; ++of) {
    std::vector<list_choice> choices;
    for (std::size_t by = 0; by < key_count; ++by) {
      choices.push_back({static_cast<measure>(of), static_cast<group_key>(by)});
    }
    const std::size_t first = lists_.size();
    lists_.resize(first + key_count);
    for (const auto& run : runs) {
      auto lists = make_lists(sum_up(run.traces, names, choices), names, choices, top);
      for (std::size_t by = 0; by < key_count; ++by) {
        lists_[first + by].runs.push_back(std::move(lists[by]));
      }
    }
    for (std::size_t by = 0; by < key_count; ++by) rank(lists_[first + by], names);
  }
}

void whole_lists::rank(compared_list& into, const name_book& names) {
  if (into.runs.size() == 1) {
    for (const auto& row : into.runs[0].rows) into.names.push_back({&row, nullptr});
    return;
  }
  std::vector<std::array<const list_row*, 2>> by_number(names.size(into.runs[0].by));
  std::vector<std::uint32_t> by_size;
  for (std::size_t run = 0; run < 2; ++run) {
    for (const auto& row : into.runs[run].rows) {
      auto& rows = by_number[row.name];
      if (!rows[0]) by_size.push_back(row.name);
      rows[run] = &row;
    }
  }
  const auto size = [&](std::uint32_t number) {
    const auto& [a, b] = by_number[number];
    return std::max(bytes_of(a), bytes_of(b));
  };
  const auto change = [&](std::uint32_t number) {
    const auto& [a, b] = by_number[number];
    return size(number) - std::min(bytes_of(a), bytes_of(b));
  };
  auto by_change = by_size;
  std::ranges::stable_sort(by_size, std::ranges::greater(), size);
  std::ranges::stable_sort(by_change, std::ranges::greater(), change);
  for (std::size_t i = 0; i < by_size.size(); ++i) {
    for (const auto number : {by_change[i], by_size[i]}) {
      auto& rows = by_number[number];
      if (rows[0] || rows[1]) into.names.push_back(rows);
      rows = {};
    }
  }
}

// How many names of each list fit.
whole_lists::fit whole_lists::rows_that_fit(bool of_paths, shown_names& names,
                                            std::size_t budget) const {
  fit found;
  std::size_t most = 0;
  for (const auto& list : lists_) {
    if ((list.runs[0].by == group_key::path) != of_paths) continue;
    most = std::max(most, list.names.size());
    const std::size_t beyond = run_count_ == 1 ? list.runs[0].left_out : 0;
    found.longest = std::max(found.longest, list.names.size() + beyond);
  }
  for (; found.rows < most; ++found.rows) {
    std::size_t more = 0;
    for (const auto& list : lists_) {
      const group_key by = list.runs[0].by;
      if ((by == group_key::path) != of_paths || found.rows >= list.names.size()) continue;
      for (const auto* row : list.names[found.rows]) {
        if (row) more += row_size(by, *row, names);
      }
      if (found.bytes + more > budget) return found;
    }
    found.bytes += more;
  }
  return found;
}

page_lists whole_lists::fitting(shown_names& names, std::size_t budget) const {
  page_lists page;
  page.bytes = lists_.size() * run_count_ * empty_list;
  budget -= std::min(budget, page.bytes);
  // What one kind of list does not need the other one gets.
  fit named = rows_that_fit(false, names, budget * 3 / 5);
  const fit paths = rows_that_fit(true, names, budget - named.bytes);
  if (named.rows < named.longest) named = rows_that_fit(false, names, budget - paths.bytes);
  page.bytes += named.bytes + paths.bytes;
  page.rows = named.rows;
  page.longest = named.longest;
  page.path_rows = paths.rows;
  page.longest_of_paths = paths.longest;
  page.runs.resize(run_count_);
  for (const auto& list : lists_) {
    const std::size_t rows = list.runs[0].by == group_key::path ? paths.rows : named.rows;
    for (std::size_t run = 0; run < run_count_; ++run) {
      page.runs[run].push_back(shown_part(list, run, rows));
    }
  }
  return page;
}

// The list of a run with the rows of the first so many names.
group_list whole_lists::shown_part(const compared_list& from, std::size_t run, std::size_t names) {
  const group_list& whole = from.runs[run];
  group_list part;
  part.by = whole.by;
  part.of = whole.of;
  part.total = whole.total;
  part.left_out = whole.left_out;
  part.left_out_sum = whole.left_out_sum;
  std::vector<const list_row*> rows;
  for (std::size_t i = 0; i < from.names.size(); ++i) {
    const list_row* row = from.names[i][run];
    if (!row) continue;
    if (i < names) {
      rows.push_back(row);
    } else {
      ++part.left_out;
      part.left_out_sum += row->sum;
    }
  }
  std::ranges::sort(rows);  // as they stand in the whole list
  for (const auto* row : rows) part.rows.push_back(*row);
  return part;
}

}  // namespace kiv::report
