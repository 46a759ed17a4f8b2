#include "replay/kiv_process.h"

#include <utility>

#include "replay/kiv_reserve_id_db.h"
#include "trace/diagnostics.h"

namespace kiv {

namespace {

// Few functions call more others; following the arcs of those would take longer than a look-up.
constexpr std::uint32_t max_followed_arcs = 12;

// Whether a function that is_at() these was found by them: specials may be replaced, and functions
// of objects that were never loaded all carry id 0.
bool names_one_function(std::uint32_t object_id, std::int32_t number) {
  return number > 0 && object_id != 0;
}

}  // namespace

KivProcess::KivProcess(const KivProcessStart& event, std::uint32_t main_pid, KivReserveId_db& ids,
                       diagnostics& faults)
    : main_pid_(main_pid),
      pid_(event.pid),
      parent_(event.parent),
      session_name_(event.short_name()),
      ids_(ids),
      diagnostics_(faults),
      statistics_(id_stat_divisor),
      root_(std::in_place, pid_, 0, pid_ == 0 ? " process init+term" : "3gl process init+term") {
  add_arc(&root_->relation, &root_->relation);
}

KivProcess::KivProcess(KivReserveId_db& ids, diagnostics& faults)
    : main_pid_(0),
      pid_(0),
      parent_(0),
      session_name_("defaultproc"),
      ids_(ids),
      diagnostics_(faults),
      statistics_(id_stat_divisor) {}

process_malid_stat* KivProcess::get_mc_stat(std::uint32_t malid) {
  if (malid == latest_malid_ && latest_book_ != nullptr) return latest_book_;
  if (process_malid_stat* shared = ids_.shared_process_book()) return shared;
  auto& book = malid_stats_[malid];
  if (book == nullptr) book = ids_.make_process_book(malid);
  latest_malid_ = malid;
  return latest_book_ = book.get();
}

void KivProcess::release_wf(std::uint32_t malid, std::uint64_t size, std::uint64_t tot_size) {
  get_mc_stat(malid)->clearstats();
  const auto s = static_cast<std::int64_t>(size);
  const auto t = static_cast<std::int64_t>(tot_size);
  statistics_.cur_wf.sub_sizes(s, t);
  statistics_.cur_mem.sub_sizes(s, t);
}

void KivProcess::release_nf(std::uint32_t malid, std::uint64_t size, std::uint64_t tot_size) {
  get_mc_stat(malid)->clearstats();
  const auto s = static_cast<std::int64_t>(size);
  const auto t = static_cast<std::int64_t>(tot_size);
  statistics_.cur_nf.sub_sizes(s, t);
  statistics_.cur_mem.sub_sizes(s, t);
}

void KivProcess::add_special(std::int32_t number, std::string_view name) {
  std::unique_ptr<special_function>& special = specials_[static_cast<std::uint32_t>(number)];
  if (special != nullptr) former_specials_.push_back(std::move(special));
  special = std::make_unique<special_function>(pid_, number, name);
}

void KivProcess::link_oip(std::uint32_t object_id, const KivObject& object) {
  if (oips_.find(object_id) != nullptr) return;
  oips_.assign(object_id, std::make_unique<KivOip>(object));
}

void KivProcess::start_stack() {
  const auto base = specials_.find(0);
  s_push(base == specials_.end() ? nullptr : &base->second->function.relation, 0);
  stack_started_ = true;
}

Func_rel* KivProcess::find_function(std::uint32_t object_id, std::int32_t number, bool global) {
  if (!stack_started_) start_stack();
  if (number <= 0) {
    const auto special = specials_.find(static_cast<std::uint32_t>(number));
    return special == specials_.end() ? nullptr : &special->second->function.relation;
  }
  KivOip* oip = find_oip(object_id);
  return oip == nullptr ? nullptr : oip->find_function(number, global, diagnostics_);
}

Func_rel* KivProcess::find_caller(std::uint32_t object_id, std::int32_t number) {
  if (names_one_function(object_id, number) && !stack_.empty()) {
    Func_rel* current = stack_.back().function;
    if (current != nullptr && current->is_at(object_id, number)) return current;
  }
  return find_function(object_id, number, false);
}

std::uint32_t KivProcess::add_arc(Func_rel* from, Func_rel* to) {
  arcs_.push_back({from, to});
  return static_cast<std::uint32_t>(arcs_.size() - 1);
}

std::pair<std::uint32_t, bool> KivProcess::find_or_add_arc(Func_rel* from, Func_rel* to) {
  const FuncArc* arcs = arcs_.data();
  std::uint32_t arc = from->newest_arc;
  for (std::uint32_t left = from->followed_arcs; left > 0; --left) {
    if (arcs[arc].to == to) return {arc, false};
    arc = arcs[arc].next_arc;
  }
  if (from->followed_arcs == max_followed_arcs) {
    const auto [entry, is_new] = further_arcs_.try_emplace({from, to}, 0);
    if (is_new) entry->second = add_arc(from, to);
    return {entry->second, is_new};
  }
  arc = add_arc(from, to);
  arcs_[arc].next_arc = std::exchange(from->newest_arc, arc);
  ++from->followed_arcs;
  return {arc, true};
}

FuncArc* KivProcess::find_repeated_call(const Func_rel& caller, std::uint32_t object_id,
                                        std::int32_t number) {
  if (!names_one_function(object_id, number)) return nullptr;
  FuncArc* arcs = arcs_.data();
  std::uint32_t arc = caller.newest_arc;
  for (std::uint32_t left = caller.followed_arcs; left > 0; --left) {
    if (arcs[arc].to->is_at(object_id, number)) return &arcs[arc];
    arc = arcs[arc].next_arc;
  }
  return nullptr;
}

KivSymbol* KivProcess::find_symbol(std::int64_t sym) const {
  const auto entry = symbols_.find(sym);
  return entry == symbols_.end() ? nullptr : entry->second.get();
}

void KivProcess::symbol_new(const KivSymbolNew& event) {
  std::unique_ptr<KivSymbol>& symbol = symbols_[event.sym];
  if (symbol != nullptr) {
    diagnostics_.symbol_known_already();
    return;
  }
  symbol = std::make_unique<KivSymbol>(event);
}

void KivProcess::symbol_alloc(const KivSymbolAlloc& event) {
  KivSymbol* symbol = find_symbol(event.sym);
  if (symbol == nullptr) {
    diagnostics_.symbol_unknown();
    return;
  }
  symbol->allocate(event, flow_counter_);
  // Nothing asks which symbols a function has; one that would not be filed there is reported.
  const bool has_function = !stack_.empty() && stack_.back().function != nullptr;
  if (has_function && !symbol->has_category()) {
    diagnostics_.symbol_without_category(symbol->name);
  }
}

void KivProcess::symbol_dims(const KivSymbolDims& event) {
  if (KivSymbol* symbol = find_symbol(event.sym)) symbol->set_dims(event);
}

void KivProcess::symbol_dd_name(const KivSymbolDdName& event) {
  if (KivSymbol* symbol = find_symbol(event.sym)) symbol->dd_name = std::string(event.dd_name);
}

void KivProcess::free_process() {
  for (const FuncArc& arc : arcs_) arc.from->followed_arcs = 0;
  stack_.clear();
  arcs_ = {};
  further_arcs_ = {};
  oips_ = {};
  former_specials_.clear();
  symbols_.clear();
  alive_ = false;
}

}  // namespace kiv
