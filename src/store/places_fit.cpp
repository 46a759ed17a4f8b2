#include "store/places_fit.h"

namespace kiv::store {
namespace {

// That lists which must not be empty are not, and that all places lead into them.
bool all_lead_to_entries(const profile& p) {
  bool fit = !p.ids.empty() && !p.colors.empty() && !p.lines.empty() && !p.functions.empty() &&
             !p.paths.empty() && !p.processes.empty() && !p.queries.empty();
  const auto within = [&fit](std::uint32_t place, const auto& list) {
    fit = fit && place < list.size();
  };
  for (const auto& c : p.colors) within(c.id, p.ids);
  for (std::size_t i = 0; i < p.paths.size(); ++i) {
    within(p.paths[i].function, p.functions);
    fit = fit && (i == 0 ? p.paths[i].parent == 0 : p.paths[i].parent < i);
  }
  for (const auto& g : p.groups) {
    within(g.id, p.ids);
    within(g.color, p.colors);
    within(g.line, p.lines);
    within(g.path, p.paths);
    within(g.process, p.processes);
    within(g.query, p.queries);
  }
  for (const auto& h : p.histograms) within(h.id, p.ids);
  for (const auto& h : p.heap) {
    within(h.path, p.paths);
    within(h.process, p.processes);
  }
  for (const auto& s : p.timeline) {
    for (const auto& level : s.changed) within(level.id, p.ids);
  }
  for (const auto& m : p.marks) {
    for (const auto& level : m.changed) within(level.id, p.ids);
  }
  return fit;
}

bool is_blank(const profile& p) {
  return p.ids.empty() && p.groups.empty() && p.paths.empty() && p.histograms.empty() &&
         p.heap.empty() && p.timeline.empty() && p.marks.empty() && p.colors.empty();
}

}  // namespace

bool places_fit(const profile& p) { return is_blank(p) || all_lead_to_entries(p); }

}  // namespace kiv::store
