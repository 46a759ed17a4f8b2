// Writes the sample trace MIX: a small order service with three processes, made up to show what a
// recording of a plain program lacks.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "support/trace_builder.h"

namespace {

using kiv::test::trace;
using u32 = std::uint32_t;
using i64 = std::int64_t;

// Processes, objects (each with the allocation id of the same number), further allocation ids.
constexpr u32 server = 4101, batch = 4102, report = 4103;
constexpr u32 init = 1, orders = 2, stock = 3, print = 4;
constexpr u32 server_id = 20, batch_id = 21, report_id = 22, lock_id = 30, xml_id = 31;
constexpr u32 database_id = 32, statement_id = 33, session_id = 34, cache_id = 35;

constexpr const char* source_lines[] = {"orders.c:118",  "orders.c:240", "stock.c:77",
                                        "session.c:412", "sql.c:903",    "xmltree.c:55",
                                        "cache.c:31",    "heap.c:260"};
i64 at(u32 line) { return 0x5a17'0000'3b00 + i64{line} * 0x1d3; }

// The service's memory: hands out addresses and knows what each id holds, as the traced allocator
// does when it frees or resets an id.
class service {
 public:
  trace t;

  i64 take(u32 id, u32 color, u32 size, u32 line) {
    const block b{id, color, rounded(size)};
    const i64 addr = place(b);
    t.malloc_wf(id, color, addr, size, b.tot_size, at(line));
    held_wf_[id] += b.tot_size;
    return addr;
  }
  void take_for_good(u32 id, u32 color, u32 size, u32 line) {
    const block b{id, color, rounded(size)};
    t.malloc_nf(id, color, place(b), size, b.tot_size, at(line));
    held_nf_[id] += b.tot_size;
  }
  void give_back(i64 addr, u32 line) {
    const block& b = blocks_[addr];
    t.free(b.id, b.color, addr, at(line));
    held_wf_[b.id] -= b.tot_size;
  }
  void resize(i64 addr, u32 size, u32 line) {
    block& b = blocks_[addr];
    held_wf_[b.id] += rounded(size) - b.tot_size;
    b.tot_size = rounded(size);
    t.realloc(b.id, b.color, addr, size, b.tot_size, at(line));
  }
  i64 move(i64 addr, u32 size, u32 line) {
    const block b{blocks_[addr].id, blocks_[addr].color, rounded(size)};
    const i64 moved = place(b);
    t.malloc_wf(b.id, b.color, moved, size, b.tot_size, at(line), addr);
    held_wf_[b.id] += b.tot_size;
    give_back(addr, line);
    return moved;
  }
  void free_id(u32 id, u32 line) {
    t.free_id(id, held_wf_[id], held_nf_[id], at(line));
    held_wf_[id] = held_nf_[id] = 0;
  }
  void reset_id(u32 id, u32 line) {
    t.reset_id(id, held_wf_[id], held_nf_[id], at(line));
    held_wf_[id] = held_nf_[id] = 0;
  }
  void run(u32 pid) {
    t.schedule(running_, pid);
    running_ = pid;
  }
  // Time goes on by so many milliseconds.
  void wait(u32 ms) {
    now_ms_ += ms;
    t.time(1'700'000'000 + now_ms_ / 1000, now_ms_ % 1000 * 1'000'000);
  }

 private:
  struct block {
    u32 id, color, tot_size;
  };
  static u32 rounded(u32 size) { return (size + 8 + 15) / 16 * 16; }

  // The heap grows by pages; somebody else took the page after each third growth.
  i64 place(const block& b) {
    if (next_ + b.tot_size > top_) {
      if (++growths_ % 3 == 0) {
        t.gap(top_, top_ + 4096);
        next_ = top_ += 4096;
      }
      t.sbrk(top_, 8192);
      top_ += 8192;
      t.mallinfo(growths_ * 8192, static_cast<u32>(next_ - first_), 0);
    }
    const i64 addr = next_;
    next_ += b.tot_size;
    blocks_[addr] = b;
    return addr;
  }

  static constexpr i64 first_ = 0x5581'4c00'0000;
  i64 next_ = first_, top_ = first_;
  u32 growths_ = 0, running_ = 0, now_ms_ = 0;
  std::map<i64, block> blocks_;
  std::map<u32, u32> held_wf_, held_nf_;
};

void announce(service& s) {
  trace& t = s.t;
  t.pid(server).runid("MIX").progname("orderd").attr("hostname", "mill").addr_width(8);
  t.start(1'700'000'000).end(1'700'000'004, 500'000'000);
  for (u32 n = 0; n < std::size(source_lines); ++n) t.hashloc(at(n), source_lines[n]);

  t.proc(server, "server -l 8080").special(server, 0, "server main");
  t.special(server, -1, "idle");
  s.run(server);
  t.reserve(init, "oic::0:init").reserve(orders, "oic:orders", 2).color(0, "header");
  t.color(1, "lines").reserve(stock, "oic:stock").color(0, "item").reserve(print, "oic:print:pdf");
  t.color(0, "page");
  const struct {
    u32 object;
    std::vector<const char*> functions;
  } code[] = {{init, {"start", "stop"}},
              {orders, {"take_order", "price_order", "close_order"}},
              {stock, {"find_item", "reserve_item"}},
              {print, {"print_order"}}};
  for (const auto& [object, functions] : code) {
    t.object(object);
    for (u32 f = 0; f < functions.size(); ++f) {
      t.function(object, static_cast<int>(f + 1), functions[f]);
    }
  }
  t.global(orders, 0, "on_open").global(orders, 1, "on_total").global(orders, 2, "on_close");
  for (const u32 object : {init, orders, stock}) t.link(server, object);

  t.reserve(server_id, "proc:4101:server", 1, at(3)).color(0, "session");
  t.reserve(lock_id, "dlock:stock:write").reserve(database_id, "qdb:orders.db", 2, at(4));
  t.color(0, "cursor").color(1, "page");
  t.reserve(statement_id, "make_new_sql_stmt:select").color(0, "text");
  t.reserve(session_id, "dbs_session:77").reserve(cache_id, "price cache", 3, at(6), 1024);
  t.color(0, "key").color(2, "value");
}

// One statement: prepared once, then bound, executed, fetched and closed.
void query(service& s, u32 qid, const std::string& text, int fetches) {
  trace& t = s.t;
  t.query_in(0, 'p', text);
  const i64 cursor = s.take(database_id, 0, 96, 4);
  s.take_for_good(statement_id, 0, static_cast<u32>(text.size()) + 1, 4);
  t.query_out(qid);
  t.query_in(0, 'b').query_out(qid);
  t.query_in(0, 'e').query_out(qid);
  for (int row = 0; row < fetches; ++row) {
    t.query_in(0, 'f');
    s.take_for_good(database_id, 1, 512, 4);
    t.query_out(qid);
  }
  t.query_in(0, 'c');
  s.give_back(cursor, 4);
  t.query_out(qid);
  s.wait(3);
}

void variables(trace& t, i64 first) {
  t.symbol(first, 0, 2).symbol_alloc(first, 1, 4, "order_nr");
  t.symbol(first + 8, 1, 2).symbol_alloc(first + 8, 4, 40, "");
  t.symbol(first + 16, 0, 1).symbol_alloc(first + 16, 2, 1600, "amount");
  t.symbol_dims(first + 16, 2, {10, 20, 0, 0});
  t.symbol(first + 24, 7, 3).symbol_dd_name(first + 24, "money");
  t.symbol_alloc(first + 24, 0x100042, 8, "turnover");
  t.symbol(first + 32, 3, 4).symbol_alloc(first + 32, 0x8001, 64, "");
}

// An order of some lines; the last line of every third order is never given back.
void order(service& s, u32 number) {
  trace& t = s.t;
  t.flow_in(server, 0, orders, 1);
  if (number < 3) variables(t, 0x7000 + number * 0x100);
  t.hosk_in(orders, 1, 0, 0x7000, "order " + std::to_string(number));
  i64 head = s.take(orders, 0, 120, 0);
  std::vector<i64> lines;
  for (u32 line = 0; line < 2 + number % 3; ++line) {
    t.flow_in(orders, 1, stock, 1).flow_in(stock, 1, stock, 2);
    lines.push_back(s.take(orders, 1, 40 + 16 * line, 1));
    s.take_for_good(stock, 0, 24, 2);
    t.flow_out().flow_out();
  }
  t.hosk_out(orders, 1, 0, "");
  t.flow_in(orders, 1, orders, 2).hosk_in(orders, 2, 1, 0x7018, "total");
  s.resize(lines[0], 90, 1);
  s.resize(lines[1], 30, 1);
  s.take_for_good(cache_id, number % 3, 60 + number, 6);
  t.hosk_out(orders, 2, 1, "total").flow_out();
  if (number % 3 == 1) head = s.move(head, 400, 0);
  if (number % 3 != 0) s.give_back(lines.back(), 1);
  lines.pop_back();
  for (const i64 line : lines) s.give_back(line, 1);
  s.give_back(head, 0);
  t.flow_out();
  s.wait(40);
}

void write_mix(service& s, const std::string& run, u32 orders_taken) {
  trace& t = s.t;
  announce(s);
  t.runid(run);
  s.wait(12);
  t.marker("service is up");
  const i64 session = s.take(server_id, 0, 2000, 3);
  t.flow_in(server, 0, init, 1).flow_in(init, 1, orders, 3).flow_out().flow_out();
  query(s, 7001, "select nr, name from item where stock > 0 order by name", 3);
  for (u32 number = 0; number < 5; ++number) order(s, number);
  t.marker("first five orders are in");

  // A night job starts beside the server, with a document of its own.
  t.proc(batch, "batch -n", server).special(batch, 0, "batch main").link(batch, orders);
  t.reserve(batch_id, "proc:4102:batch").color(0, "work");
  t.reserve(xml_id, "xml_tree:4102:price list", 1, at(5)).color(0, "node");
  s.run(batch);
  t.flow_in(batch, 0, orders, 3);
  for (u32 node = 0; node < 6; ++node) s.take_for_good(xml_id, 0, 48 + node * 8, 5);
  s.wait(25);
  t.next_file();
  s.reset_id(cache_id, 6);
  query(s, 7002, "update item set price = price * 1.02", 0);
  s.free_id(xml_id, 5);
  const i64 work = s.take(batch_id, 0, 3000, 7);
  s.run(server);
  for (u32 number = 5; number < orders_taken; ++number) order(s, number);
  s.run(batch);
  s.give_back(work, 7);
  t.flow_out();
  s.free_id(batch_id, 7);
  t.proc_end(batch);

  t.proc(report, "report", server).special(report, 0, "report main").link(report, print);
  t.reserve(report_id, "proc:4103:report").color(0, "layout");
  s.run(report);
  for (u32 page = 0; page < 4; ++page) {
    t.flow_in(report, 0, print, 1);
    s.give_back(s.take(print, 0, 5000, 7), 7);
    t.flow_out();
    s.take(report_id, 0, 300, 7);  // kept until the process's id is freed
    s.wait(60);
  }
  s.free_id(report_id, 7);
  t.proc_end(report);

  s.run(server);
  s.give_back(session, 3);
  s.free_id(statement_id, 4);
  t.marker("service goes down").proc_end(server);
}

}  // namespace

int main(int argc, char** argv) {
  // Another run of the same service has another name and takes another number of orders.
  if (argc != 2 && argc != 4) {
    std::fputs("usage: make_mix DIR [RUN ORDERS]\n", stderr);
    return 1;
  }
  const std::string run = argc == 4 ? argv[2] : "MIX";
  service s;
  write_mix(s, run, argc == 4 ? static_cast<u32>(std::strtoul(argv[3], nullptr, 10)) : 8);
  if (!s.t.write(argv[1], "./" + run)) {
    std::fprintf(stderr, "make_mix: cannot write to %s\n", argv[1]);
    return 2;
  }
  std::printf("%zu records in %zu data files\n", s.t.record_count(), s.t.file_count());
}
