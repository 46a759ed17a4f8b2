#include "report/page_sentences.h"

#include <fmt/format.h>

#include "report/human.h"

namespace kiv::report {
namespace {

std::string counted(std::size_t count) { return grouped(std::uint64_t{count}); }

std::string of_lists(const page_lists& lists) {
  std::string words;
  if (lists.rows < lists.longest) {
    words = fmt::format("Tables have their {} largest rows; the longest would have {}.",
                        counted(lists.rows), counted(lists.longest));
  }
  if (lists.path_rows < lists.longest_of_paths) {
    words += fmt::format(
        "{}Tables of call paths have their {} largest rows; the longest would have {}.",
        words.empty() ? "" : " ", counted(lists.path_rows), counted(lists.longest_of_paths));
  }
  if (!words.empty()) words += " What the others hold stands below each table.";
  return words;
}

std::string percent(double share) { return fmt::format("{:.2g} %", share * 100); }

std::string put_together(const page_groups& groups, group_key key, const char* plural) {
  const auto& [kept, all] = groups.kept[static_cast<std::size_t>(key)];
  if (kept >= all) return {};
  return fmt::format("{} of {} {}", counted(all - kept), counted(all), plural);
}

std::string of_paths(const page_groups& groups) {
  const std::string which = put_together(groups, group_key::path, "calls");
  if (which.empty()) return {};
  return fmt::format(
      "Calls that hold less than {} of all blocks and bytes, by every measure and with all that "
      "they call, are put together as \"(others)\" of their callers: {}.",
      percent(groups.path_threshold), which);
}

std::string of_names(const page_groups& groups) {
  constexpr std::pair<group_key, const char*> plurals[] = {{group_key::id, "allocation ids"},
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
  return fmt::format(
      "In the pictures of call paths, names that hold less than {} of all blocks and bytes, by "
      "every measure, are put together as \"(others)\": {}.",
      percent(groups.name_threshold), which);
}

std::string of_timelines(const page_timelines& timelines) {
  if (timelines.shortened == 0) return {};
  return fmt::format(
      "Timelines have at most {} steps, the longest was recorded in {}: for {} {} neighbouring "
      "steps became one.{}",
      counted(timelines.most_steps), counted(timelines.recorded_steps),
      counted(timelines.shortened), timelines.shortened == 1 ? "trace" : "traces",
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

std::vector<std::string> sentences_of(const page_data& page,
                                      std::optional<std::size_t> longest_name,
                                      std::optional<std::size_t> most_frames) {
  std::vector<std::string> sentences = {of_lists(page.lists),  of_paths(page.groups),
                                        of_names(page.groups), of_timelines(page.timelines),
                                        of_marks(page.marks),  of_histograms(page.histograms)};
  if (longest_name && most_frames && page.shown->any_cut()) {
    sentences.push_back(
        fmt::format("Names longer than {} characters and call paths of more than {} functions in "
                    "tables are cut in the middle.",
                    *longest_name, *most_frames));
  }
  if (page.options.filter.is_on()) {
    sentences.push_back(
        "Memory over time, markers, sizes and lifetimes are those of all blocks: filters (" +
        page.options.filter.in_words() + ") hold for everything else.");
  }
  std::erase(sentences, "");
  return sentences;
}

}  // namespace kiv::report
