#include "kivtrace/kiv_trace.h"

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "kivtrace/fork_count.h"
#include "kivtrace/trace_lock.h"
#include "kivtrace/trace_setup.h"
#include "trace/code_events.h"
#include "trace/heap_events.h"
#include "trace/id_events.h"
#include "trace/memory_events.h"
#include "trace/process_events.h"
#include "trace/query_events.h"
#include "trace/symbol_events.h"
#include "trace/time_marker_events.h"
#include "trace/trace_writer.h"

struct kiv_trace {
  explicit kiv_trace(const kiv::trace_setup& options)
      : narrow_addresses(options.writing.address_width == 4),
        writer(options.identity, options.writing) {}

  const bool narrow_addresses;
  const std::uint32_t forks = kiv::fork_count.load(std::memory_order_relaxed);
  bool lacks_records = false;  // that no record can hold
  bool broken = false;         // memory ran out, and nobody knows how far the writer got
  std::string header_path;
  kiv::trace_lock lock;
  kiv::trace_writer writer;
};

namespace kiv {
namespace {

constexpr const char* no_memory = "out of memory";

thread_local std::array<char, 512> last_error{};

[[gnu::cold]] int failed(std::string_view why) noexcept {
  const std::size_t length = std::min(why.size(), last_error.size() - 1);
  std::copy_n(why.begin(), length, last_error.begin());
  last_error[length] = '\0';
  return -1;
}

kiv_trace* not_opened(std::string_view why) noexcept {
  failed(why);
  return nullptr;
}

// Nullptr for a trace on which this process may call functions, else what forbids it.
const char* forbidden(const kiv_trace* trace) noexcept {
  if (trace == nullptr) return "no trace is given";
  if (trace->forks != fork_count.load(std::memory_order_relaxed)) {
    return "the trace belongs to the process that opened it";
  }
  return nullptr;
}

// What the writer could not do, nullptr when nothing.
const char* fault_of(const trace_writer& writer) noexcept {
  return writer.error().empty() ? nullptr : writer.error().c_str();
}

// Lets the thread do something with the writer, which gives the reason of its failure or nullptr.
template <class Action>
int call(kiv_trace* trace, Action action) noexcept {
  if (const char* why = forbidden(trace)) return failed(why);
  const trace_lock::call inside(trace->lock);
  if (!inside.begun()) return failed("called from within another call on the trace");
  try {
    if (!trace->broken) {
      const char* why = action(trace->writer);
      return why == nullptr ? 0 : failed(why);
    }
  } catch (const std::exception&) {
    trace->broken = true;
  }
  return failed(no_memory);
}

std::string_view text_of(const char* text) { return text == nullptr ? std::string_view() : text; }

// Makes numbers of the interface those of a record, and remembers what no record can hold.
class fitting {
 public:
  explicit fitting(const kiv_trace* trace) : narrow_(trace != nullptr && trace->narrow_addresses) {}

  std::uint32_t size(std::uint64_t bytes) {
    if (bytes > std::numeric_limits<std::uint32_t>::max()) {
      refused_ = "a size of more than 4294967295 bytes";
    }
    return static_cast<std::uint32_t>(bytes);
  }
  // Also one that was widened with its sign.
  std::int64_t address(std::uint64_t value) {
    const auto wide = static_cast<std::int64_t>(value);
    if (narrow_ && value > std::numeric_limits<std::uint32_t>::max() &&
        wide != static_cast<std::int32_t>(wide)) {
      refused_ = "an address, location or symbol of more than 4 bytes";
    }
    return wide;
  }
  const char* refused() const { return refused_; }

