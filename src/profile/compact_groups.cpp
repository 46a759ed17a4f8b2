#include "profile/compact_groups.h"

#include <cstring>
#include <limits>
#include <type_traits>

namespace kiv {

compact_groups::full_figures& compact_groups::full_figures::operator=(const group_figures& from) {
  *this = full_figures();
  return *this += from;
}

compact_groups::full_figures& compact_groups::full_figures::operator+=(const group_figures& more) {
  for (std::size_t i = 0; i < figure_count; ++i) {
    amounts[place_of(static_cast<figure>(i))] += more.figures[i];
  }
  resizes += more.resizes;
  return *this;
}

compact_groups::full_figures::operator group_figures() const {
  group_figures figures;
  for (std::size_t i = 0; i < figure_count; ++i) {
    figures.figures[i] = amounts[place_of(static_cast<figure>(i))];
  }
  figures.resizes = resizes;
  return figures;
}

compact_groups::place compact_groups::add(const compact_key& key) {
  if (released_ > 0) {
    --released_;
    const place taken = first_released_;
    group& reused = at(taken);
    first_released_ = reused.size;
    reused = {.key = key, .peaks_seen = peaks_};
    return taken;
  }
  if (size_ % chunk_size == 0) chunks_.emplace_back().reserve(chunk_size);
  group& added = chunks_.back().emplace_back();
  added.key = key;
  added.peaks_seen = peaks_;
  return size_++;
}

void compact_groups::release(place which) {
  at(which).size = std::exchange(first_released_, which);
  ++released_;
}

void compact_groups::drop_last() {
  released_ = 0;
  forget_full(at(size_ - 1));
  chunks_.back().pop_back();
  --size_;
  if (size_ % chunk_size == 0) chunks_.pop_back();
}

void compact_groups::forget_full(const group& one) {
  if (has_full(one)) free_full_.push_back(one.state);
}

group_figures compact_groups::unpacked(const group& one) {
  group_figures figures;
  if (one.state == no_block) return figures;
  const amount block = single_block(one);
  figures[figure::made] = block;
  figures[static_cast<figure>(one.state & single_state)] = block;
  if ((one.state & single_at_peak) != 0) figures[figure::at_peak] = block;
  if ((one.state & single_temporary) != 0) figures[figure::temporary] = block;
  return figures;
}

bool compact_groups::pack(const group_figures& figures, group& into) {
  const amount& block = figures[figure::made];
  constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
  if (figures.resizes != 0 || block.blocks != 1 || block.bytes > most || block.tot_bytes > most) {
    return false;
  }
  std::uint32_t state = single;
  bool ended = false;
  for (const figure one : {figure::freed, figure::left_with_id, figure::reset, figure::released,
                           figure::live, figure::at_peak, figure::temporary}) {
    if (figures[one] == amount{}) continue;
    if (figures[one] != block) return false;
    if (one == figure::at_peak) {
      state |= single_at_peak;
    } else if (one == figure::temporary) {
      state |= single_temporary;
    } else {
      if (ended) return false;
      ended = true;
      state |= static_cast<std::uint32_t>(one);
    }
  }
  if (!ended) return false;
  into.state = state;
  into.size = static_cast<std::uint32_t>(block.bytes);
  into.tot_size = static_cast<std::uint32_t>(block.tot_bytes);
  return true;
}

compact_groups::full_figures& compact_groups::widen(group& one) {
  if (has_full(one)) return full(one);
  const group_figures figures = unpacked(one);
  if (!free_full_.empty()) {
    one.state = free_full_.back();
    free_full_.pop_back();
  } else {
    if (full_.empty() || full_.back().size() == full_chunk_size) {
      full_.emplace_back().reserve(full_chunk_size);
    }
    one.state =
        static_cast<std::uint32_t>((full_.size() - 1) * full_chunk_size + full_.back().size());
    full_.back().emplace_back();
  }
  return full(one) = figures;
}

void compact_groups::settle_peak(group& changed) {
  if (changed.peaks_seen == peaks_) return;
  changed.peaks_seen = peaks_;
  if (has_full(changed)) {
    full_figures& figures = full(changed);
    figures[figure::at_peak] = figures[figure::live];
  } else if (is_single(changed, figure::live)) {
    changed.state |= single_at_peak;
  } else if (changed.state != no_block) {
    changed.state &= ~single_at_peak;
  }
}

void compact_groups::settle_peaks() {
  for (place i = 0; i < size_; ++i) settle_peak(at(i));
}

void compact_groups::make_block(place which, std::uint64_t size, std::uint64_t tot_size) {
  group& changed = at(which);
  settle_peak(changed);
  constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
  if (changed.state == no_block && size <= most && tot_size <= most) {
    changed.state = single | static_cast<std::uint32_t>(figure::live);
    changed.size = static_cast<std::uint32_t>(size);
    changed.tot_size = static_cast<std::uint32_t>(tot_size);
    return;
  }
  full_figures& figures = widen(changed);
  const amount block{1, size, tot_size};
  figures[figure::made] += block;
  figures[figure::live] += block;
}

void compact_groups::resize_block(place which, std::uint64_t size_change,
                                  std::uint64_t tot_size_change) {
  group& changed = at(which);
  settle_peak(changed);
  full_figures& figures = widen(changed);
  figures[figure::live] += {0, size_change, tot_size_change};
  ++figures.resizes;
}

void compact_groups::end_block(place which, figure how, const amount& block) {
  group& changed = at(which);
  settle_peak(changed);
  if (is_single(changed, figure::live) && single_block(changed) == block) {
    changed.state = (changed.state & ~single_state) | static_cast<std::uint32_t>(how);
    return;
  }
  full_figures& figures = widen(changed);
  figures[figure::live] -= block;
  figures[how] += block;
}

void compact_groups::count_temporary(place which, const amount& block) {
  group& changed = at(which);
  if (is_single(changed, figure::freed) && single_block(changed) == block) {
    changed.state |= single_temporary;
  } else {
    widen(changed)[figure::temporary] += block;
  }
}

group_figures compact_groups::get(place which) const {
  const group& one = at(which);
  return has_full(one) ? group_figures(full(one)) : unpacked(one);
}

void compact_groups::add(place which, const group_figures& more) {
  group& changed = at(which);
  settle_peak(changed);
  if (changed.state == no_block && pack(more, changed)) return;
  widen(changed) += more;
}

void compact_groups::move_figures(place from, place to) {
  group& source = at(from);
  group& target = at(to);
  settle_peak(source);
  settle_peak(target);
  if (target.state == no_block) {
    target.state = source.state;
    target.size = source.size;
    target.tot_size = source.tot_size;
  } else {
    widen(target) += get(from);
    forget_full(source);
  }
  source.state = no_block;
}

bool compact_groups::is_over(place which) const {
  const group& one = at(which);
  return has_full(one) ? full(one)[figure::live] == amount{} : !is_single(one, figure::live);
}

void compact_groups::save(place which, std::string& into) {
  static_assert(std::is_trivially_copyable_v<group> && std::is_trivially_copyable_v<full_figures>);
  group& one = at(which);
  settle_peak(one);
  into.append(reinterpret_cast<const char*>(&one), sizeof one);
  if (has_full(one)) into.append(reinterpret_cast<const char*>(&full(one)), sizeof(full_figures));
}

void compact_groups::forget(place which) {
  group& forgotten = at(which);
  forget_full(forgotten);
  forgotten.state = no_block;
  forgotten.size = std::exchange(first_released_, which);
  ++released_;
}

bool compact_groups::load(std::string_view& saved, place which) {
  if (saved.size() < sizeof(group)) return false;
  group one;
  std::memcpy(&one, saved.data(), sizeof one);
  std::size_t length = sizeof one;
  if (has_full(one)) length += sizeof(full_figures);
  if (saved.size() < length) return false;
  group& loaded = at(which);
  if (has_full(one)) {
    std::memcpy(&widen(loaded), saved.data() + sizeof one, sizeof(full_figures));
    loaded.key = one.key;
    loaded.peaks_seen = one.peaks_seen;
  } else {
    loaded = one;
  }
  saved.remove_prefix(length);
  settle_peak(loaded);
  return true;
}

}  // namespace kiv
