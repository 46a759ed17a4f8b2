#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "profile/profile.h"
#include "report/page_run.h"

namespace kiv::report {

// A bar of a trace's histograms.
struct page_bar {
  distribution of = distribution::size;
  bool no_free = false;
  std::uint32_t id = 0;  // number of the name book, or others_number
  std::int32_t exponent = 0;
  std::uint64_t blocks = 0, bytes = 0;
};

// How large blocks were and how long they lived, by run and trace. Where the bars would take too
// much room, the ids with the fewest blocks are put together; in the end small traces have none.
struct page_histograms {
  std::vector<std::vector<std::vector<page_bar>>> runs;
  std::size_t ids = 0, all_ids = 0;  // told apart, and that there are
  std::size_t traces = 0, all_traces = 0;
  std::size_t bytes = 0;  // of JSON
};
page_histograms fitting_histograms(const std::vector<page_run>& runs, std::size_t id_count,
                                   std::size_t budget);

}  // namespace kiv::report
