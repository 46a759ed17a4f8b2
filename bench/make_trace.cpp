#include "make_trace.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace kiv::bench {
namespace {

using test::trace;
using u32 = std::uint32_t;
using i64 = std::int64_t;

constexpr u32 processes = 20;
constexpr u32 ids = 200;
constexpr u32 colors = 8;
constexpr u32 locations = 1500;
constexpr u32 objects = 50;
constexpr u32 functions = 40;
constexpr u32 callees = 8;
constexpr u32 first_second = 1'700'000'000;

// The generator is std's, whose numbers are fixed by the standard; its distributions' are not.
class dice {
 public:
  u32 below(u32 n) { return static_cast<u32>(engine_() % n); }
  template <class T>
  void shuffle(std::vector<T>& cards) {
    for (u32 i = static_cast<u32>(cards.size()); i > 1; --i)
      std::swap(cards[i - 1], cards[below(i)]);
  }

 private:
  std::mt19937_64 engine_{20240229};
};

i64 location_key(u32 n) { return 0x1000 + i64{n} * 0x9e5; }

u32 rounded(u32 size) { return (size + 8 + 15) / 16 * 16; }

void announce_processes(trace& t) {
  for (u32 pid = 1; pid <= processes; ++pid) {
    t.proc(pid, "worker" + std::to_string(pid), pid == 1 ? 0 : 1);
    t.special(pid, 0, "top level").special(pid, -1, "event loop");
  }
}

void announce_ids(trace& t) {
  for (u32 id = 1; id <= ids; ++id) {
    t.reserve(id, "oic:module" + std::to_string(id) + ":body", colors, location_key(id), 4096);
    for (u32 c = 0; c < colors; ++c) t.color(c, "color " + std::to_string(c));
  }
}

void announce_locations(trace& t) {
  for (u32 n = 0; n < locations; ++n) {
    t.hashloc(location_key(n), "src/module" + std::to_string(n % 97) + ".c:" + std::to_string(n));
  }
}

// Objects with numbered functions, linked into every process.
void announce_code(trace& t, u32 object_count) {
  for (u32 object = 1; object <= object_count; ++object) {
    t.object(object);
    for (u32 f = 1; f < functions; ++f) {
      t.function(object, static_cast<int>(f),
                 "fun_" + std::to_string(object) + "_" + std::to_string(f));
    }
    for (u32 pid = 1; pid <= processes; ++pid) t.link(pid, object);
  }
}

trace new_trace(std::string_view runid) {
  trace t;
  t.pid(1).runid(runid).addr_width(8).progname("bench");
  t.start(first_second, 5'000'000).end(first_second + 86'400);
  return t;
}

// Time goes on by about a millisecond a record.
void tick(trace& t, u32 record) {
  t.time(first_second + record / 1000, record % 1000 * 1'000'000 + record % 997);
}

void switch_process(trace& t, u32& pid, dice& d) {
  const u32 next = 1 + d.below(processes);
  t.schedule(std::exchange(pid, next), next);
}

// Blocks as an allocator would hand them out: by size class, the address freed last comes first.
class heap {
 public:
  struct block {
    u32 id, color, tot_size;
    i64 addr;
  };
  i64 take(u32 tot_size) {
    auto& freed = freed_[tot_size / 16];
    if (freed.empty()) return std::exchange(top_, top_ + tot_size);
    const i64 addr = freed.back();
    freed.pop_back();
    return addr;
  }
  void keep(const block& b) { live_.push_back(b); }
  bool empty() const { return live_.empty(); }
  block& any(dice& d) { return live_[d.below(static_cast<u32>(live_.size()))]; }
  block remove_any(dice& d) {
    block& chosen = any(d);
    const block gone = chosen;
    chosen = live_.back();
    live_.pop_back();
    freed_[gone.tot_size / 16].push_back(gone.addr);
    return gone;
  }

 private:
  std::vector<block> live_;
  std::array<std::vector<i64>, 1024> freed_;
  i64 top_ = 0x7f00'0000'1000;
};

// Small sizes are far more frequent than large ones.
u32 any_size(dice& d) { return 1 + d.below(16U << d.below(9)); }

}  // namespace

trace memory_heavy(u32 records) {
  trace t = new_trace("MEMORY");
  announce_processes(t);
  announce_ids(t);
  announce_locations(t);
  announce_code(t, 4);
  for (u32 pid = 1; pid <= processes; ++pid) {
    t.schedule(pid - 1, pid).flow_in(pid, 0, 1, 1);
    for (u32 object = 1; object < 4; ++object) t.flow_in(object, 1, object + 1, 1);
  }

  dice d;
  heap blocks;
  std::vector<char> deck(193, 'a');
  deck.insert(deck.end(), 16, 'n');
  deck.insert(deck.end(), 16, 'r');
  deck.insert(deck.end(), 175, 'f');
  u32 pid = processes;
  for (u32 i = 0; i < records; ++i) {
    const u32 card = i % static_cast<u32>(deck.size());
    if (card == 0 && i != 0) d.shuffle(deck);
    if (i % 40 == 0) switch_process(t, pid, d);
    if (i % 100 == 0) tick(t, i);
    const i64 location = location_key(d.below(locations));
    switch (deck[card]) {
      case 'a':
      case 'n': {
        // Most of a process's blocks stand under its own ids, the others under anybody's.
        const u32 id = d.below(4) != 0 ? (pid - 1) * 10 + d.below(10) + 1 : d.below(ids) + 1;
        const u32 size = any_size(d);
        const u32 tot_size = rounded(size);
        const heap::block b{id, d.below(colors), tot_size, blocks.take(tot_size)};
        if (deck[card] == 'n') {
          t.malloc_nf(b.id, b.color, b.addr, size, tot_size, location);
        } else {
          t.malloc_wf(b.id, b.color, b.addr, size, tot_size, location);
          blocks.keep(b);
        }
        break;
      }
      case 'r': {
        const heap::block& b = blocks.any(d);
        t.realloc(b.id, b.color, b.addr, b.tot_size - 8 - d.below(8), b.tot_size, location);
        break;
      }
      default: {
        const heap::block b = blocks.remove_any(d);
        t.free(b.id, b.color, b.addr, location);
      }
    }
  }
  return t;
}

trace flow_heavy(u32 records) {
  trace t = new_trace("FLOW");
  announce_processes(t);
  announce_ids(t);
  announce_code(t, objects);

  struct call {
    u32 object, function;
  };
  std::array<std::vector<call>, processes + 1> stacks;
  dice d;
  u32 pid = 1;
  t.schedule(0, pid);
  for (u32 i = 0; i < records; ++i) {
    std::vector<call>& stack = stacks[pid];
    if (i % 10 == 9) {
      switch (i / 10 % 4) {
        case 0:
          t.malloc_wf(pid, i % colors, 0x10000, 24, 32, location_key(0));
          break;
        case 1:
          t.free(pid, 0, 0x10000, location_key(0));
          break;
        case 2:
          tick(t, i);
          break;
        default:
          switch_process(t, pid, d);
      }
    } else if (stack.size() < 2 || (stack.size() < 60 && d.below(2) == 0)) {
      const call from = stack.empty() ? call{pid, 0} : stack.back();
      const u32 way = (from.object * functions + from.function) * 7 + d.below(callees) * 131;
      const call to{1 + way % objects, 1 + way / objects % (functions - 1)};
      t.flow_in(from.object, static_cast<int>(from.function), to.object,
                static_cast<int>(to.function));
      stack.push_back(to);
    } else {
      t.flow_out();
      stack.pop_back();
    }
  }
  return t;
}

namespace {

// Record `i` of a type, all different where the books tell them apart.
void write_record(trace& t, char tag, u32 i, u32 blocks) {
  const int number = static_cast<int>(i);
  const i64 addr = 0x10000 + i64{i} * 32;
  const i64 sym = 0x5000 + i64{i} * 8;
  const u32 id = 100 + i;
  switch (tag) {
    case 'H':
      t.hashloc(location_key(1 + i), "src/module.c:" + std::to_string(i));
      break;
    case 'a':
      t.malloc_wf(1, i % colors, addr, 20, 32, location_key(0));
      break;
    case 'n':
      t.malloc_nf(1, i % colors, addr, 20, 32, location_key(0));
      break;
    case 'f':
      t.free(1, i % colors, addr, location_key(0));
      break;
    case 'r':
      t.realloc(1, i % colors, addr, 24, 32, location_key(0));
      break;
    case 'S':
      t.sbrk(addr, 4096);
      break;
    case 'G':
      t.gap(addr, addr + 4096);
      break;
    case 'R':
      t.reserve(id, "oic:module:body");
      for (u32 b = 0; b < blocks; ++b)
        t.malloc_wf(id, 0, addr + i64{b} * 32, 20, 32, location_key(0));
      break;
    case 'c':
      t.color(i % colors, "color");
      break;
    case 'F':
      t.free_id(id, blocks * 32, 0, location_key(0));
      break;
    case 'Z':
      t.reset_id(id, blocks * 32, 0, location_key(0));
      break;
    case 'I':
      t.flow_in(1, 1 + number % 30, 1, 2 + number % 30);
      break;
    case 'O':
      t.flow_out();
      break;
    case 's':
      t.schedule(1 + i % 2, 2 - i % 2);
      break;
    case 'P':
      t.proc(id, "worker", 1);
      break;
    case 'X':
      t.proc_end(id);
      break;
    case 'B':
      t.special(1, -(number % 50), "event loop");
      break;
    case 'L':
      t.object(id);
      break;
    case 'p':
      t.link(1, id);
      break;
    case 'l':
      t.function(1, 1 + number % 30, "function_name");
      break;
    case 'b':
      t.global(1, number % 30, "global_name");
      break;
    case 'i':
      t.hosk_in(1, 0, number % 30, sym, "a, b");
      break;
    case 'o':
      t.hosk_out(1, 0, number % 30, "a, b");
      break;
    case 'Q':
      t.query_in(0, 'b');
      break;
    case 'q':
      t.query_out(1);
      break;
    case 'C':
      t.marker("a user's marker");
      break;
    case 'T':
      tick(t, i);
      break;
    case 'M':
      t.mallinfo(i * 64, i * 48, i * 16);
      break;
    case 'y':
      t.symbol_alloc(sym, 1, 8, "symbol_name");
      break;
    case 'D':
      t.symbol_dims(sym, 2, {10, 20, 0, 0});
      break;
    case 'Y':
      t.symbol_dd_name(sym, "type_name");
      break;
    case 'd':
      t.symbol(sym, number, 1 + number % 4);
      break;
    default:
      break;
  }
}

// The type of the record that has to come before one of this type; 0 where none has to.
char needs(char tag) {
  switch (tag) {
    case 'f':
    case 'r':
      return 'a';
    case 'F':
    case 'Z':
      return 'R';
    case 'O':
      return 'I';
    case 'X':
      return 'P';
    case 'p':
      return 'L';
    case 'q':
      return 'Q';
    case 'y':
    case 'D':
    case 'Y':
      return 'd';
    default:
      return 0;
  }
}

}  // namespace

trace one_type(char tag, u32 records, bool all, u32 blocks) {
  trace t = new_trace(std::string("TYPE_") + tag);
  for (u32 pid = 1; pid <= 2; ++pid) t.proc(pid, "worker").special(pid, 0, "top level");
  t.reserve(1, "oic:module:body", colors);
  for (u32 c = 0; c < colors; ++c) t.color(c, "color");
  t.hashloc(location_key(0), "src/module.c:0").object(1).link(1, 1).schedule(0, 1);
  for (int f = 0; f < 32; ++f) t.function(1, f, "function_name").global(1, f, "global_name");
  t.flow_in(1, 0, 1, 1).query_in(0, 'p', "select 1").query_out(1);

  // One bracket is open at a time, so query ends can't wait for all the starts.
  const char before = needs(tag);
  const bool in_turn = before == 'Q';
  for (u32 i = 0; i < records; ++i) {
    if (before != 0) write_record(t, before, i, blocks);
    if (in_turn && all) write_record(t, tag, i, blocks);
  }
  for (u32 i = 0; i < records && all && !in_turn; ++i) write_record(t, tag, i, blocks);
  return t;
}

}  // namespace kiv::bench
