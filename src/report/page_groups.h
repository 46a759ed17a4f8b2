#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "report/page_run.h"
#include "report/shown_names.h"

namespace kiv::report {

// The blocks of a trace of a run that share all that a page tells apart, with every measure. Places
// are those of the names in page_groups.
struct page_group {
  std::uint32_t trace = 0;
  bool no_free = false;
  std::uint32_t id = 0, color = 0, line = 0, path = 0, process = 0, query = 0;
  struct counted {
    std::uint64_t blocks = 0, bytes = 0;
  };
  std::array<counted, measure_count> counted_by = {};
};

// Stands in place of a name book's number for what was put together.
inline constexpr std::uint32_t others_number = UINT32_MAX;

// How much of a kind was put together.
struct kept_share {
  std::size_t kept = 0, all = 0;
};

// The groups of all runs of a page. Where they would be too many, small call paths and small names
// are put together as "(others)", in every run the same ones. Nothing is lost: for every trace and
// measure the groups add up to all its blocks, and so they do for every name that is left and for
// every call path that is left with all that is called from it.
struct page_groups {
  std::array<std::vector<shown_name>, key_count> names;  // of paths: none
  // Parent and function; number 0 is the empty path. Parents come before their children.
  std::vector<std::pair<std::uint32_t, std::uint32_t>> paths = {{0, 0}};
  std::vector<std::vector<page_group>> runs;
  // For each key: what holds a smaller share than this of all blocks and bytes, by every measure
  // and in every run, is put together; beyond 1 whatever there is. Of paths with all that they
  // call.
  std::array<double, key_count> thresholds = {};
  std::array<kept_share, key_count> kept = {};
  std::size_t bytes = 0;  // of JSON

  // Where in `names` the name with a number of the name book stands; of paths: in `paths`.
  std::uint32_t place_of(group_key key, std::uint32_t number) const;

  std::array<std::vector<std::uint32_t>, key_count> places;  // by number, the others' at the end
};

// Names that a page shows elsewhere too and that are never put together: by key and number.
using named_elsewhere = std::vector<std::pair<group_key, std::uint32_t>>;

// Groups that take at most about `budget` bytes of JSON, or if that is too little the smallest
// possible.
page_groups fitting_groups(const std::vector<page_run>& runs, const name_book& names,
                           shown_names& shown, const named_elsewhere& elsewhere,
                           std::size_t budget);

}  // namespace kiv::report
