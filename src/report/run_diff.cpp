#include "report/run_diff.h"

#include <algorithm>

#include "report/group_lists.h"
#include "report/human.h"
#include "report/printable.h"
#include "report/run_report.h"

namespace kiv::report {
namespace {

class comparison {
 public:
  comparison(const run_diff& diff, const std::vector<named_trace>& a,
             const std::vector<named_trace>& b)
      : names_(diff.names), by_(diff.options.by), a_(a), b_(b) {}

  // All names with anything in either run, the largest growth first.
  std::vector<diff_row> rows(measure of, compared_amounts& total) const {
    const auto before = sums_by(a_, names_, by_, of), after = sums_by(b_, names_, by_, of);
    std::vector<diff_row> rows;
    for (std::uint32_t number = 0; number < before.size(); ++number) {
      const compared_amounts pair{before[number].sum(), after[number].sum()};
      total.a += pair.a;
      total.b += pair.b;
      if (pair.a != amount{} || pair.b != amount{}) rows.push_back({number, pair});
    }
    std::ranges::sort(rows, [&](const diff_row& x, const diff_row& y) {
      if (x.amounts.change() != y.amounts.change()) return x.amounts.change() > y.amounts.change();
      if (x.amounts.b.bytes != y.amounts.b.bytes) return x.amounts.b.bytes > y.amounts.b.bytes;
      return names_.compare(by_, x.name, y.name) < 0;
    });
    return rows;
  }

  limit_verdict verdict(const growth_limit& limit) const {
    limit_verdict verdict;
    verdict.limit = limit;
    compared_amounts total;
    for (const auto& row : rows(limit.of, total)) {
      if (is_passed(limit, row.amounts.a.bytes, row.amounts.b.bytes)) verdict.by.push_back(row);
    }
    verdict.total_a = total.a;
    verdict.total_b = total.b;
    verdict.by_total = is_passed(limit, total.a.bytes, total.b.bytes);
    verdict.passed = verdict.by_total || !verdict.by.empty();
    return verdict;
  }

 private:
  const name_book& names_;
  group_key by_;
  const std::vector<named_trace>&a_, &b_;
};

}  // namespace

bool run_diff::any_passed() const {
  return judged && std::ranges::any_of(verdicts, &limit_verdict::passed);
}

bool make_diff(const run_profile& a, const run_profile& b, const diff_options& options,
               run_diff& into, std::string& error) {
  group_filter filter;
  if (!filter.set(options.filter, error)) return false;
  if (!filter.knows_process(a) && !filter.knows_process(b)) {
    error = "neither run has a process " + quoted_name(*options.filter.process);
    return false;
  }
  into.a = &a;
  into.b = &b;
  into.options = options;
  const auto traces_a = named_traces(a, filter, into.names);
  const auto traces_b = named_traces(b, filter, into.names);
  const comparison compare(into, traces_a, traces_b);
  into.rows = compare.rows(options.of, into.total);
  if (options.top && *options.top < into.rows.size()) {
    into.left_out = into.rows.size() - *options.top;
    into.rows.resize(*options.top);
  }
  into.judged = options.allow_incomplete || (is_complete(a) && is_complete(b));
  for (const auto& limit : options.limits) into.verdicts.push_back(compare.verdict(limit));
  return true;
}

std::string verdict_in_words(const run_diff& diff) {
  if (diff.verdicts.empty()) return {};
  if (!diff.judged) {
    std::string which;
    for (const auto* run : {diff.a, diff.b}) {
      if (!is_complete(*run))
        which += (which.empty() ? "run " : " and run ") + quoted_name(run->name);
    }
    return "not judged, since not known to be complete: " + which +
           " (--allow-incomplete judges all the same)";
  }
  std::string words;
  for (const auto& verdict : diff.verdicts) {
    if (!verdict.passed) continue;
    words += words.empty() ? "" : "; ";
    words += std::string(name_of(verdict.limit.of)) + " grew by more than " + verdict.limit.text;
    if (verdict.by.empty()) {
      words +=
          ": all together by " + grouped(verdict.total_b.bytes - verdict.total_a.bytes) + " bytes";
      continue;
    }
    const diff_row& first = verdict.by[0];
    words += ": " + shortened(printable(diff.names.name(diff.options.by, first.name)), 200) +
             " by " + grouped(first.amounts.change()) + " bytes";
    if (verdict.by.size() > 1) {
      words += " and " + grouped(std::uint64_t{verdict.by.size() - 1}) + " more";
    }
  }
  return words;
}

}  // namespace kiv::report
