#include "profile/trace_losses.h"

#include <fmt/format.h>

#include "replay/kiv_reader.h"
#include "trace/header_text.h"

namespace kiv {

std::string_view name_of(loss_kind kind) {
  switch (kind) {
    case loss_kind::header_not_closed:
      return "header not closed";
    case loss_kind::header_damaged:
      return "header not well-formed";
    case loss_kind::data_file_missing:
      return "data files missing";
    case loss_kind::no_data_file:
      return "no data file listed";
    case loss_kind::data_file_cut:
      return "data files shorter than recorded";
    case loss_kind::record_of_unknown_type:
      return "records of unknown type";
    case loss_kind::record_out_of_sync:
      return "records out of sync";
    case loss_kind::free_without_block:
      return "frees without a block";
    case loss_kind::resize_without_block:
      return "resizes without a block";
    case loss_kind::realloc_source_missing:
      return "reallocations of a missing block";
    case loss_kind::address_live_already:
      return "allocations at a live address";
    case loss_kind::id_reserved_twice:
      return "ids reserved twice";
    case loss_kind::id_total_differs:
      return "totals of ids that differ";
    case loss_kind::location_announced_twice:
      return "source locations announced twice";
    case loss_kind::object_loaded_twice:
      return "objects loaded twice";
    case loss_kind::function_unknown:
      return "unknown functions";
    case loss_kind::process_unknown:
      return "unknown processes";
    case loss_kind::symbol_fault:
      return "symbols at fault";
    case loss_kind::query_fault:
      return "SQL operations at fault";
  }
  return {};
}

std::vector<loss> trace_losses::found() const {
  std::vector<loss> all;
  for (std::size_t kind = 0; kind < tallies_.size(); ++kind) {
    const tally& one = tallies_[kind];
    if (one.count == 0) continue;
    all.push_back({std::string(name_of(static_cast<loss_kind>(kind))), one.count, one.first});
  }
  return all;
}

void trace_losses::count(loss_kind kind, const std::string& place) {
  tally& one = tallies_[static_cast<std::size_t>(kind)];
  if (one.count++ == 0) one.first = place;
}

void trace_losses::count(loss_kind kind) {
  tally& one = tallies_[static_cast<std::size_t>(kind)];
  if (one.count++ > 0 || reader_ == nullptr) return;
  one.first =
      fmt::format("record {} in {}", reader_->event_number(), reader_->files().current_path());
}

void trace_losses::header_not_well_formed(const char* error, std::uint64_t line) {
  count(loss_kind::header_damaged, fmt::format("{} at line {}", error, line));
}

void trace_losses::header_not_closed(const std::string& path) {
  count(loss_kind::header_not_closed, path);
}

void trace_losses::file_not_opened(const std::string& path) {
  count(loss_kind::data_file_missing, path);
}

void trace_losses::replay_without_file(const std::string& path) {
  if (path.empty()) count(loss_kind::no_data_file, path);
}

void trace_losses::file_shorter_than_recorded(const std::string& path, std::int64_t recorded,
                                              std::int64_t held) {
  // Of an open trace this is no size, and that it is open is told.
  const auto is_open = tallies_[static_cast<std::size_t>(loss_kind::header_not_closed)].count > 0;
  if (is_open && recorded == static_cast<std::int64_t>(size_of_open_file)) return;
  count(loss_kind::data_file_cut, fmt::format("{}: {} of {} bytes", path, held, recorded));
}

void trace_losses::out_of_sync(std::uint32_t /*event_number*/) {
  count(loss_kind::record_out_of_sync);
}

void trace_losses::illegal_event(std::uint32_t /*event_number*/, std::uint64_t /*file_offset*/) {
  count(loss_kind::record_of_unknown_type);
}

void trace_losses::realloc_source_missing(std::int64_t /*addr*/) {
  count(loss_kind::realloc_source_missing);
}

void trace_losses::freed_block_missing(std::int64_t /*addr*/) {
  count(loss_kind::free_without_block);
}

void trace_losses::resized_block_missing(std::int64_t /*addr*/) {
  count(loss_kind::resize_without_block);
}

void trace_losses::address_live_already(std::int64_t /*addr*/, std::uint64_t /*record*/,
                                        std::uint32_t /*size*/, std::string_view /*source_line*/) {
  count(loss_kind::address_live_already);
}

void trace_losses::id_reserved_twice(std::uint32_t /*id*/) { count(loss_kind::id_reserved_twice); }

void trace_losses::wf_total_differs(std::uint32_t /*id*/, std::uint64_t /*recorded*/,
                                    std::uint64_t /*actual*/) {
  count(loss_kind::id_total_differs);
}

void trace_losses::nf_total_differs(std::uint32_t /*id*/, std::uint64_t /*recorded*/,
                                    std::uint64_t /*actual*/) {
  count(loss_kind::id_total_differs);
}

void trace_losses::hashloc_known_already(std::int64_t /*location*/) {
  count(loss_kind::location_announced_twice);
}

void trace_losses::object_loaded_twice(std::uint32_t /*id*/) {
  count(loss_kind::object_loaded_twice);
}

void trace_losses::function_number_negative(std::int32_t /*number*/) {
  count(loss_kind::function_unknown);
}

void trace_losses::function_number_unknown(std::int32_t /*number*/) {
  count(loss_kind::function_unknown);
}

void trace_losses::reserved_process_missing(std::uint32_t /*pid*/) {
  count(loss_kind::process_unknown);
}

void trace_losses::symbol_known_already() { count(loss_kind::symbol_fault); }

void trace_losses::symbol_unknown() { count(loss_kind::symbol_fault); }

void trace_losses::symbol_without_category(std::string_view /*name*/) {
  count(loss_kind::symbol_fault);
}

void trace_losses::query_operation_unknown(std::uint32_t /*operation*/) {
  count(loss_kind::query_fault);
}

void trace_losses::query_not_open(std::uint32_t /*qid*/) { count(loss_kind::query_fault); }

void trace_losses::query_known_already(std::uint32_t /*qid*/, std::string_view /*refused*/,
                                       std::string_view /*kept*/) {
  count(loss_kind::query_fault);
}

}  // namespace kiv
