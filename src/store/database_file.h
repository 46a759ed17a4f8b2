#pragma once

#include <string>

#include "store/sqlite.h"

namespace kiv::store {

// How a database file is opened, recognised, switched to a write-ahead log and taken away again.
// A false answer comes with the reason in `error`, without the path.

// Held while a file is made and has no run yet, so that no other import finds it and then loses it
// when the first one fails. It locks the directory, and so leaves nothing behind.
class creation_lock {
 public:
  creation_lock() = default;
  ~creation_lock() { release(); }
  creation_lock(const creation_lock&) = delete;
  creation_lock& operator=(const creation_lock&) = delete;

  // Waits for the first import of another program. False when that takes too long.
  bool take(const std::string& directory);
  void release();
  bool held() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

// Opens the file for imports; makes an empty one when there is none. The lock stays held when the
// file holds no schema yet.
bool open_for_imports(database& db, const std::string& path, creation_lock& lock,
                      std::string& error);

// Opens the file for reading, after an import that was killed and on a read-only medium too.
bool open_for_reading(database& db, const std::string& path, std::string& error);

// Within a transaction of an open database: makes tables and views.
bool make_schema(database& db);

// Whether the database holds no schema.
bool is_empty(database& db);

// Lets readers go on while an import writes. The first import into a file runs without, so that
// nothing is left behind when it fails. Tried anew by every import; no failure.
void use_write_ahead_log(database& db);

// Moves what the log holds into the file, unless readers need it.
void empty_write_ahead_log(database& db);

// Deletes the file when no import into it has succeeded. The caller holds the lock.
void remove_when_empty(database& db, const std::string& path);

}  // namespace kiv::store
