#pragma once

#include <array>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "header/element.h"
#include "header/entry.h"
#include "header/regular_file.h"

namespace kiv {

class XmlParser;

// What a trace's header file says: the identity of the run, the data files and, for each record
// type, the widths of its fields. The root element of the document.
class kiv_hdr final : public element {
 public:
  // Opens the header file and takes the top of el_stack. `parser` must outlive read_header().
  kiv_hdr(XmlParser* parser, const char* path, const char* description);

  // Parses the whole file. 0: the root element was seen (it need not be closed: the writer may
  // still be running); 2: bad XML or no root element; 3: the file could not be opened. Failures are
  // reported on the error stream and leave what was read so far in the model.
  int read_header();

  // Width in bytes of field `index` (from 0) of the record type with tag byte `type` (as a signed
  // char); 0 for unknown types, fields beyond the last and negative widths.
  int get_elem_size(int type, int index) const;

  // Lists every record definition when debug_level is above 0.
  void dump_entries() const;

  // The run's summary line, without a line end.
  std::ostream& dumphdr(std::ostream& os) const;

  int version() const { return version_; }
  const std::string& filetype() const { return filetype_; }
  bool little_endian() const { return little_endian_; }
  int pid() const { return pid_; }
  const std::string& runid() const { return runid_; }
  int start_secs() const { return start_secs_; }
  int start_nsecs() const { return start_nsecs_; }
  int end_secs() const { return end_secs_; }
  int end_nsecs() const { return end_nsecs_; }
  int m_entry_size() const { return m_entry_size_; }
  int mem_block_size() const { return mem_block_size_; }
  int m_group_size() const { return m_group_size_; }
  const std::vector<std::unique_ptr<kivfile>>& files() const { return files_; }
  const std::vector<std::unique_ptr<entry>>& entries() const { return entries_; }

  void startElement(const char* tag, const char** attrs) override;
  void endElement(const char* tag) override;
  const char* class_name() const override { return "kiv_hdr"; }

 private:
  struct number_tag;
  struct text_tag;
  static const number_tag number_tags[];
  static const text_tag text_tags[];

  bool read_value(const char* tag, const char** attrs);
  bool feed_parser();

  XmlParser* parser_;
  std::string path_;
  regular_file input_;
  bool root_seen_ = false;
  std::string filetype_;
  int version_ = 0;
  int m_entry_size_ = 0;
  int mem_block_size_ = 0;
  int m_group_size_ = 0;
  bool little_endian_ = true;
  int pid_ = 0;
  std::string progname_;
  std::string runid_;
  std::string user_;
  std::string lom_;
  std::string pacc_;
  std::string hostname_;
  std::string description_;
  int start_secs_ = 0;
  int start_nsecs_ = 0;
  int end_secs_ = 0;
  int end_nsecs_ = 0;
  std::vector<std::unique_ptr<entry>> entries_;   // document order
  std::vector<std::unique_ptr<kivfile>> files_;   // document order
  std::array<const entry*, 256> entry_of_tag_{};  // the last entry of each tag byte, or null
};

std::ostream& operator<<(std::ostream& os, const kiv_hdr& header);

}  // namespace kiv
