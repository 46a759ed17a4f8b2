#include "replay/kiv_process.h"

#include <algorithm>
#include <utility>

#include "replay/kiv_reserve_id_db.h"
#include "trace/diagnostics.h"

namespace kiv {

namespace {

// Few functions call more others; looking through all that those call would take longer than a
// look-up.
constexpr int max_callee_lists = 3;

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
  auto& book = malid_stats_[malid];
  if (book == nullptr) book = ids_.make_process_book(malid);
  latest_malid_ = malid;
  return latest_book_ = book.get();
}

void KivProcess::release_wf(std::uint32_t malid, std::uint64_t size, std::uint64_t tot_size) {
  if (ids_.keeps_row_books()) get_mc_stat(malid)->clearstats();
  const auto s = static_cast<std::int64_t>(size);
  const auto t = static_cast<std::int64_t>(tot_size);
  statistics_.cur_wf.sub_sizes(s, t);
  statistics_.cur_mem.sub_sizes(s, t);
}

void KivProcess::release_nf(std::uint32_t malid, std::uint64_t size, std::uint64_t tot_size) {
  if (ids_.keeps_row_books()) get_mc_stat(malid)->clearstats();
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
  s_push({base == specials_.end() ? nullptr : &base->second->function.relation, 0, 0});
  stack_started_ = true;
}

Func_rel* KivProcess::find_special(std::int32_t number) {
  const auto special = specials_.find(static_cast<std::uint32_t>(number));
  return special == specials_.end() ? nullptr : &special->second->function.relation;
}

std::uint32_t KivProcess::find_in_object(std::uint32_t object_id, std::int32_t number,
                                         bool global) {
  KivOip* oip = find_oip(object_id);
  return oip == nullptr ? 0 : oip->find_function(number, global, functions_, diagnostics_);
}

Func_rel* KivProcess::find_function(std::uint32_t object_id, std::int32_t number) {
  if (!stack_started_) start_stack();
  if (number <= 0) return find_special(number);
  const std::uint32_t found = find_in_object(object_id, number, false);
  return found == 0 ? nullptr : functions_[found];
}

Func_rel* KivProcess::find_hosk_function(std::uint32_t object_id, std::int32_t number) {
  const std::uint32_t found = find_in_object(object_id, number, true);
  return found == 0 ? nullptr : functions_[found];
}

// As in enter_again(), not for specials.
Func_rel* KivProcess::find_caller(std::uint32_t object_id, std::int32_t number) {
  if (!stack_.empty() && number > 0) {
    const Func_context& current = stack_.back();
    if (current.key == key_of_function(object_id, number)) return current.function;
  }
  return find_function(object_id, number);
}

std::uint32_t KivProcess::add_arc(Func_rel* from, Func_rel* to) {
  arcs_.push_back({from, to});
  return static_cast<std::uint32_t>(arcs_.size() - 1);
}

KivProcess::found_call KivProcess::find_or_add_call(Func_rel* caller, std::uint32_t object_id,
                                                    std::int32_t number) {
  const function_key key = key_of_function(object_id, number);
  Func_rel* callee = nullptr;
  if (number <= 0) {
    callee = find_function(object_id, number);
    if (caller == nullptr || callee == nullptr) return {};
    return {callee, find_or_add_further_arc(caller, callee)};
  }
  if (caller != nullptr) {
    if (const found_call known = find_call(*caller, key); known.callee != nullptr) return known;
  }
  callee = find_function(object_id, number);
  if (caller == nullptr || callee == nullptr) return {};
  callee_list* list = list_with_room(*caller);
  if (list == nullptr) return {callee, find_or_add_further_arc(caller, callee)};
  const auto place =
      static_cast<std::size_t>(std::ranges::find(list->callees, 0u) - list->callees.begin());
  list->callees[place] = key;
  list->arcs[place] = add_arc(caller, callee);
  return {callee, list->arcs[place]};
}

callee_list* KivProcess::list_with_room(Func_rel& caller) {
  callee_list* list = &caller.callees;
  std::uint32_t* further = &caller.further;
  for (int lists = 1; list->callees.back() != 0; ++lists) {
    if (lists == max_callee_lists) return nullptr;
    if (*further == 0) {
      *further = static_cast<std::uint32_t>(further_callees_.size() + 1);
      return &further_callees_.emplace_back().list;
    }
    further_callees& next = further_callees_[*further - 1];
    list = &next.list;
    further = &next.further;
  }
  return list;
}

std::uint32_t KivProcess::find_or_add_further_arc(Func_rel* caller, Func_rel* callee) {
  const auto [entry, is_new] = further_arcs_.try_emplace({caller, callee}, 0);
  if (is_new) entry->second = add_arc(caller, callee);
  return entry->second;
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
  for (const FuncArc& arc : arcs_) {
    arc.from->callees = {};
    arc.from->further = 0;
  }
  stack_.clear();
  arcs_ = {};
  further_callees_ = {};
  further_arcs_ = {};
  oips_ = {};
  functions_ = {};
  former_specials_.clear();
  symbols_.clear();
  alive_ = false;
}

}  // namespace kiv
