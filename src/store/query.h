#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "store/run_store.h"

namespace kiv::store {

enum class value_type { null, integer, real, text, blob };

// The rows of a SELECT that changes nothing.
class query {
 public:
  int columns() const { return rows_.columns(); }
  std::string_view name(int column) const { return rows_.name(column); }

  // Goes to the first or next row. False after the last one, or when reading failed.
  bool step() { return rows_.step(); }
  bool failed() const { return rows_.failed(); }

  // Of the present row; texts are valid until the next step.
  value_type type(int column) const;
  std::int64_t integer(int column) const { return rows_.number(column); }
  double real(int column) const { return rows_.real(column); }
  std::string_view text(int column) const { return rows_.text(column); }

 private:
  friend class query_maker;
  friend std::optional<query> prepare_view(run_store&, std::string_view,
                                           const std::optional<std::string>&, std::string&);
  // Texts that are bound must stay where they are, the query itself need not.
  std::unique_ptr<std::string> run_;
  statement rows_;
};

// Prepares a statement of the user's: one, and a reading one. Nothing, with `error` set, when it is
// another or SQLite does not understand it. The error of a step is `store.connection().error()`.
std::optional<query> prepare_query(run_store& store, std::string_view sql, std::string& error);

// Prepares a view, of one run when a name is given. Nothing, with `error` set, when there is no
// such view or run.
std::optional<query> prepare_view(run_store& store, std::string_view view,
                                  const std::optional<std::string>& run, std::string& error);

}  // namespace kiv::store