 private:
  const bool narrow_;
  const char* refused_ = nullptr;
};

template <class Event>
int put(kiv_trace* trace, const Event& event, const fitting& fit) noexcept {
  return call(trace, [&](trace_writer& writer) {
    if (fit.refused() != nullptr) {
      trace->lacks_records = true;
      return fit.refused();
    }
    writer.write(event);
    return fault_of(writer);
  });
}

template <class Event>
int put(kiv_trace* trace, const Event& event) noexcept {
  return put(trace, event, fitting(trace));
}

// Ends what the thread has to do with the trace and gives it back. What a child of fork() has is a
// copy that may have been taken in the middle of a call, so it is left as it is.
template <class Action>
int leave(kiv_trace* trace, Action action) noexcept {
  if (const char* why = forbidden(trace)) return failed(why);
  if (!trace_lock::call(trace->lock).begun()) return failed("called from within another call");
  const std::unique_ptr<kiv_trace> given_back(trace);
  return call(trace, action);
}

int close(kiv_trace* trace, moment end) noexcept {
  return leave(trace, [=](trace_writer& writer) {
    if (!trace->lacks_records) {
      writer.close(end);
      return fault_of(writer);
    }
    return writer.flush() ? "left open, since records were refused" : fault_of(writer);
  });
}

}  // namespace
}  // namespace kiv

using kiv::fitting;
using kiv::put;
using kiv::text_of;

kiv_trace* kiv_trace_open(const kiv_trace_options* options) {
  if (options == nullptr) return kiv::not_opened("no options are given");
  try {
    if (!kiv::count_forks()) return kiv::not_opened(kiv::no_memory);
    auto trace = std::make_unique<kiv_trace>(kiv::checked(*options));
    if (!trace->writer.open()) return kiv::not_opened(trace->writer.error());
    trace->header_path = trace->writer.header_path();
    return trace.release();
  } catch (const std::bad_alloc&) {
    return kiv::not_opened(kiv::no_memory);
  } catch (const std::exception& failure) {
    return kiv::not_opened(failure.what());
  }
}

int kiv_trace_flush(kiv_trace* trace) {
  return kiv::call(trace, [](kiv::trace_writer& writer) {
    writer.flush();
    return kiv::fault_of(writer);
  });
}

int kiv_trace_close(kiv_trace* trace) { return kiv::close(trace, kiv::system_time()); }

int kiv_trace_close_at(kiv_trace* trace, int64_t secs, int32_t nsecs) {
  return kiv::close(trace, {secs, nsecs});
}

int kiv_trace_abandon(kiv_trace* trace) {
  return kiv::leave(trace, [](kiv::trace_writer& writer) {
    writer.flush();
    return kiv::fault_of(writer);
  });
}

const char* kiv_trace_error(void) { return kiv::last_error.data(); }

const char* kiv_trace_header_path(const kiv_trace* trace) {
  return trace == nullptr ? "" : trace->header_path.c_str();
}

int kiv_trace_lock(kiv_trace* trace) {
  if (const char* why = kiv::forbidden(trace)) return kiv::failed(why);
  return trace->lock.lock() ? 0 : kiv::failed("locked too often");
}

int kiv_trace_unlock(kiv_trace* trace) {
  if (const char* why = kiv::forbidden(trace)) return kiv::failed(why);
  return trace->lock.unlock() ? 0 : kiv::failed("not locked by this thread");
}

int kiv_trace_timestamp(kiv_trace* trace, uint32_t secs, uint32_t nsecs) {
  return put(trace, kiv::KivTimeStamp{secs, nsecs});
}

int kiv_trace_timestamp_now(kiv_trace* trace) {
  return kiv::call(trace, [](kiv::trace_writer& writer) {
    const kiv::moment now = kiv::system_time();
    writer.write(kiv::KivTimeStamp{static_cast<std::uint32_t>(now.secs),
                                   static_cast<std::uint32_t>(now.nsecs)});
    return kiv::fault_of(writer);
  });
}

int kiv_trace_marker(kiv_trace* trace, const char* text) {
  return put(trace, kiv::KivMarker{text_of(text)});
}

int kiv_trace_hashloc(kiv_trace* trace, uint64_t location, const char* source_line) {
  fitting fit(trace);
  return put(trace, kiv::KivHashLoc{fit.address(location), text_of(source_line)}, fit);
}

