#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "profile/profile.h"
#include "support/run_trace.h"

namespace kiv::test {

// A block with all that ever happened to it.
struct known_block {
  std::size_t row = 0;                                                  // of `memory`, that made it
  std::vector<std::pair<std::int64_t, std::int64_t>> sizes, tot_sizes;  // from which record on
  std::int64_t end = 0;                                                 // 0: never
  char end_type = 0;

  std::int64_t made() const { return sizes.front().first; }
  // At the end of a record.
  amount at(std::int64_t record) const {
    amount a;
    if (made() > record || (end != 0 && end <= record)) return a;
    a.blocks = 1;
    for (const auto& [from, size] : sizes) {
      if (from <= record) a.bytes = static_cast<std::uint64_t>(size);
    }
    for (const auto& [from, size] : tot_sizes) {
      if (from <= record) a.tot_bytes = static_cast<std::uint64_t>(size);
    }
    return a;
  }
};

// Gathers the blocks of one trace from its rows, without any books.
class block_list {
 public:
  explicit block_list(const run_result& run) : memory(run.rows("memory")) {
    const table freemem = run.rows("freemem");
    std::map<std::int64_t, std::size_t> by_record;  // the present record of a block
    std::map<std::int64_t, std::vector<std::size_t>> ends;
    for (std::size_t i = 0; i < freemem.size(); ++i) {
      ends[freemem.number(i, "free_rec")].push_back(i);
    }
    for (std::size_t i = 0; i < memory.size(); ++i) {
      const std::int64_t rec = memory.number(i, "rec");
      const std::string_view type = memory.text(i, "type");
      if (type == "r" && memory.number(i, "linked_rec") == 0) continue;
      last = rec;
      for (const std::size_t e : ends[rec]) {
        const std::int64_t made_by = freemem.number(e, "alloc_rec");
        known_block& b = blocks.at(by_record.at(made_by));
        if (type == "r") {
          b.sizes.emplace_back(rec, memory.number(i, "size"));
          b.tot_sizes.emplace_back(rec, memory.number(i, "tot_size"));
          by_record[rec] = by_record.at(made_by);
        } else {
          b.end = rec;
          b.end_type = freemem.text(e, "type")[0];
        }
      }
      if (type != "a" && type != "n") continue;
      by_record[rec] = blocks.size();
      known_block& b = blocks.emplace_back();
      b.row = i;
      b.sizes.emplace_back(rec, memory.number(i, "size"));
      b.tot_sizes.emplace_back(rec, memory.number(i, "tot_size"));
    }
    std::map<std::int64_t, std::int64_t> changes;
    for (const auto& b : blocks) {
      std::int64_t size = 0;
      for (const auto& [from, next] : b.sizes) {
        changes[from] += next - size;
        size = next;
      }
      if (b.end != 0) changes[b.end] -= size;
    }
    std::int64_t live = 0;
    for (const auto& [rec, change] : changes) {
      live += change;
      if (live > peak) {
        peak = live;
        peak_record = rec;
      }
    }
  }

  table memory;
  std::vector<known_block> blocks;
  std::int64_t last = 0, peak = 0, peak_record = 0;
};

}  // namespace kiv::test
