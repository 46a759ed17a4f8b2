#include "report/page_json.h"

#include <ostream>

namespace kiv::report {
namespace {

template <class Values, class Write>
void write_array(json_writer& json, const Values& values, Write write) {
  json.begin_array();
  for (const auto& value : values) write(value);
  json.end_array();
}

void write_numbers(json_writer& json, std::string_view key,
                   const std::vector<std::uint64_t>& numbers) {
  json.key(key);
  write_array(json, numbers, [&](std::uint64_t number) { json.number(number); });
}

void write_member(json_writer& json, std::string_view key, std::uint64_t number) {
  json.key(key);
  json.number(number);
}

void write_group(json_writer& json, const page_group& group) {
  json.begin_array();
  std::uint64_t mask = 0;
  for (std::size_t i = 0; i < measure_count; ++i) {
    const auto& [blocks, bytes] = group.counted_by[i];
    if (blocks != 0 || bytes != 0) mask |= std::uint64_t{1} << i;
  }
  for (const std::uint64_t number :
       {std::uint64_t{group.trace}, std::uint64_t{group.no_free}, std::uint64_t{group.id},
        std::uint64_t{group.color}, std::uint64_t{group.line}, std::uint64_t{group.path},
        std::uint64_t{group.process}, std::uint64_t{group.query}, mask}) {
    json.number(number);
  }
  for (std::size_t i = 0; i < measure_count; ++i) {
    if ((mask >> i & 1) == 0) continue;
    json.number(group.counted_by[i].blocks);
    json.number(group.counted_by[i].bytes);
  }
  json.end_array();
}

void write_timeline(json_writer& json, const page_data& page, const page_timeline& timeline) {
  json.begin_object();
  write_numbers(json, "records", timeline.records);
  json.key("times");
  write_array(json, timeline.times, [&](const std::string& time) { json.text(time); });
  write_numbers(json, "highest", timeline.highest);
  write_numbers(json, "last", timeline.last);
  write_numbers(json, "heap", timeline.heap);
  json.key("ids");
  write_array(json, timeline.ids, [&](std::uint32_t id) {
    json.number(std::uint64_t{page.content.groups.place_of(group_key::id, id)});
  });
  json.key("levels");
  write_array(json, timeline.levels, [&](const std::vector<std::uint64_t>& levels) {
    write_array(json, levels, [&](std::uint64_t bytes) { json.number(bytes); });
  });
  json.end_object();
}

void write_mark(json_writer& json, const page_data& page, const program_mark& mark) {
  json.begin_object();
  write_member(json, "record", mark.record);
  json.key("time");
  json.text(mark.time);
  json.key("text");
  json.text(page.content.shown->text(mark.text));
  write_member(json, "live_bytes", mark.live_bytes);
  write_member(json, "live_blocks", mark.live_blocks);
  json.end_object();
}

void write_bar(json_writer& json, const page_data& page, const page_bar& bar) {
  json.begin_object();
  json.key("of");
  json.text(bar.of == distribution::size ? "size" : "lifetime");
  json.key("no_free");
  json.boolean(bar.no_free);
  write_member(json, "id", page.content.groups.place_of(group_key::id, bar.id));
  json.key("exponent");
  json.number(std::int64_t{bar.exponent});
  write_member(json, "blocks", bar.blocks);
  write_member(json, "bytes", bar.bytes);
  json.end_object();
}

void write_page_run(json_writer& json, const page_data& page, std::size_t run) {
  json.begin_object();
  json.key("groups");
  write_array(json, page.content.groups.runs[run],
              [&](const page_group& group) { write_group(json, group); });
  json.key("traces");
  json.begin_array();
  for (std::size_t trace = 0; trace < page.runs[run].traces.size(); ++trace) {
    json.begin_object();
    json.key("timeline");
    write_timeline(json, page, page.content.timelines.runs[run][trace]);
    json.key("marks");
    write_array(json, page.content.marks.runs[run][trace],
                [&](const program_mark& mark) { write_mark(json, page, mark); });
    json.key("histograms");
    write_array(json, page.content.histograms.runs[run][trace],
                [&](const page_bar& bar) { write_bar(json, page, bar); });
    json.end_object();
  }
  json.end_array();
  json.end_object();
}

void write_page(json_writer& json, const page_data& page) {
  json.begin_object();
  json.key("version");
  json.text(page.options.version);
  json.key("left_out");
  write_array(json, page.left_out, [&](const std::string& sentence) { json.text(sentence); });
  json.key("names");
  json.begin_object();
  for (std::size_t key = 0; key < key_count; ++key) {
    if (static_cast<group_key>(key) == group_key::path) continue;
    json.key(key_names[key]);
    write_array(json, page.content.groups.names[key],
                [&](const shown_name& name) { json.text(name.text); });
  }
  json.end_object();
  json.key("paths");
  write_array(json, page.content.groups.paths, [&](const auto& path) {
    json.begin_array();
    json.number(std::uint64_t{path.first});
    json.number(std::uint64_t{path.second});
    json.end_array();
  });
  json.key("runs");
  json.begin_array();
  for (std::size_t run = 0; run < page.runs.size(); ++run) write_page_run(json, page, run);
  json.end_array();
  json.end_object();
}

}  // namespace

json_run_style page_style(shown_names& names) {
  return {.name =
              [&](json_writer& json, group_key by, std::uint32_t name) {
                if (by != group_key::path) {
                  json.key("name");
                  json.text(names.of(by, name).text);
                  return;
                }
                json.key("frames");
                write_array(json, names.frames(name),
                            [&](const shown_name* frame) { json.text(frame->text); });
              },
          .text = [&](const std::string& text) { return names.text(text); },
          .with_others = true};
}

void write_page_data(std::ostream& out, const page_data& page) {
  json_writer json(out, json_form::in_page);
  json.begin_object();
  json.key("runs");
  json.begin_array();
  for (std::size_t run = 0; run < page.runs.size(); ++run) {
    write_json_run(json, *page.runs[run].run, page.options.filter, page.figures[run],
                   page.content.lists.runs[run], page_style(*page.content.shown));
  }
  json.end_array();
  json.key("page");
  write_page(json, page);
  json.end_object();
}

}  // namespace kiv::report
