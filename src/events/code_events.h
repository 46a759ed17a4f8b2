#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "events/kiv_event.h"

namespace kiv {

// Links a loaded object to a process.
class KivObjectLink final : public KivContext {
 public:
  explicit KivObjectLink(kiv_reader* reader) : KivContext(kiv_e_object_link, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t pid = 0;
  std::uint32_t id_of_obj = 0;
};

// Names a function of an object by its number.
class KivFunctionName : public KivContext {
 public:
  using KivContext::KivContext;
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id_of_obj = 0;
  std::int32_t funnr = 0;
  std::string funcname;
};

class KivObjectFunctionLoad final : public KivFunctionName {
 public:
  explicit KivObjectFunctionLoad(kiv_reader* reader)
      : KivFunctionName(kiv_e_object_function_load, reader) {}
};

// A function of the Hosk interpreter; such functions have numbers of their own.
class KivObjectGlobalLoad final : public KivFunctionName {
 public:
  explicit KivObjectGlobalLoad(kiv_reader* reader)
      : KivFunctionName(kiv_e_object_global_load, reader) {}
};

class KivFlowIn final : public KivChangeContext {
 public:
  explicit KivFlowIn(kiv_reader* reader) : KivChangeContext(kiv_e_flow_in, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t parent_id = 0;
  std::int32_t parent_funnr = 0;
  std::uint32_t child_id = 0;
  std::int32_t child_funnr = 0;
};

class KivFlowOut final : public KivChangeContext {
 public:
  explicit KivFlowOut(kiv_reader* reader) : KivChangeContext(kiv_e_flow_out, reader) {}
  void setelems() override {}
  void traceevent(std::ostream& os) const override;
};

class KivHoskFlowIn final : public KivChangeContext {
 public:
  explicit KivHoskFlowIn(kiv_reader* reader) : KivChangeContext(kiv_e_hosk_flow_in, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id_of_obj = 0;
  std::uint32_t fun3glnr = 0;
  std::int32_t funnr = 0;
  std::int64_t sym = 0;
  std::string args;
};

class KivHoskFlowOut final : public KivChangeContext {
 public:
  explicit KivHoskFlowOut(kiv_reader* reader) : KivChangeContext(kiv_e_hosk_flow_out, reader) {}
  void setelems() override;
  void traceevent(std::ostream& os) const override;

  std::uint32_t id_of_obj = 0;
  std::uint32_t fun3glnr = 0;
  std::int32_t funnr = 0;
  std::string args;
};

}  // namespace kiv
