#include "sample_profile.h"

namespace kiv::test {
namespace {

class numbers {
 public:
  std::uint64_t next() { return last_ += 1 + last_ / 3; }
  amount next_amount() { return {++small_, next() % 100'000'007, next() % 100'000'007}; }

 private:
  std::uint64_t last_ = 0, small_ = 0;
};

class text_writer {
 public:
  void line() { text_ += '\n'; }
  void add(const std::string& value) { text_ += '<' + value + '>'; }
  void add(const amount& a) { add_all(a.blocks, a.bytes, a.tot_bytes); }
  void add(const std::vector<id_level>& levels) {
    for (const auto& l : levels) add_all(l.id, l.bytes);
  }
  void add(distribution value) { add(static_cast<int>(value)); }
  template <class T>
  requires std::is_integral_v<T>
  void add(T value) { text_ += std::to_string(value) + ' '; }
  void add_all(const auto&... values) {
    (add(values), ...);
    line();
  }
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

}  // namespace

profile rich_profile(const std::string& run, std::int64_t pid, std::size_t scale) {
  numbers n;
  const std::string odd = std::string("it's \"odd\"/\n\xff\x01") + std::string(2, '\0') + "end";
  profile p;
  p.run = run;
  p.pid = pid;
  p.program = odd;
  p.environment = "env";
  p.account = "acc";
  p.host = "host";
  p.user = "user";
  p.description = "what\nfor";
  p.start = "2023-11-14 22:13:20.005";
  p.end = "2023-11-14 22:14:20.005";
  p.records = 4'000'000'000'000;
  p.heap_bytes = n.next();
  p.gap_bytes = -77;
  p.peak = {n.next_amount(), 12345, "2023-11-14 22:13:40.000"};
  p.losses = {{"cut", 3, "in file x"}, {"unknown record", 1, ""}};
  p.notes = {"a note", odd};
  p.ids = {{0, "unknown id", ""}, {7, odd, "oic:x"}, {4'294'967'295, "big", "r"}};
  p.colors = {{0, 0, "unknown colour"}, {1, 3, "red"}, {2, 3, "red"}};
  p.lines = {"unknown line", "a.c:1", odd};
  p.functions = {{"", "unknown"}, {"libx", "f"}, {"liby", "g<int, char>"}};
  p.paths = {{0, 0}, {0, 1}, {1, 2}, {2, 1}};
  p.processes = {{0, "default process"}, {static_cast<std::uint32_t>(pid), "app"}, {9, "app"}};
  p.queries = {"(no finished SQL operation)", "SELECT 1;\n"};
  for (std::size_t i = 0; i < 6 * scale; ++i) {
    block_group g;
    g.no_free = i % 2 == 1;
    g.id = static_cast<std::uint32_t>(i % 3);
    g.color = static_cast<std::uint32_t>(i % 3);
    g.line = static_cast<std::uint32_t>((i / 2) % 3);
    g.path = static_cast<std::uint32_t>(i % 4);
    g.process = static_cast<std::uint32_t>((i / 3) % 3);
    g.query = static_cast<std::uint32_t>((i / 5) % 2);
    g.resizes = i;
    for (auto& f : g.figures) f = n.next_amount();
    p.groups.push_back(g);
  }
  p.histograms = {{distribution::size, false, 1, -1, 4, 0},
                  {distribution::size, true, 2, 31, 5, 1ull << 40},
                  {distribution::lifetime, false, 1, 7, 6, 60}};
  p.heap = {{false, 2, 1, 3, 4096}, {true, 0, 0, 1, -16}};
  for (std::uint64_t i = 0; i < 3; ++i) {
    timeline_step s{i * 10, "2023-11-14 22:13:2" + std::to_string(i) + ".005", 90 + i, 80 + i, i,
                    {}};
    s.changed = {{static_cast<std::uint32_t>(i), 10 * i}, {2, 5 + i}};
    p.timeline.push_back(s);
  }
  p.marks = {{5, "t1", odd, 100, 2, {{1, 60}, {2, 40}}}, {9, "t2", "", 50, 1, {{1, 10}}}};
  return p;
}

run_profile small_run(const std::string& name, std::uint64_t leaked) {
  profile p;
  p.run = name;
  p.pid = 1;
  p.ids = {{0, "unknown id", ""}, {1, "cache", ""}};
  p.colors = {{0, 0, "unknown colour"}};
  p.lines = {"unknown line"};
  p.functions = {{"", ""}};
  p.paths = {{0, 0}};
  p.processes = {{0, "default process"}};
  p.queries = {"(no finished SQL operation)"};
  block_group g;
  g.id = 1;
  g[figure::made] = g[figure::live] = {1, leaked, leaked};
  p.groups.push_back(g);
  return {name, {p}};
}

std::string to_text(const profile& p) {
  text_writer t;
  t.add_all(p.run, p.pid, p.program, p.environment, p.account, p.host, p.user, p.description,
            p.start, p.end, p.records, p.heap_bytes, p.gap_bytes, p.from_rows, p.peak.live,
            p.peak.record, p.peak.time);
  for (const auto& v : p.losses) t.add_all(v.what, v.count, v.first);
  for (const auto& v : p.notes) t.add_all(v);
  for (const auto& v : p.ids) t.add_all(v.number, v.name, v.reserve_type);
  for (const auto& v : p.colors) t.add_all(v.id, v.number, v.name);
  for (const auto& v : p.lines) t.add_all(v);
  for (const auto& v : p.functions) t.add_all(v.object, v.name);
  for (const auto& v : p.paths) t.add_all(v.parent, v.function);
  for (const auto& v : p.processes) t.add_all(v.pid, v.name);
  for (const auto& v : p.queries) t.add_all(v);
  for (const auto& v : p.groups) {
    t.add_all(v.no_free, v.id, v.color, v.line, v.path, v.process, v.query, v.resizes);
    for (const auto& f : v.figures) t.add(f);
  }
  for (const auto& v : p.histograms)
    t.add_all(v.of, v.no_free, v.id, v.exponent, v.blocks, v.bytes);
  for (const auto& v : p.heap) t.add_all(v.gap, v.path, v.process, v.count, v.bytes);
  for (const auto& v : p.timeline) {
    t.add_all(v.last_record, v.time, v.highest_bytes, v.last_bytes, v.heap_bytes, v.changed);
  }
  for (const auto& v : p.marks) {
    t.add_all(v.record, v.time, v.text, v.live_bytes, v.live_blocks, v.changed);
  }
  return t.text();
}

}  // namespace kiv::test
