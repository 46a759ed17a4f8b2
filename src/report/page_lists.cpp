#include "report/page_lists.h"

#include <algorithm>

#include "report/json_size.h"
#include "report/json_writer.h"

namespace kiv::report {
namespace {

constexpr std::string_view members = R"({"blocks":,"bytes":,"tot_bytes":})";
// A list without rows: its key, measure, total and others.
constexpr std::size_t empty_list = 240;

std::size_t text_size(const std::string& text) {
  return json_text(text, json_form::in_page).size() + 1;
}

std::size_t row_size(const group_list& list, const list_row& row, shown_names& names) {
  const amount sum = row.sum.sum();
  std::size_t size = members.size() + json_size(sum.blocks) + json_size(sum.bytes) +
                     json_size(sum.tot_bytes) + std::string_view(R"("frames":[],)").size() + 1;
  if (list.by != group_key::path) return size + text_size(names.of(list.by, row.name));
  for (const auto& frame : names.frames(row.name)) size += text_size(frame);
  return size;
}

struct fit {
  std::size_t rows = 0;
  std::size_t bytes = 0;
  bool all = false;
};

// How many rows of each list fit.
fit rows_that_fit(const std::vector<group_list*>& lists, shown_names& names, std::size_t budget) {
  fit found;
  for (;; ++found.rows) {
    std::size_t more = 0;
    bool any = false;
    for (const auto* list : lists) {
      if (found.rows >= list->rows.size()) continue;
      any = true;
      more += row_size(*list, list->rows[found.rows], names);
      if (found.bytes + more > budget) return found;
    }
    if (!any) break;
    found.bytes += more;
  }
  found.all = true;
  return found;
}

std::size_t keep_rows(const std::vector<group_list*>& lists, std::size_t rows) {
  std::size_t longest = 0;
  for (auto* list : lists) {
    longest = std::max(longest, list->rows.size());
    keep_top(*list, rows);
  }
  return longest;
}

}  // namespace

std::vector<std::vector<group_list>> all_lists(const std::vector<page_run>& runs,
                                               const name_book& names) {
  std::vector<std::vector<group_list>> all;
  for (const auto& run : runs) {
    auto& lists = all.emplace_back();
    for (std::size_t of = 0; of < measure_count; ++of) {
      for (std::size_t by = 0; by < key_count; ++by) {
        lists.push_back(
            make_list(run.traces, names, static_cast<group_key>(by), static_cast<measure>(of), {}));
      }
    }
  }
  return all;
}

page_lists fitting_lists(std::vector<std::vector<group_list>> lists, shown_names& names,
                         std::size_t budget) {
  page_lists page;
  page.runs = std::move(lists);
  std::vector<group_list*> of_names, of_paths;
  for (auto& run : page.runs) {
    for (auto& list : run) (list.by == group_key::path ? of_paths : of_names).push_back(&list);
  }
  page.bytes = (of_names.size() + of_paths.size()) * empty_list;
  budget -= std::min(budget, page.bytes);
  // What one kind of list does not need the other one gets.
  fit named = rows_that_fit(of_names, names, budget * 3 / 5);
  const fit paths = rows_that_fit(of_paths, names, budget - named.bytes);
  if (paths.all && !named.all) named = rows_that_fit(of_names, names, budget - paths.bytes);
  page.bytes += named.bytes + paths.bytes;
  page.longest = keep_rows(of_names, named.rows);
  page.longest_of_paths = keep_rows(of_paths, paths.rows);
  page.rows = std::min(named.rows, page.longest);
  page.path_rows = std::min(paths.rows, page.longest_of_paths);
  return page;
}

}  // namespace kiv::report