int kiv_trace_process_start(kiv_trace* trace, uint32_t pid, uint32_t parent,
                            const char* session_name) {
  return put(trace, kiv::KivProcessStart{pid, parent, text_of(session_name)});
}

int kiv_trace_process_end(kiv_trace* trace, uint32_t pid) {
  return put(trace, kiv::KivProcessEnd{pid});
}

int kiv_trace_process_special_load(kiv_trace* trace, uint32_t pid, int32_t funnr,
                                   const char* funcname) {
  return put(trace, kiv::KivProcessSpecialLoad{pid, funnr, text_of(funcname)});
}

int kiv_trace_schedule(kiv_trace* trace, uint32_t curr_pid, uint32_t new_pid) {
  return put(trace, kiv::KivSchedule{curr_pid, new_pid});
}

int kiv_trace_object_load(kiv_trace* trace, uint32_t id_of_obj) {
  return put(trace, kiv::KivObjectLoad{id_of_obj});
}

int kiv_trace_object_function_load(kiv_trace* trace, uint32_t id_of_obj, int32_t funnr,
                                   const char* funcname) {
  return put(trace, kiv::KivObjectFunctionLoad{{id_of_obj, funnr, text_of(funcname)}});
}

int kiv_trace_object_global_load(kiv_trace* trace, uint32_t id_of_obj, int32_t funnr,
                                 const char* funcname) {
  return put(trace, kiv::KivObjectGlobalLoad{{id_of_obj, funnr, text_of(funcname)}});
}

int kiv_trace_object_link(kiv_trace* trace, uint32_t pid, uint32_t id_of_obj) {
  return put(trace, kiv::KivObjectLink{pid, id_of_obj});
}

int kiv_trace_flow_in(kiv_trace* trace, uint32_t parent_id, int32_t parent_funnr, uint32_t child_id,
                      int32_t child_funnr) {
  return put(trace, kiv::KivFlowIn{parent_id, parent_funnr, child_id, child_funnr});
}

int kiv_trace_flow_out(kiv_trace* trace) { return put(trace, kiv::KivFlowOut{}); }

int kiv_trace_hosk_flow_in(kiv_trace* trace, uint32_t id_of_obj, uint32_t fun3glnr, int32_t funnr,
                           uint64_t sym, const char* args) {
  fitting fit(trace);
  return put(trace, kiv::KivHoskFlowIn{id_of_obj, fun3glnr, funnr, fit.address(sym), text_of(args)},
             fit);
}

int kiv_trace_hosk_flow_out(kiv_trace* trace, uint32_t id_of_obj, uint32_t fun3glnr, int32_t funnr,
                            const char* args) {
  return put(trace, kiv::KivHoskFlowOut{id_of_obj, fun3glnr, funnr, text_of(args)});
}

int kiv_trace_reserve_id(kiv_trace* trace, uint32_t id, uint64_t default_size, uint64_t location,
                         uint32_t nr_colors, const char* reserve_type) {
  fitting fit(trace);
  return put(trace,
             kiv::KivReserveId{id, fit.size(default_size), fit.address(location), nr_colors,
                               text_of(reserve_type)},
             fit);
}

int kiv_trace_reserve_id_colors(kiv_trace* trace, uint32_t color, const char* colorname) {
  return put(trace, kiv::KivReserveIdColors{color, text_of(colorname)});
}

int kiv_trace_free_id(kiv_trace* trace, uint32_t id, uint64_t location, uint64_t tot_size_wf,
                      uint64_t tot_size_nf) {
  fitting fit(trace);
  return put(
      trace,
      kiv::KivFreeId{{id, fit.address(location), fit.size(tot_size_wf), fit.size(tot_size_nf)}},
      fit);
}

int kiv_trace_reset_id(kiv_trace* trace, uint32_t id, uint64_t location, uint64_t tot_size_wf,
                       uint64_t tot_size_nf) {
  fitting fit(trace);
  return put(
      trace,
      kiv::KivResetId{{id, fit.address(location), fit.size(tot_size_wf), fit.size(tot_size_nf)}},
      fit);
}

