#include "report/page_sentences.h"

#include <fmt/format.h>

#include "report/human.h"

namespace kiv::report {
namespace {

std::string counted(std::size_t count) { return grouped(std::uint64_t{count}); }

std::string of_lists(const page_lists& lists) {
  std::string words;
  if (lists.rows < lists.longest) {
    words = fmt::format("Tables show at most {} rows; the longest would have {}. ",
                        counted(lists.rows), counted(lists.longest));
  }
  if (lists.path_rows < lists.longest_of_paths) {
    words += fmt::format("Tables of call paths show at most {} rows; the longest would have {}. ",
                         counted(lists.path_rows), counted(lists.longest_of_paths));
  }
  if (!words.empty()) words += "What the others hold stands below each table.";
  return words;
}

// "12 of 30 colours (less than 0.1 % each)"; empty when all are told apart.
std::string put_together(const page_groups& groups, group_key key, const char* plural) {
  const auto& [kept, all] = groups.kept[static_cast<std::size_t>(key)];
  if (kept >= all) return {};
  const double threshold = groups.thresholds[static_cast<std::size_t>(key)];
  return fmt::format("{} of {} {}", counted(all - kept), counted(all), plural) +
         (threshold > 1 ? "" : fmt::format(" (less than {:.2g} % each)", threshold * 100));
}

std::string of_groups(const page_groups& groups) {
  constexpr std::pair<group_key, const char*> plurals[] = {
      {group_key::path, "calls with all that they call"},
      {group_key::id, "allocation ids"},
      {group_key::color, "colours"},
      {group_key::line, "source lines"},
      {group_key::process, "processes"},
      {group_key::query, "SQL statements"}};
  std::string which;
  for (const auto& [key, plural] : plurals) {
    const std::string words = put_together(groups, key, plural);
    if (!words.empty()) which += (which.empty() ? "" : ", ") + words;
  }
  if (which.empty()) return {};
  return "In the picture of call paths, what holds little of all blocks and bytes by every measure "
         "is "
         "put together as \"(others)\": " +
         which + '.';
}

std::string of_timelines(const page_timelines& timelines) {
  if (timelines.shortened == 0) return {};
  return fmt::format(
      "Timelines have at most {} {}, the longest was recorded in {}: for {} {} neighbouring steps "
      "became one.{}",
      counted(timelines.most_steps), timelines.most_steps == 1 ? "step" : "steps",
      counted(timelines.recorded_steps), counted(timelines.shortened),
      timelines.shortened == 1 ? "trace" : "traces",
      timelines.most_ids == 0 ? " They tell no allocation ids apart." : "");
}

std::string of_marks(const page_marks& marks) {
  if (marks.shown == marks.all) return {};
  return fmt::format("{} of {} markers of the programs are shown, spread evenly.",
                     counted(marks.shown), counted(marks.all));
}

std::string of_histograms(const page_histograms& histograms) {
  std::string words;
  if (histograms.ids < histograms.all_ids) {
    words = fmt::format(
        "Sizes and lifetimes of {} of {} allocation ids, those with the fewest blocks, are put "
        "together as \"(others)\".",
        counted(histograms.all_ids - histograms.ids), counted(histograms.all_ids));
  }
  if (histograms.traces < histograms.all_traces) {
    words += fmt::format("{}Sizes and lifetimes are there for the {} largest of {} traces only.",
                         words.empty() ? "" : " ", counted(histograms.traces),
                         counted(histograms.all_traces));
  }
  return words;
}

}  // namespace

std::vector<std::string> sentences_of(const page_content& page, const filter_options& filter,
                                      const name_limits& limits) {
  std::vector<std::string> sentences = {of_lists(page.lists), of_groups(page.groups),
                                        of_timelines(page.timelines), of_marks(page.marks),
                                        of_histograms(page.histograms)};
  if (limits.longest && limits.most_frames && page.shown->any_cut()) {
    sentences.push_back(
        fmt::format("Names longer than {} characters and, in tables, call paths of more than {} "
                    "functions are cut in the middle.",
                    *limits.longest, *limits.most_frames));
  }
  if (filter.is_on()) {
    sentences.push_back(
        "Memory over time, markers, sizes and lifetimes are those of all blocks; the filter (" +
        filter.in_words() + ") holds for everything else.");
  }
  std::erase(sentences, "");
  return sentences;
}

}  // namespace kiv::report
