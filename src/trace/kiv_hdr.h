#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "trace/element.h"
#include "trace/entry.h"
#include "trace/record_layout.h"
#include "util/moment.h"

namespace kiv {

class XmlParser;

// What a trace's header file says: the identity of the run, the data files and, for each record
// type, the widths of its fields. The root element of the document.
class kiv_hdr final : public element {
 public:
  // `parser` must outlive the header.
  explicit kiv_hdr(XmlParser& parser);

  // Parses the whole file. 0: the root element was seen (it need not be closed: the writer may
  // still be running); 2: bad XML or no root element; 3: the file could not be opened. Failures are
  // reported and leave what was read so far in the model.
  int read_header(const std::string& path);
  // The same for a document in memory; `path` names it in messages.
  int read_document(std::string_view document, const std::string& path);

  // Width in bytes of field `index` (from 0) of the record type with tag byte `type` (as a signed
  // char); 0 for unknown types, fields beyond the last and negative widths.
  int get_elem_size(int type, int index) const;
  // The widths of the fields of all record types.
  record_layout layout() const;

  // Lists every record definition as progress.
  void dump_entries() const;

  int version() const { return version_; }
  const std::string& filetype() const { return filetype_; }
  bool little_endian() const { return little_endian_; }
  int pid() const { return pid_; }
  const std::string& runid() const { return runid_; }
  const std::string& progname() const { return progname_; }
  const std::string& user() const { return user_; }
  const std::string& lom() const { return lom_; }    // runtime environment
  const std::string& pacc() const { return pacc_; }  // account of the user
  const std::string& hostname() const { return hostname_; }
  moment start() const { return {start_secs_, start_nsecs_}; }
  moment end() const { return {end_secs_, end_nsecs_}; }
  int m_entry_size() const { return m_entry_size_; }
  int mem_block_size() const { return mem_block_size_; }
  int m_group_size() const { return m_group_size_; }
  const std::vector<std::unique_ptr<kivfile>>& files() const { return files_; }
  const std::vector<std::unique_ptr<entry>>& entries() const { return entries_; }
  bool closed() const { return closed_; }  // the end of the root element was seen

  void startElement(const char* tag, const char** attrs) override;
  void endElement(const char* tag) override;

 private:
  struct number_tag;
  struct text_tag;
  static const number_tag number_tags[];
  static const text_tag text_tags[];

  bool read_value(const char* tag, const char** attrs);
  int result_of(bool well_formed, const std::string& path) const;

  XmlParser& parser_;
  bool root_seen_ = false;
  bool closed_ = false;
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
  int start_secs_ = 0;
  int start_nsecs_ = 0;
  int end_secs_ = 0;
  int end_nsecs_ = 0;
  std::vector<std::unique_ptr<entry>> entries_;   // document order
  std::vector<std::unique_ptr<kivfile>> files_;   // document order
  std::array<const entry*, 256> entry_of_tag_{};  // the last entry of each tag byte, or null
};

}  // namespace kiv
