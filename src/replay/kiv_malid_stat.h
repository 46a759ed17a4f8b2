#pragma once

#include <cstdint>

#include "replay/kiv_stat.h"
#include "util/number_table.h"

namespace kiv {

inline constexpr int id_stat_divisor = 100;
inline constexpr int color_stat_divisor = 10;

// The bundle of a colour, or none, in no more space than a bundle: the bundles of all colours in
// all processes are most of what a trace needs. The unit of a bundle that exists is never 0.
template <class T>
class optional_bundle {
 public:
  optional_bundle() : bundle_(T{color_stat_divisor}) { bundle_.rec.divisor = 0; }
  explicit optional_bundle(const KivStat<T>& bundle) : bundle_(bundle) {}

  explicit operator bool() const { return bundle_.rec.divisor != 0; }
  KivStat<T>& operator*() { return bundle_; }
  const KivStat<T>& operator*() const { return bundle_; }

 private:
  KivStat<T> bundle_;
};

// The book of one allocation id, split by colour. T1 counts the whole id, T2 one colour.
template <class T1, class T2>
class KivMalidStat {
 public:
  explicit KivMalidStat(std::uint32_t colors_of_id = 0)
      : nr_colors(colors_of_id), stat(T1{id_stat_divisor}) {}

  // The bundle of a colour that has one already, else null.
  KivStat<T2>* find_color(std::uint32_t color) { return colors.find(color); }
  const KivStat<T2>* find_color(std::uint32_t color) const { return colors.find(color); }

  // The bundle of any colour below nr_colors, made on first use; null for other colours.
  KivStat<T2>* get_color(std::uint32_t color) {
    if (KivStat<T2>* known = colors.find(color)) return known;
    return color < nr_colors ? &renew_color(color) : nullptr;
  }

  // Gives the colour a fresh, empty bundle in place of any it had.
  KivStat<T2>& renew_color(std::uint32_t color) {
    colors.expect(nr_colors);
    return colors.assign(color, optional_bundle<T2>(KivStat<T2>(T2{color_stat_divisor})));
  }

  void clearstats() {
    stat.clearstats();
    colors.for_each([](KivStat<T2>& bundle) { bundle.clearstats(); });
  }

  // Empties all that a reset empties; the sums of allocations and frees and the event counts stay.
  void clearstats_all() {
    clear_live_and_peaks(stat);
    colors.for_each(clear_live_and_peaks<T2>);
  }

  std::uint32_t nr_colors;  // of the id when this book was made
  KivStat<T1> stat;
  color_table<optional_bundle<T2>> colors;

 private:
  template <class T>
  static void clear_live_and_peaks(KivStat<T>& bundle) {
    bundle.clearstats_all();
    bundle.clearstats_peak();
  }
};

// The book of one allocation id within one process.
using process_malid_stat = KivMalidStat<std::int64_t, std::int32_t>;

}  // namespace kiv
