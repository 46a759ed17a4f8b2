#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "events/event_context.h"
#include "events/kiv_type.h"

namespace kiv {

class kiv_reader;

// A record of the trace. Decoding takes every field's width from the trace's own definitions, so
// the same decoder serves writers with other integer and pointer sizes.
class KivEvent {
 public:
  KivEvent(kiv_type type, kiv_reader* reader);
  KivEvent(const KivEvent&) = delete;
  KivEvent& operator=(const KivEvent&) = delete;
  virtual ~KivEvent() = default;

  // Decodes the record from the reader's position, field by field.
  virtual void setelems() {}
  // Ends the record's line of the listing, at debug level 2 only.
  virtual void traceevent(std::ostream& os) const;

  kiv_type type() const { return type_; }

 protected:
  kiv_reader* reader() const { return reader_; }

  // The reads of one field each; the next field's width comes from the header. A field that has
  // no width, or one that its member does not take, leaves the member as it is.
  std::uint32_t readelemsize() { return *next_width_++; }
  void readelem(std::uint32_t& value);
  void readelem(std::int32_t& value);
  void readelem(std::uint64_t& value);
  void readelem(std::int64_t& value);
  void readelem(std::string& text);
  // Neighbouring numbers.
  template <class... Numbers>
  void readelems(Numbers&... numbers);
  // A source location: its number, and where its text stands in the book of locations.
  void readloc(std::uint32_t& text_index, std::int64_t& location);

 private:
  const kiv_type type_;
  const std::uint32_t* next_width_;  // of the field to be read next
  kiv_reader* const reader_;         // looks only; an event never outlives its reader
};

// Base of events that carry the call context in force when their record was read.
class KivMeasurement : public KivEvent {
 public:
  KivMeasurement(kiv_type type, kiv_reader* reader);

  // The columns of the event's table row.
  virtual std::ostream& dumpinfo(std::ostream& os) const = 0;

  const KivEventContext& context() const { return context_; }

 private:
  const KivEventContext context_;
};

inline std::ostream& operator<<(std::ostream& os, const KivMeasurement& event) {
  return event.dumpinfo(os);
}

// Base of events that change books but carry no context.
class KivContext : public KivEvent {
 public:
  using KivEvent::KivEvent;
};

// Base of events that change the current context: no context text kept before them holds any more.
class KivChangeContext : public KivEvent {
 public:
  KivChangeContext(kiv_type type, kiv_reader* reader);
};

}  // namespace kiv