int kiv_trace_malloc_wf(kiv_trace* trace, uint32_t id, uint32_t color, uint64_t addr,
                        uint64_t addr_realloc, uint64_t size, uint64_t tot_size,
                        uint64_t location) {
  fitting fit(trace);
  return put(trace,
             kiv::KivMallocWF{id, color, fit.address(addr), fit.address(addr_realloc),
                              fit.size(size), fit.size(tot_size), fit.address(location)},
             fit);
}

int kiv_trace_malloc_nf(kiv_trace* trace, uint32_t id, uint32_t color, uint64_t addr, uint64_t size,
                        uint64_t tot_size, uint64_t location) {
  fitting fit(trace);
  return put(trace,
             kiv::KivMallocNF{id, color, fit.address(addr), fit.size(size), fit.size(tot_size),
                              fit.address(location)},
             fit);
}

int kiv_trace_free(kiv_trace* trace, uint32_t id, uint32_t color, uint64_t addr,
                   uint64_t location) {
  fitting fit(trace);
  return put(trace, kiv::KivFree{id, color, fit.address(addr), fit.address(location)}, fit);
}

int kiv_trace_free_realloc(kiv_trace* trace, uint32_t id, uint32_t color, uint64_t addr,
                           uint64_t addr_free, uint64_t size, uint64_t tot_size,
                           uint64_t location) {
  fitting fit(trace);
  return put(trace,
             kiv::KivFreeRealloc{id, color, fit.address(addr), fit.address(addr_free),
                                 fit.size(size), fit.size(tot_size), fit.address(location)},
             fit);
}

int kiv_trace_sbrk(kiv_trace* trace, uint64_t addr, uint64_t size) {
  fitting fit(trace);
  return put(trace, kiv::KivSbrk{fit.address(addr), fit.size(size)}, fit);
}

int kiv_trace_sbrk_gap(kiv_trace* trace, uint64_t l_sbrk, uint64_t c_sbrk) {
  fitting fit(trace);
  return put(trace, kiv::KivSbrkGap{fit.address(l_sbrk), fit.address(c_sbrk)}, fit);
}

int kiv_trace_mallinfo(kiv_trace* trace, uint64_t arena, uint64_t used, uint64_t freed) {
  fitting fit(trace);
  return put(trace, kiv::KivMallInfo{fit.size(arena), fit.size(used), fit.size(freed)}, fit);
}

int kiv_trace_query_in(kiv_trace* trace, uint32_t qid, uint32_t type, const char* query) {
  return put(trace, kiv::KivQueryIn{qid, type, text_of(query)});
}

int kiv_trace_query_out(kiv_trace* trace, uint32_t qid, uint32_t linked_qid) {
  return put(trace, kiv::KivQueryOut{qid, linked_qid});
}

int kiv_trace_symbol_new_sym(kiv_trace* trace, uint64_t sym, int32_t symnr, int32_t sym_type) {
  fitting fit(trace);
  return put(trace, kiv::KivSymbolNew{fit.address(sym), symnr, sym_type}, fit);
}

int kiv_trace_symbol_alloc(kiv_trace* trace, uint64_t sym, uint32_t flags, uint64_t size,
                           const char* name) {
  fitting fit(trace);
  return put(trace, kiv::KivSymbolAlloc{fit.address(sym), flags, fit.size(size), text_of(name)},
             fit);
}

int kiv_trace_symbol_dims(kiv_trace* trace, uint64_t sym, uint32_t nrdims, uint32_t dim0,
                          uint32_t dim1, uint32_t dim2, uint32_t dim3) {
  fitting fit(trace);
  return put(trace, kiv::KivSymbolDims{fit.address(sym), nrdims, {dim0, dim1, dim2, dim3}}, fit);
}

int kiv_trace_symbol_dd_name(kiv_trace* trace, uint64_t sym, const char* dd_name) {
  fitting fit(trace);
  return put(trace, kiv::KivSymbolDdName{fit.address(sym), text_of(dd_name)}, fit);
}
