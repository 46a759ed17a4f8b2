#include "views.h"

#include <algorithm>
#include <map>

#include "block_groups.h"
#include "support_db.h"
#include "view_keys.h"

namespace kiv::db::test {
namespace {

using kiv::test::table;

struct figures {
  std::int64_t allocs = 0, alloc_bytes = 0, live_blocks = 0, live_bytes = 0, peak_bytes = 0,
               short_lived = 0;
  bool operator==(const figures&) const = default;
};

struct block {
  std::int64_t made, size;
  std::string key;
};

// Replays the rows of `memory` and `freemem` the way a reader with a pencil would.
class ledger {
 public:
  ledger(const run_result& run, std::initializer_list<std::string_view> key_columns)
      : memory_(run.rows("memory")) {
    const table freemem = run.rows("freemem");
    for (std::size_t i = 0; i < freemem.size(); ++i) {
      ended_[freemem.number(i, "free_rec")].push_back(
          {freemem.number(i, "alloc_rec"), freemem.text(i, "type") == "f"});
    }
    std::int64_t peak = 0;
    for (std::size_t i = 0; i < memory_.size(); ++i) {
      const std::int64_t rec = memory_.number(i, "rec");
      std::string key;
      for (const auto& column : key_columns) {
        key += (key.empty() ? "" : "|") + std::string(memory_.text(i, column));
      }
      for (const auto& [made, freed] : ended_[rec]) {
        const block& b = live_.at(made);
        total_ -= b.size;
        if (freed && rec - made <= 100) ++groups_[b.key].short_lived;
        live_.erase(made);
      }
      const std::string_view type = memory_.text(i, "type");
      if (type == "a" || type == "n" || (type == "r" && memory_.number(i, "linked_rec") != 0)) {
        const std::int64_t size = memory_.number(i, "size");
        live_[rec] = {rec, size, key};
        total_ += size;
        groups_[key].allocs += type != "r";
        groups_[key].alloc_bytes += type == "r" ? 0 : size;
      }
      if (total_ > peak) {
        peak = total_;
        at_peak_ = live_;
        peak_rec_ = rec;
      }
    }
    for (const auto& [rec, b] : at_peak_) groups_[b.key].peak_bytes += b.size;
    for (const auto& [rec, b] : live_) {
      groups_[b.key].live_blocks += 1;
      groups_[b.key].live_bytes += b.size;
    }
  }

  const std::map<std::string, figures>& groups() const { return groups_; }
  std::int64_t live() const { return total_; }
  std::int64_t peak_rec() const { return peak_rec_; }
  const table& memory() const { return memory_; }

 private:
  table memory_;
  std::map<std::int64_t, std::vector<std::pair<std::int64_t, bool>>> ended_;
  std::map<std::int64_t, block> live_, at_peak_;
  std::map<std::string, figures> groups_;
  std::int64_t total_ = 0, peak_rec_ = 0;
};

class Views : public db_test {
 protected:
  std::int64_t number(const std::string& sql) { return db_.number(sql); }

