#include "replay/memory_rules.h"

#include <optional>

#include "replay/kiv_hashloc.h"
#include "replay/kiv_process.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"
#include "replay/memory_books.h"
#include "replay/observer.h"
#include "trace/diagnostics.h"
#include "util/modular.h"

namespace kiv {

namespace {

using handle = live_block_pool::handle;

memory_books find_books(kiv_reader& reader, const auto& event) {
  return find_memory_books(reader.reserve_ids(), event.id, event.color, *reader.cc_curr_proc());
}

// What every record says of itself.
memory_change change_of(const auto& event, const memory_books& books) {
  memory_change change{.type = event.type};
  change.location = event.location;
  change.id = event.id;
  change.color = event.color;
  change.addr = event.addr;
  change.books = &books;
  return change;
}

// Stores the block of an allocation that is booked, and tells of both.
void keep_block(kiv_reader& reader, KivMem& blocks, const auto& event, memory_change& change) {
  change.size = event.size;
  change.tot_size = event.tot_size;
  change.size_change = event.size;
  change.tot_size_change = event.tot_size;
  const std::uint32_t line = reader.hash_locations().text_index(event.location);
  const std::optional<handle> block =
      blocks.add_memory({event.addr, change.record, event.size, event.tot_size, event.color, line});
  if (block) {
    reader.observer().block_made(*block, change);
  } else {
    reader.observer().block_refused(change);
  }
  reader.observer().memory_changed(change);
}

std::int32_t difference(std::uint32_t larger, std::uint32_t smaller) {
  return static_cast<std::int32_t>(wrapping_sub(larger, smaller));
}

// Differences are signed: the wide books take them with their sign.
std::uint64_t widened(std::int32_t change) {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(change));
}

}  // namespace

void update_stats(kiv_reader& reader, const KivMallocWF& event) {
  const memory_books books = find_books(reader, event);
  memory_change change = change_of(event, books);
  change.second_addr = event.addr_realloc;
  if (event.addr_realloc != 0) {
    if (const std::optional<handle> source = books.id->with_free.find(event.addr_realloc)) {
      change.linked_record = reader.live_blocks()[*source].record;
    } else {
      reader.faults().realloc_source_missing(event.addr_realloc);
    }
  }
  books.id->book.stat.add_wf(event.size, event.tot_size);
  if (books.color != nullptr) books.color->add_wf(event.size, event.tot_size);
  books.process.update_wf(event.size, event.tot_size);
  change.record = reader.reserve_ids().update_wf(event.size, event.tot_size);
  keep_block(reader, books.id->with_free, event, change);
}

void update_stats(kiv_reader& reader, const KivMallocNF& event) {
  const memory_books books = find_books(reader, event);
  memory_change change = change_of(event, books);
  books.id->book.stat.add_nf(event.size, event.tot_size);
  if (books.color != nullptr) books.color->add_nf(event.size, event.tot_size);
  books.process.update_nf(event.size, event.tot_size);
  change.record = reader.reserve_ids().update_nf(event.size, event.tot_size);
  keep_block(reader, books.id->no_free, event, change);
}

void update_stats(kiv_reader& reader, const KivFree& event) {
  KivReserveId_db& ids = reader.reserve_ids();
  const memory_books books = find_books(reader, event);
  memory_change change = change_of(event, books);
  live_block block{};  // of no size when none is live at the address
  const std::optional<handle> ended = books.id->with_free.del_memory(event.addr, block);
  if (ended) {
    books.id->book.stat.add_fr(block.size, block.tot_size);
    // The block's own colour, which the record may contradict.
    auto* const allocated_under =
        ids.keeps_row_books() ? books.id->book.find_color(block.color) : nullptr;
    if (allocated_under != nullptr) allocated_under->add_fr_sizes(block.size, block.tot_size);
  } else {
    reader.faults().freed_block_missing(event.addr);
  }
  books.process.update_fr(block.size, block.tot_size);
  change.record = ids.update_fr(block.size, block.tot_size);
  change.size = block.size;
  change.tot_size = block.tot_size;
  change.size_change = -std::int64_t{block.size};
  change.tot_size_change = -std::int64_t{block.tot_size};
  change.linked_record = block.record;
  if (ended) reader.observer().block_ended(*ended, block, change.record, event.type);
  reader.observer().memory_changed(change);
}

void update_stats(kiv_reader& reader, const KivFreeRealloc& event) {
  const memory_books books = find_books(reader, event);
  memory_change change = change_of(event, books);
  change.size = event.size;
  change.tot_size = event.tot_size;
  change.second_addr = event.addr_free;
  KivMalid& owner = *books.id;
  const std::optional<handle> found = owner.with_free.find(event.addr);
  if (!found) {
    reader.faults().resized_block_missing(event.addr);
    reader.observer().memory_changed(change);
    return;
  }
  live_block& block = reader.live_blocks()[*found];
  KivReserveId_db& ids = reader.reserve_ids();
  if (event.size > block.size) {
    const std::int32_t size_rise = difference(event.size, block.size);
    const std::int32_t tot_size_rise = difference(event.tot_size, block.tot_size);
    change.size_change = size_rise;
    change.tot_size_change = tot_size_rise;
    const std::uint64_t grown = widened(size_rise);
    const std::uint64_t tot_grown = widened(tot_size_rise);
    owner.book.stat.add_wf(grown, tot_grown);
    if (books.color != nullptr) books.color->add_wf(grown, tot_grown);
    books.process.update_wf(grown, tot_grown);
    change.record =
        ids.update_wf(static_cast<std::uint32_t>(grown), static_cast<std::uint32_t>(tot_grown));
  } else {
    const std::int32_t size_drop = difference(block.size, event.size);
    const std::int32_t tot_size_drop = difference(block.tot_size, event.tot_size);
    change.size_change = wrapping_sub(0, size_drop);
    change.tot_size_change = wrapping_sub(0, tot_size_drop);
    const std::uint64_t freed = widened(size_drop);
    const std::uint64_t tot_freed = widened(tot_size_drop);
    owner.book.stat.add_fr_sizes(freed, tot_freed);
    if (books.color != nullptr) books.color->add_fr_sizes(freed, tot_freed);
    books.process.update_fr(freed, tot_freed);
    change.record =
        ids.update_fr(static_cast<std::uint32_t>(freed), static_cast<std::uint32_t>(tot_freed));
  }
  block.size = event.size;
  block.tot_size = event.tot_size;
  change.linked_record = block.record;
  block.record = change.record;
  reader.observer().block_resized(*found, change);
  reader.observer().memory_changed(change);
}

}  // namespace kiv
