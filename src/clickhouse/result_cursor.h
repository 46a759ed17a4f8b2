#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "clickhouse/literals.h"
#include "clickhouse/server.h"
#include "store/row_cursor.h"

namespace kiv::clickhouse {

// The rows of a SELECT, as they come from the server.
class result_cursor final : public store::row_cursor {
 public:
  // Sends the statement over a connection of its own. `failed()` says whether that went well.
  result_cursor(const server_url& url, std::string_view sql);
  // Over a connection that serves nothing else until the last row was read. `types` has a letter
  // for each column that must come: n for whole numbers, t for other values.
  result_cursor(server& shared, std::string_view sql, std::string_view types, bool patient = false);

  int columns() const override { return static_cast<int>(columns_.size()); }
  std::string_view name(int column) const override { return at(column).name; }
  bool step() override;
  bool failed() const override { return static_cast<bool>(failure_); }
  std::string error() const override { return in_words(failure_, server_.url()); }
  store::value_type type(int column) const override;
  std::int64_t integer(int column) const override;
  double real(int column) const override;
  std::string_view text(int column) const override { return field(column).text; }

  std::string_view raw(int column) const { return field(column).raw; }  // for read_array
  const server_failure& failure() const { return failure_; }

 private:
  struct named_type {
    std::string name;
    store::value_type type = store::value_type::text;
  };

  void begin(std::string_view sql, bool patient);
  void expect(std::string_view types);
  bool next_line();
  void fail(std::string text);
  const named_type& at(int i) const { return columns_[static_cast<std::size_t>(i)]; }
  const tsv_field& field(int i) const { return (*row_)[static_cast<std::size_t>(i)]; }

  std::unique_ptr<server> own_;
  server& server_;
  server_failure failure_;
  std::string buffer_;
  std::size_t next_ = 0;   // in the buffer: behind the present line
  std::string_view line_;  // in the buffer
  tsv_reader reader_;
  const std::vector<tsv_field>* row_ = nullptr;
  std::vector<named_type> columns_;
  bool done_ = false;
};

}  // namespace kiv::clickhouse
