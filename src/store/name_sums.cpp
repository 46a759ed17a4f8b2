#include "store/name_sums.h"

#include <map>
#include <optional>
#include <utility>

namespace kiv::store {
namespace {

using byte_sums = std::array<std::uint64_t, 5>;

byte_sums bytes_of(const block_group& g) {
  return {g[figure::made].bytes, g.leaked().bytes, g[figure::live].bytes, g[figure::at_peak].bytes,
          g[figure::temporary].bytes};
}

void add(byte_sums& sums, const byte_sums& more) {
  for (std::size_t i = 0; i < sums.size(); ++i) sums[i] += more[i];
}

// Sums by the places of a list of names.
class sums_by_place {
 public:
  explicit sums_by_place(std::size_t names) : sums_(names) {}
  void add_to(std::uint32_t place, const byte_sums& more) {
    if (place < sums_.size()) add(sums_[place] ? *sums_[place] : sums_[place].emplace(), more);
  }
  name_sum_list list(std::string key) const {
    name_sum_list made{std::move(key), {}};
    for (std::uint32_t place = 0; place < sums_.size(); ++place) {
      if (sums_[place]) made.sums.push_back({place, 0, *sums_[place]});
    }
    return made;
  }

 private:
  std::vector<std::optional<byte_sums>> sums_;  // none: no group has the name
};

}  // namespace

name_sums::name_sums(const profile& p) {
  sums_by_place ids(p.ids.size()), lines(p.lines.size()), functions(p.functions.size()),
      processes(p.processes.size()), queries(p.queries.size());
  std::map<std::pair<std::uint32_t, std::uint32_t>, byte_sums> colors;
  for (const block_group& g : p.groups) {
    const byte_sums bytes = bytes_of(g);
    ids.add_to(g.id, bytes);
    add(colors[{g.color, g.id}], bytes);
    lines.add_to(g.line, bytes);
    if (g.path < p.paths.size()) functions.add_to(p.paths[g.path].function, bytes);
    processes.add_to(g.process, bytes);
    queries.add_to(g.query, bytes);
  }
  lists_.push_back(ids.list("id"));
  name_sum_list& of_colors = lists_.emplace_back(name_sum_list{"color", {}});
  for (const auto& [key, bytes] : colors) {
    of_colors.sums.push_back({key.first, key.second, bytes});
  }
  lists_.push_back(lines.list("line"));
  lists_.push_back(functions.list("function"));
  lists_.push_back(processes.list("process"));
  lists_.push_back(queries.list("query"));
}

}  // namespace kiv::store
