#include "output/csv_file.h"

#include <cerrno>
#include <iostream>

#include "output/csv_file_sequence.h"
#include "output/sql_script.h"

namespace kiv {

csv_file::csv_file(csv_file_sequence* seq, sql_script* script, const char* name,
                   const std::string& directory, const std::string& runid, bool first)
    : sequence_(seq),
      script_(script),
      stream_(&buffer_),
      directory_(directory),
      runid_(runid),
      name_(name) {
  open_file(first, false);
}

bool csv_file::open_file(bool create, bool next) {
  file_name_ = generate_file_name(next);
  const std::string path = directory_ + "/" + file_name_;
  const bool opened = buffer_.open(path, create);
  const bool switched_off = !opened && errno == EISDIR;
  stream_.clear(opened ? std::ios_base::goodbit : std::ios_base::failbit);
  if (create) script_->generate_import(name_, sequence_->curr_sequence(name_, false));
  std::cout << "csv_file: " << path << ' ' << (create ? 1 : 0) << '\n';
  if (!opened && !switched_off && !loss_reported_) {
    std::cerr << "cannot write " << path << '\n';
    loss_reported_ = true;
  }
  return opened;
}

std::string csv_file::generate_file_name(bool next) {
  return next ? sequence_->next_sequence(name_, runid_) : sequence_->get_sequence(name_, runid_);
}

void csv_file::close_file() { buffer_.close(); }

void csv_file::split() {
  close_file();
  open_file(true, true);
}

}  // namespace kiv