  std::map<std::string, figures> from_views(const std::string& key, const std::string& columns) {
    std::map<std::string, figures> all;
    statement q = db_.prepare("SELECT " + columns +
                              ", allocs, alloc_bytes, live_blocks, live_bytes FROM by_" + key);
    const int names = static_cast<int>(std::count(columns.begin(), columns.end(), ',')) + 1;
    const auto key_of = [&](const statement& row) {
      std::string text;
      for (int i = 0; i < names; ++i) text += (i ? "|" : "") + std::string(row.text(i));
      return text;
    };
    while (q && q.step()) {
      all[key_of(q)] = {q.number(names), q.number(names + 1), q.number(names + 2),
                        q.number(names + 3)};
    }
    statement p = db_.prepare("SELECT " + columns + ", peak_bytes FROM peak_by_" + key);
    while (p && p.step()) all[key_of(p)].peak_bytes = p.number(names);
    statement c = db_.prepare("SELECT " + columns + ", short_lived FROM churn_by_" + key);
    while (c && c.step()) all[key_of(c)].short_lived = c.number(names);
    return all;
  }
};

TEST_F(Views, AgreeWithAReplayOfTheRows) {
  for (const std::string sample : {"MIX", "SQL1"}) {
    const run_result run = analyse(sample);
    std::filesystem::remove(dir_ / "test.db");
    import(dir_ / sample);
    const struct {
      std::string key, view_columns;
      std::initializer_list<std::string_view> columns;
    } keys[] = {
        {"id", "malid", {"malid"}},         {"color", "malid, color", {"malid", "color"}},
        {"line", "location", {"location"}}, {"arc", "pid, arc", {"pid", "arc"}},
        {"process", "pid", {"pid"}},
    };
    for (const auto& k : keys) {
      const ledger expected(run, k.columns);
      const auto actual = from_views(k.key, k.view_columns);
      ASSERT_GT(actual.size(), 1u - (k.key == "process"));
      EXPECT_TRUE(actual == expected.groups()) << sample << " by " << k.key;
    }
    const ledger all(run, {"type"});
    EXPECT_EQ(number("SELECT peak_rec FROM peak"), all.peak_rec());
    EXPECT_EQ(number("SELECT sum(size) FROM live_blocks"), all.live());
    EXPECT_EQ(number("SELECT sum(live_bytes) FROM by_query"), all.live());
    EXPECT_EQ(number("SELECT sum(blocks) FROM lifetimes"), number("SELECT count(*) FROM block"));
  }
}

// Every memory row carries the analyser's own running totals.
TEST_F(Views, AgreeWithTheTotalsInTheRows) {
  const run_result run = analyse("MIX");
  import(dir_ / "MIX");
  const table memory = run.rows("memory");
  std::map<std::string, std::int64_t> live, sum, count;
  std::int64_t global = 0, peak = 0;
  for (std::size_t i = 0; i < memory.size(); ++i) {
    global = memory.number(i, "global_live_size") + memory.number(i, "global_nf_size");
    peak = std::max(peak, global);
    const std::string id(memory.text(i, "malid"));
    sum[id] = memory.number(i, "malid_sum_size");
    count[id] = memory.number(i, "malid_sum_count");
    // The row of an id's end shows its book just before it is cleared.
    const bool cleared = memory.text(i, "type") == "F" || memory.text(i, "type") == "Z";
    live[id] = cleared ? 0 : memory.number(i, "malid_mem_size");
  }
  EXPECT_EQ(number("SELECT live_bytes FROM run_summary"), global);
  EXPECT_EQ(number("SELECT peak_bytes FROM run_summary"), peak);
  EXPECT_EQ(number("SELECT sum(live_change) FROM marker_change"), global);
  EXPECT_EQ(number("SELECT sum(live_change) FROM marker_change_by_id"), global);
  ASSERT_GT(live.size(), 5u);
  for (const auto& [id, bytes] : live) {
    const std::string where = " WHERE malid = " + id;
    EXPECT_EQ(number("SELECT live_bytes FROM by_id" + where), bytes) << id;
    EXPECT_EQ(number("SELECT sum(live_change) FROM marker_change_by_id" + where), bytes) << id;
    // The id's book counts a resize that grows a block as an allocation of the difference.
    EXPECT_EQ(number("SELECT sum(size_change) FROM block" + where +
                     " AND type <> 'n' AND "
                     "size_change > 0"),
              sum[id])
        << id;
    EXPECT_EQ(number("SELECT count(*) FROM block" + where +
                     " AND (type = 'a' OR type = 'r' AND "
                     "size_change > 0)"),
              count[id])
        << id;
  }
  EXPECT_EQ(number("SELECT max(sbrk_total) FROM heap_growth"),
            number("SELECT sum(bytes) FROM heap_by_arc"));
}

TEST_F(Views, NamesAndLosses) {
  const std::string time = "2023-11-14 22:13:20.005";
  // Rows of `memory` from the columns that matter here; all others are 0.
  const auto memory = [&](char type, int rec, int malid, int location, int size, int linked) {
    std::string row;
    for (const auto& c : find_csv_table("memory")->columns) {
      row += row.empty() ? "" : ";";
      if (!c.label.empty())
        row += c.label;
      else if (c.name == "run_id")
        row += "R";
      else if (c.name == "type")
        row += type;
      else if (c.name == "rec")
        row += std::to_string(rec);
      else if (c.name == "malid")
        row += std::to_string(malid);
      else if (c.name == "location")
        row += std::to_string(location);
      else if (c.name == "size" || c.name == "size_change")
        row += std::to_string(size);
      else if (c.name == "linked_rec")
        row += std::to_string(linked);
      else if (c.type == column_type::time)
        row += time;
      else if (c.type == column_type::i64 || c.type == column_type::u64)
        row += "0";
    }
    return row + "\n";
  };
  write_run("R", {{"memory.1", memory('a', 1, 5, 9, 10, 0) + memory('a', 2, 6, 8, 20, 0) +
                                   memory('f', 3, 5, 9, 0, 0) + memory('r', 3, 5, 9, 40, 0)},
                  {"malid.1", "R;0;5;0;lock x;general;;;0;" + time + ";" + time +
                                  ";0;1\n"
                                  "R;0;5;0;announced twice;general;;;0;" +
                                  time + ";" + time + ";0;1\n"},
                  {"hashloc.1", "R;0;8;a.c:1\n"},
                  {"runs.1", "R;0;" + time + ";" + time + ";p;e;a;h;u;d;1;2;3\n"}});
  import(dir_.path());
  ASSERT_EQ(row("SELECT count(*) FROM rejected_rows"), "0");
  EXPECT_EQ(rows("SELECT malid, id_name, live_bytes FROM by_id ORDER BY malid"),
            (std::vector<std::string>{"5|announced twice|10", "6|unknown id|20"}));
  EXPECT_EQ(rows("SELECT source_line FROM by_line ORDER BY location"),
            (std::vector<std::string>{"a.c:1", "unknown line"}));
  EXPECT_EQ(row("SELECT process_name FROM by_process"), "default process");
  EXPECT_EQ(row("SELECT caller, callee FROM by_arc"), "0:0|0:0");
  EXPECT_EQ(row("SELECT * FROM lost"), "R|0|1|1|1|1|0");
}

// What the import stores is what the views would compute.
TEST_F(Views, StoredViewsEqualTheirQueries) {
  analyse("SQL1");
  import(dir_ / "SQL1");
  analyse("MIX");
  import(dir_ / "MIX");
  for (const auto& v : views()) {
    if (!v.stored) {
      EXPECT_TRUE(db_.prepare("SELECT * FROM " + v.name)) << v.name << ": " << db_.error();
      continue;
    }
    const std::string query = v.name + "_query";
    EXPECT_EQ(row("SELECT count(*) FROM " + v.name), row("SELECT count(*) FROM " + query));
    for (const auto& [a, b] : {std::pair(v.name, query), std::pair(query, v.name)}) {
      EXPECT_EQ(
          row("SELECT count(*) FROM (SELECT * FROM " + a + " EXCEPT SELECT * FROM " + b + ")"), "0")
          << a << " EXCEPT " << b;
    }
    EXPECT_GT(number("SELECT count(*) FROM " + v.name), 1) << v.name;
  }
}

// A marker's live memory is one look-up; a scan per marker would take minutes on a large trace.
TEST_F(Views, LookMarkersUp) {
  ASSERT_TRUE(db_.open(dir_ / "test.db", open_mode::create));
  int look_ups = 0;
  for (const auto& step : rows("EXPLAIN QUERY PLAN SELECT * FROM marker_change")) {
    if (step.find("memory_by_rec") == std::string::npos) continue;
    EXPECT_NE(step.find("(run_id=? AND main_pid=? AND rec=?)"), std::string::npos) << step;
    ++look_ups;
  }
  EXPECT_GE(look_ups, 1);
}

TEST_F(Views, AddUpGroupsThatCameInParts) {
  analyse("MIX");
  import(dir_ / "MIX");
  std::map<std::string, std::vector<std::string>> whole;
  for (const auto& v : views())
    whole[v.name] = rows("SELECT * FROM " + v.name + " ORDER BY 1, 2, 3, 4");
  ASSERT_TRUE(db_.exec("DELETE FROM block_groups"));
  ASSERT_TRUE(fill_block_groups(db_, "MIX", 3));
  EXPECT_GT(rows("SELECT 1 FROM block_groups").size(), whole["block_groups"].size());
  for (const auto& v : views()) {
    if (v.name == "block_groups") continue;
    EXPECT_EQ(rows("SELECT * FROM " + v.name + " ORDER BY 1, 2, 3, 4"), whole[v.name]) << v.name;
  }
}

}  // namespace
}  // namespace kiv::db::test
