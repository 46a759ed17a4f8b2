#pragma once

#include <algorithm>

#include "util/modular.h"

namespace kiv {

// Sums over events: bytes asked for, bytes taken by the allocator, number of events.
template <class T>
struct KivStatSize {
  void Clear() { size = tot_size = count = 0; }
  void add_sizes(T s, T t) {
    size = wrapping_add(size, s);
    tot_size = wrapping_add(tot_size, t);
  }
  void sub_sizes(T s, T t) {
    size = wrapping_sub(size, s);
    tot_size = wrapping_sub(tot_size, t);
  }
  void add(T s, T t) {
    add_sizes(s, t);
    count = wrapping_add(count, T{1});
  }
  void sub(T s, T t) {
    sub_sizes(s, t);
    count = wrapping_sub(count, T{1});
  }

  T size = 0;
  T tot_size = 0;
  T count = 0;
};

// A pair of sizes: maxima, or running sums without a count.
template <class T>
struct KivStatPeak {
  void Clear() { size = tot_size = 0; }
  void add_sizes(T s, T t) {
    size = wrapping_add(size, s);
    tot_size = wrapping_add(tot_size, t);
  }
  void sub_sizes(T s, T t) {
    size = wrapping_sub(size, s);
    tot_size = wrapping_sub(tot_size, t);
  }
  // Each maximum on its own: the two need not come from the same moment.
  void raise_to(const KivStatSize<T>& live) {
    size = std::max(size, live.size);
    tot_size = std::max(tot_size, live.tot_size);
  }

  T size = 0;
  T tot_size = 0;
};

// A number of events, and the unit in which rows show it besides.
template <class T>
struct KivStatRec {
  explicit KivStatRec(T unit) : divisor(unit == 0 ? T{1000} : unit) {}

  void count_event() { value = wrapping_add(value, T{1}); }

  T value = 0;
  T divisor;
};

// The statistics bundle that every book of memory holds: the run, an allocation id, one of its
// colours, a process, and an id or one of its colours within a process. With-free (wf) memory is
// given back block by block; no-free (nf) memory only as a whole, when its id is freed or reset.
template <class T>
class KivStat {
 public:
  // `divisor`: the unit of the event count's second column; 0 stands for 1000.
  explicit KivStat(T divisor) : rec(divisor) {}

  void add_wf(T size, T tot_size) {
    cur_wf.add(size, tot_size);
    sum_wf.add(size, tot_size);
    peak_wf.raise_to(cur_wf);
    cur_mem.add_sizes(size, tot_size);
    rec.count_event();
  }
  void add_nf(T size, T tot_size) {
    cur_nf.add(size, tot_size);
    sum_nf.add_sizes(size, tot_size);
    cur_mem.add_sizes(size, tot_size);
    rec.count_event();
  }
  void add_fr(T size, T tot_size) {
    cur_wf.sub(size, tot_size);
    sum_fr.add(size, tot_size);
    cur_mem.sub_sizes(size, tot_size);
    rec.count_event();
  }
  // A free that moves sizes but leaves the numbers of live and of freed blocks alone.
  void add_fr_sizes(T size, T tot_size) {
    cur_wf.sub_sizes(size, tot_size);
    sum_fr.add_sizes(size, tot_size);
    cur_mem.sub_sizes(size, tot_size);
    rec.count_event();
  }

  // Partial resets; the sums of allocations and frees and the event count survive them all.
  void clearstats() {
    cur_wf.Clear();
    cur_nf.Clear();
  }
  void clearstats_all() {
    clearstats();
    peak_wf.Clear();
    sum_nf.Clear();
  }
  void clearstats_peak() { cur_mem.Clear(); }

  KivStatSize<T> cur_wf;   // live with-free memory
  KivStatSize<T> sum_wf;   // all with-free allocations ever made
  KivStatSize<T> sum_fr;   // all frees ever made
  KivStatSize<T> cur_nf;   // live no-free memory
  KivStatPeak<T> peak_wf;  // the highest that cur_wf has been
  KivStatPeak<T> sum_nf;   // all no-free allocations ever made
  KivStatRec<T> rec;       // events applied to this bundle
  KivStatPeak<T> cur_mem;  // live memory of both kinds
};

}  // namespace kiv
