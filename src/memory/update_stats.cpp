// The rules by which a memory record changes the books.

#include <iostream>
#include <string>

#include <fmt/format.h>

#include "analysis/kiv_process.h"
#include "events/memory_events.h"
#include "memory/freemem_row.h"
#include "memory/kiv_reserve_id_db.h"
#include "memory/modular.h"
#include "reader/kiv_reader.h"

namespace kiv {

namespace {

void report_address(const char* message, std::int64_t addr) {
  std::cout << fmt::format("{}{:x}\n", message, static_cast<std::uint64_t>(addr));
}

std::int32_t difference(std::uint32_t larger, std::uint32_t smaller) {
  return static_cast<std::int32_t>(wrapping_sub(larger, smaller));
}

// Differences are signed: the wide books take them with their sign.
std::uint64_t widened(std::int32_t change) {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(change));
}

}  // namespace

std::uint64_t KivMallocWF::update_stats() {
  KivReserveId_db& ids = reader()->reserve_ids();
  books_ = find_memory_books(*reader(), id, color, *reader()->cc_curr_proc());
  if (addr_realloc != 0) {
    if (const live_block* source = books_.reserve_id->with_free.find(addr_realloc)) {
      realloc_source_ = source->record;
    } else {
      report_address("Error in MALLOC_WF cannot find addr_realloed ", addr_realloc);
    }
  }
  books_.reserve_id->book.stat.add_wf(size, tot_size);
  if (books_.color != nullptr) books_.color->add_wf(size, tot_size);
  books_.process.update_wf(size, tot_size);
  return ids.update_wf(size, tot_size);
}

std::uint64_t KivMallocNF::update_stats() {
  books_ = find_memory_books(*reader(), id, color, *reader()->cc_curr_proc());
  books_.reserve_id->book.stat.add_nf(size, tot_size);
  if (books_.color != nullptr) books_.color->add_nf(size, tot_size);
  books_.process.update_nf(size, tot_size);
  return reader()->reserve_ids().update_nf(size, tot_size);
}

std::uint64_t KivFree::update_stats() {
  books_ = find_memory_books(*reader(), id, color, *reader()->cc_curr_proc());
  KivReserveId& owner = *books_.reserve_id;
  if (const std::optional<live_block> block = owner.with_free.del_memory(addr)) {
    size_ = block->size;
    tot_size_ = block->tot_size;
    freed_record_ = block->record;
    owner.book.stat.add_fr(size_, tot_size_);
    // The block's own colour, which the record may contradict.
    if (auto* allocated_under = owner.book.find_color(block->color)) {
      allocated_under->add_fr_sizes(size_, tot_size_);
    }
  } else {
    report_address("Error in FREE: illegal address ", addr);
  }
  books_.process.update_fr(size_, tot_size_);
  const std::uint64_t record = reader()->reserve_ids().update_fr(size_, tot_size_);
  if (freed_record_ != 0) write_freemem_row(*reader(), freed_record_, record, type());
  return record;
}

std::uint64_t KivFreeRealloc::update_stats() {
  books_ = find_memory_books(*reader(), id, color, *reader()->cc_curr_proc());
  KivReserveId& owner = *books_.reserve_id;
  live_block* block = owner.with_free.find(addr);
  if (block == nullptr) {
    report_address("Error in FREE REALLOC: illegal address ", addr);
    return 0;
  }
  KivReserveId_db& ids = reader()->reserve_ids();
  std::uint64_t record = 0;
  if (size > block->size) {
    size_change_ = difference(size, block->size);
    tot_size_change_ = difference(tot_size, block->tot_size);
    const std::uint64_t grown = widened(size_change_);
    const std::uint64_t tot_grown = widened(tot_size_change_);
    owner.book.stat.add_wf(grown, tot_grown);
    if (books_.color != nullptr) books_.color->add_wf(grown, tot_grown);
    books_.process.update_wf(grown, tot_grown);
    record =
        ids.update_wf(static_cast<std::uint32_t>(grown), static_cast<std::uint32_t>(tot_grown));
  } else {
    const std::int32_t size_drop = difference(block->size, size);
    const std::int32_t tot_size_drop = difference(block->tot_size, tot_size);
    size_change_ = wrapping_sub(0, size_drop);
    tot_size_change_ = wrapping_sub(0, tot_size_drop);
    const std::uint64_t freed = widened(size_drop);
    const std::uint64_t tot_freed = widened(tot_size_drop);
    owner.book.stat.add_fr_sizes(freed, tot_freed);
    if (books_.color != nullptr) books_.color->add_fr_sizes(freed, tot_freed);
    books_.process.update_fr(freed, tot_freed);
    record =
        ids.update_fr(static_cast<std::uint32_t>(freed), static_cast<std::uint32_t>(tot_freed));
  }
  block->size = size;
  block->tot_size = tot_size;
  previous_record_ = block->record;
  block->record = record;
  write_freemem_row(*reader(), previous_record_, record, type());
  return record;
}

}  // namespace kiv
