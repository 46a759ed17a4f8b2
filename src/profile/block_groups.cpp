#include "profile/block_groups.h"

#include "profile/group_index.h"

namespace kiv {

void block_groups::adopt(compact_groups&& groups, const key_parts& parts, bool may_be_equal) {
  groups_ = std::move(groups);
  origins_ = {};
  contexts_ = {};
  std::vector<std::uint32_t> origins, contexts;
  for (const origin& one : parts.origins) origins.push_back(origins_.add(one));
  for (const context& one : parts.contexts) contexts.push_back(contexts_.add(one));

  group_index known(groups_);
  compact_groups::place kept = 0;
  for (compact_groups::place i = 0; i < groups_.size(); ++i) {
    if (groups_.is_empty(i)) continue;
    const compact_key old = groups_.key(i);
    const compact_key key{parts.lines[old.line], old.path, origins[old.origin],
                          contexts[old.context]};
    if (may_be_equal) {
      if (const compact_groups::place* equal = known.find(key)) {
        groups_.move_figures(i, *equal);
        continue;
      }
    }
    if (kept != i) groups_.move_figures(i, kept);
    groups_.set_key(kept, key);
    if (may_be_equal) known.find_or_insert(kept);
    ++kept;
  }
  while (groups_.size() > kept) groups_.drop_last();
}

}  // namespace kiv
