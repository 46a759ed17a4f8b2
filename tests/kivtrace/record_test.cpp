#include <functional>
#include <set>

#include "kivtrace/written_run.h"
#include "trace/data_files.h"
#include "trace/decode.h"
#include "trace/file_source.h"
#include "trace/record_types.h"

namespace kiv::test {
namespace {

// A call of the interface, and what must be read from the record that it wrote.
struct written_record {
  kiv_type type;
  std::function<int(kiv_trace*)> write;
  std::function<void(record_cursor&, const record_layout&)> expect;
};

template <class Event>
written_record record(std::function<int(kiv_trace*)> write, Event expected) {
  return {Event::type, std::move(write),
          [expected](record_cursor& cursor, const record_layout& layout) mutable {
            Event read = decode<Event>(cursor, layout);
            EXPECT_TRUE(read.numbers() == expected.numbers());
            if constexpr (requires { expected.text(); }) {
              EXPECT_EQ(read.text(), expected.text());
            }
          }};
}

// Every type, with numbers that differ within a record. `at`: added to addresses.
std::vector<written_record> every_type(std::uint64_t at) {
  using trace = kiv_trace*;
  const auto p = [at](std::int64_t number) { return static_cast<std::int64_t>(at) + number; };
  return {
      record([=](trace t) { return kiv_trace_hashloc(t, at + 1, "a.c:1"); },
             KivHashLoc{p(1), "a.c:1"}),
      record([=](trace t) { return kiv_trace_malloc_wf(t, 1, 2, at + 3, at + 4, 5, 6, at + 7); },
             KivMallocWF{1, 2, p(3), p(4), 5, 6, p(7)}),
      record([=](trace t) { return kiv_trace_malloc_nf(t, 1, 2, at + 3, 4, 5, at + 6); },
             KivMallocNF{1, 2, p(3), 4, 5, p(6)}),
      record([=](trace t) { return kiv_trace_free(t, 1, 4294967295, at + 3, at + 4); },
             KivFree{1, 4294967295, p(3), p(4)}),
      record([=](trace t) { return kiv_trace_free_realloc(t, 1, 2, at + 3, at + 4, 5, 6, at + 7); },
             KivFreeRealloc{1, 2, p(3), p(4), 5, 6, p(7)}),
      record([=](trace t) { return kiv_trace_sbrk(t, at + 1, 4294967295); },
             KivSbrk{p(1), 4294967295}),
      record([=](trace t) { return kiv_trace_sbrk_gap(t, at + 1, at + 2); },
             KivSbrkGap{p(1), p(2)}),
      record([=](trace t) { return kiv_trace_reserve_id(t, 1, 2, at + 3, 4, "oic:x"); },
             KivReserveId{1, 2, p(3), 4, "oic:x"}),
      record([](trace t) { return kiv_trace_reserve_id_colors(t, 1, "r\xC3\xB6t"); },
             KivReserveIdColors{1, "r\xC3\xB6t"}),
      record([=](trace t) { return kiv_trace_free_id(t, 1, at + 2, 3, 4); },
             KivFreeId{{1, p(2), 3, 4}}),
      record([=](trace t) { return kiv_trace_reset_id(t, 1, at + 2, 3, 4); },
             KivResetId{{1, p(2), 3, 4}}),
      record([](trace t) { return kiv_trace_flow_in(t, 1, -2, 3, 4); }, KivFlowIn{1, -2, 3, 4}),
      record([](trace t) { return kiv_trace_flow_out(t); }, KivFlowOut{}),
      record([](trace t) { return kiv_trace_schedule(t, 1, 2); }, KivSchedule{1, 2}),
      record([](trace t) { return kiv_trace_process_start(t, 1, 2, "srv -v"); },
             KivProcessStart{1, 2, "srv -v"}),
      record([](trace t) { return kiv_trace_process_end(t, 1); }, KivProcessEnd{1}),
      record([](trace t) { return kiv_trace_process_special_load(t, 1, -2, "main"); },
             KivProcessSpecialLoad{1, -2, "main"}),
      record([](trace t) { return kiv_trace_object_load(t, 1); }, KivObjectLoad{1}),
      record([](trace t) { return kiv_trace_object_link(t, 1, 2); }, KivObjectLink{1, 2}),
      record([](trace t) { return kiv_trace_object_function_load(t, 1, 2, "take"); },
             KivObjectFunctionLoad{{1, 2, "take"}}),
      record([](trace t) { return kiv_trace_object_global_load(t, 1, 2, "on_open"); },
             KivObjectGlobalLoad{{1, 2, "on_open"}}),
      record([=](trace t) { return kiv_trace_hosk_flow_in(t, 1, 2, 3, at + 4, "a, 'b'"); },
             KivHoskFlowIn{1, 2, 3, p(4), "a, 'b'"}),
      record([](trace t) { return kiv_trace_hosk_flow_out(t, 1, 2, 3, ""); },
             KivHoskFlowOut{1, 2, 3, ""}),
      record([](trace t) { return kiv_trace_query_in(t, 1, 'p', "select"); },
             KivQueryIn{1, 'p', "select"}),
      record([](trace t) { return kiv_trace_query_out(t, 1, 2); }, KivQueryOut{1, 2}),
      record([](trace t) { return kiv_trace_marker(t, nullptr); }, KivMarker{""}),
      record([](trace t) { return kiv_trace_timestamp(t, 1, 2); }, KivTimeStamp{1, 2}),
      record([](trace t) { return kiv_trace_mallinfo(t, 1, 2, 3); }, KivMallInfo{1, 2, 3}),
      record([=](trace t) { return kiv_trace_symbol_alloc(t, at + 1, 2, 3, "sum"); },
             KivSymbolAlloc{p(1), 2, 3, "sum"}),
      record([=](trace t) { return kiv_trace_symbol_dims(t, at + 1, 2, 3, 4, 5, 6); },
             KivSymbolDims{p(1), 2, {3, 4, 5, 6}}),
      record([=](trace t) { return kiv_trace_symbol_dd_name(t, at + 1, "money"); },
             KivSymbolDdName{p(1), "money"}),
      record([=](trace t) { return kiv_trace_symbol_new_sym(t, at + 1, 2, -3); },
             KivSymbolNew{p(1), 2, -3}),
  };
}

void expect_round_trip(std::int32_t byte_order, std::int32_t address_width) {
  written_run run;
  run.options.byte_order = byte_order;
  run.options.address_width = address_width;
  run.options.recorded_directory = run.directory().c_str();
  const auto records = every_type(address_width == 8 ? 0x7f12'3456'7000 : 0x1234'5000);
  kiv_trace* trace = run.open();
  for (const auto& one : records) EXPECT_EQ(one.write(trace), 0) << kiv_trace_error();
  ASSERT_EQ(kiv_trace_close(trace), 0);

  const read_back read(run.header_path());
  ASSERT_EQ(read.result, 0);
  disk_files disk;
  diagnostics faults;
  const record_layout layout = read.header.layout();
  data_files files(read.header.files(), read.header.little_endian(), layout, disk, faults);
  ASSERT_TRUE(files.rd_open());
  for (const auto& one : records) {
    SCOPED_TRACE(static_cast<char>(one.type));
    ASSERT_FALSE(files.eof());
    ASSERT_EQ(files.cursor().read_tag(), static_cast<signed char>(one.type));
    files.cursor().read_size();
    one.expect(files.cursor(), layout);
    ASSERT_TRUE(files.cursor().at_record_end());
  }
  EXPECT_TRUE(files.eof());
}

TEST(WrittenRecords, EveryTypeIsReadAsItWasWrittenInEachByteOrderAndAddressWidth) {
  std::set<kiv_type> declared, tried;
  for (const record_type& type : record_types) declared.insert(type.type);
  for (const auto& one : every_type(0)) tried.insert(one.type);
  ASSERT_EQ(tried, declared);
  for (const std::int32_t order : {KIV_TRACE_LITTLE_ENDIAN, KIV_TRACE_BIG_ENDIAN}) {
    for (const std::int32_t width : {4, 8}) expect_round_trip(order, width);
  }
}

TEST(WrittenRecords, WhatNoRecordCanHoldIsRefusedAndLeavesTheTraceOpen) {
  written_run run;
  run.options.address_width = 4;
  kiv_trace* trace = run.open();
  constexpr std::uint64_t largest = 0xffff'ffff, too_much = largest + 1;
  EXPECT_EQ(kiv_trace_sbrk(trace, 8, too_much), -1);
  EXPECT_STREQ(kiv_trace_error(), "a size of more than 4294967295 bytes");
  EXPECT_EQ(kiv_trace_sbrk(trace, too_much, 8), -1);
  EXPECT_EQ(kiv_trace_hashloc(trace, std::uint64_t{1} << 63, "x"), -1);
  EXPECT_STREQ(kiv_trace_error(), "an address, location or symbol of more than 4 bytes");
  EXPECT_EQ(kiv_trace_sbrk(trace, largest, largest), 0);
  EXPECT_EQ(kiv_trace_sbrk(trace, ~std::uint64_t{0}, 8), 0) << "it is -1 in four bytes too";
  EXPECT_EQ(kiv_trace_close(trace), -1);
  EXPECT_STREQ(kiv_trace_error(), "left open, since records were refused");
  EXPECT_FALSE(read_back(run.header_path()).header.closed());
  const table sbrk = run.analysed().rows("sbrk");
  ASSERT_EQ(sbrk.size(), 2U);
  EXPECT_EQ(sbrk.number(0, "size_or_c_sbrk"), static_cast<std::int64_t>(largest));
}

TEST(WrittenRecords, ATextIsCutWhereItsRecordIsFull) {
  const written_run run;
  kiv_trace* trace = run.open();
  const std::string text(70'000, 't');
  EXPECT_EQ(kiv_trace_object_function_load(trace, 1, 2, text.c_str()), 0);
  EXPECT_EQ(kiv_trace_marker(trace, "next"), 0);
  ASSERT_EQ(kiv_trace_close(trace), 0);
  ASSERT_EQ(run.data()[0].size(), 3U + 65535 + 3 + 5);
  EXPECT_EQ(run.data()[0].find('\0', 11), 3U + 65534);
  EXPECT_EQ(markers(run.analysed()), std::vector<std::string>{"next"});
}

}  // namespace
}  // namespace kiv::test
