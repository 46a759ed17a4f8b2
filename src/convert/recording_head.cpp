#include "convert/recording_head.h"

#include <fmt/format.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace kiv::convert {
namespace {

constexpr std::uint64_t largest_page = std::uint64_t{1} << 32;  // bytes
constexpr std::size_t longest_command = std::size_t{2} << 20;   // what the system takes

bool read_version(std::string_view line, recording_head& head, std::string& refusal) {
  std::uint64_t recorder = 0;
  line_fields fields(line.substr(line.empty() ? 0 : 1));
  if (!line.starts_with("v ") || !fields.take(recorder) || !fields.take(head.format)) {
    refusal = "is no recording of heaptrack";
    return false;
  }
  if (head.format == 0 || head.format > recording_head::newest_format) {
    refusal = fmt::format("has the recorder's file format {}; 1 to {} can be read", head.format,
                          recording_head::newest_format);
    return false;
  }
  head.recorder = fmt::format("heaptrack {:x}.{:x}.{:x}", recorder >> 16 & 0xff,
                              recorder >> 8 & 0xff, recorder & 0xff);
  return true;
}

bool read_page_size(std::string_view line, std::uint64_t& page_size) {
  if (!line.starts_with("I ")) return false;
  line_fields fields(line.substr(1));
  std::uint64_t size = 0, pages = 0;
  if (!fields.take(size) || !fields.take(pages) || !fields.empty()) return false;
  if (size == 0 || size > largest_page) return false;
  page_size = size;
  return true;
}

}  // namespace

// A command may have lines of its own, which could look like records. It ends where the line with
// the page size stands, which may be missing; then it is one line.
bool read_recording_head(const recording_source& source, recording_head& head,
                         std::string& refusal) {
  std::unique_ptr<recording_bytes> bytes = source(refusal);
  if (bytes == nullptr) return false;
  recording_lines lines(std::move(bytes));
  std::string_view line;
  if (!lines.next(line)) {
    refusal = lines.fault().empty() ? "is empty" : "is no recording: " + lines.fault();
    return false;
  }
  if (!read_version(line, head, refusal)) return false;
  head.lines = 1;
  std::string more;
  bool has_command = false, raw_behind = false;
  while (more.size() < longest_command && lines.next(line)) {
    if (read_page_size(line, head.page_size)) {
      head.command += more;
      head.lines = lines.number();
      raw_behind = lines.next(line) && line.starts_with("m ");
      break;
    }
    if (has_command) {
      raw_behind = raw_behind || (more.empty() && line.starts_with("m "));
      more.append(" ").append(line);
    } else if (line.starts_with("X ")) {
      has_command = true;
      head.command = line.substr(2);
      head.lines = lines.number();
    } else if (line.starts_with("x ") || line.starts_with("m ")) {
      head.is_raw = true;
    } else if (!line.empty() && line.front() != '#') {
      break;
    }
  }
  head.is_raw = head.is_raw || raw_behind;
  return true;
}

std::optional<recording_lines> lines_behind(const recording_head& head,
                                            const recording_source& source, std::string& error) {
  std::unique_ptr<recording_bytes> bytes = source(error);
  if (bytes == nullptr) return {};
  std::optional<recording_lines> lines(std::in_place, std::move(bytes));
  std::string_view line;
  while (lines->number() < head.lines && lines->next(line)) {
  }
  return lines;
}

}  // namespace kiv::convert
