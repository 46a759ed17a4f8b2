#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "events/kiv_event.h"

namespace kiv {

class KivQueryIn final : public KivChangeContext {
 public:
  explicit KivQueryIn(kiv_reader* reader) : KivChangeContext(kiv_e_query_in, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t qid = 0;
  std::uint32_t type = 0;  // a character code
  std::string query;
};

class KivQueryOut final : public KivChangeContext {
 public:
  explicit KivQueryOut(kiv_reader* reader) : KivChangeContext(kiv_e_query_out, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t qid = 0;
  std::uint32_t linked_qid = 0;
};

}  // namespace kiv
