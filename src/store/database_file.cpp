#include "store/database_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>
#include <thread>

#include "store/schema.h"

namespace kiv::store {
namespace {

constexpr std::int64_t application_id = 0x4b495644;  // "KIVD"
constexpr std::int64_t schema_version = 3;
constexpr int import_wait = 60, read_wait = 10;  // seconds

bool fail(std::string& error, std::string what) {
  error = std::move(what);
  return false;
}

enum class found { nothing, file, other };

found look_at(const std::string& path, std::string& error) {
  struct stat status {};
  if (path.empty()) {
    error = "the name of the database is empty";
    return found::other;
  }
  if (stat(path.c_str(), &status) != 0) {
    const int number = errno;
    error = number == ENOENT ? "no such file" : std::strerror(number);
    return number == ENOENT ? found::nothing : found::other;
  }
  if (S_ISREG(status.st_mode)) return found::file;
  error = S_ISDIR(status.st_mode) ? "a directory, not a database" : "not a regular file";
  return found::other;
}

bool can_write(const std::string& path) {
  return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0;
}

std::string directory_of(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

bool holds_bytes(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && status.st_size > 0;
}

// Bytes 18 and 19 of a database say how it is written.
bool uses_write_ahead_log(const std::string& path) {
  char header[20] = {};
  std::ifstream file(path, std::ios::binary);
  return file.read(header, sizeof header) && header[18] == 2 && header[19] == 2;
}

std::string uri_of(const std::string& path) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string uri = "file:";
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte <= ' ' || byte >= 0x7f || std::strchr("%?#", c) != nullptr) {
      uri += {'%', digits[byte >> 4], digits[byte & 15]};
    } else {
      uri += c;
    }
  }
  return uri + "?immutable=1";
}

// Whether it is a database of this program and version. An empty one is, in `is_new`.
bool recognise(database& db, bool& is_new, std::string& error) {
  statement ask = db.prepare("SELECT count(*) FROM sqlite_schema");
  if (!ask || !ask.step()) return fail(error, db.error());
  is_new = ask.number(0) == 0;
  if (is_new) return true;
  if (db.number("PRAGMA application_id") != application_id) {
    return fail(error, "a database of another program, not of kivdb");
  }
  if (db.number("PRAGMA user_version") != schema_version) {
    return fail(error, "made by another version of kivdb; import the runs into a new file");
  }
  return true;
}

}  // namespace

bool creation_lock::take(const std::string& directory) {
  release();
  fd_ = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd_ < 0) return true;  // opening the file will say what is wrong
  const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(import_wait);
  while (flock(fd_, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK) return true;  // a file system without locks
    if (std::chrono::steady_clock::now() > give_up) {
      release();
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

void creation_lock::release() {
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
}

bool open_for_imports(database& db, const std::string& path, creation_lock& lock,
                      std::string& error) {
  const found there = look_at(path, error);
  if (there == found::other) return false;
  const auto open_file = [&](int create, bool& is_new) {
    if (!db.open(path, SQLITE_OPEN_READWRITE | create)) return fail(error, db.error());
    db.wait_for_locks(import_wait);
    return recognise(db, is_new, error);
  };
  bool is_new = true;
  if (there == found::file && !open_file(0, is_new)) return false;
  if (is_new) {
    db.close();
    if (!lock.take(directory_of(path))) {
      return fail(error, "another import has been making a database in this directory for " +
                             std::to_string(import_wait) + " s");
    }
    // Another import may have made the file, or deleted the one just seen.
    if (!open_file(SQLITE_OPEN_CREATE, is_new)) return false;
    if (!is_new) lock.release();
  }
  if (sqlite3_db_readonly(db.handle(), "main") == 1) return fail(error, "cannot be written");
  return db.exec("PRAGMA foreign_keys = ON; PRAGMA cache_size = -65536") || fail(error, db.error());
}

bool open_for_reading(database& db, const std::string& path, std::string& error) {
  if (look_at(path, error) != found::file) return false;
  const bool writable_directory = can_write(directory_of(path));
  const bool log_holds_bytes = holds_bytes(path + "-wal");
  bool opened = false;
  if (writable_directory) {
    // Whoever reads first after a killed import brings the file in order.
    opened = db.open(path, SQLITE_OPEN_READWRITE);
  } else if (uses_write_ahead_log(path) && !log_holds_bytes) {
    opened = db.open(uri_of(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
  } else {
    opened = db.open(path, SQLITE_OPEN_READONLY);
  }
  if (!opened) return fail(error, db.error());
  db.wait_for_locks(read_wait);
  bool is_new = false;
  if (!recognise(db, is_new, error)) {
    const int code = db.error_code();
    if (!writable_directory && (code == SQLITE_CANTOPEN || code == SQLITE_READONLY)) {
      error = "an import was interrupted, and its traces (" + path +
              (log_holds_bytes ? "-wal" : "-journal") +
              ") can only be taken in where the directory can be written";
    }
    return false;
  }
  if (is_new) return fail(error, "holds no runs; no import into it has ended yet");
  return db.exec("PRAGMA query_only = ON; PRAGMA trusted_schema = OFF") || fail(error, db.error());
}

bool make_schema(database& db) {
  std::string sql = "PRAGMA application_id = " + std::to_string(application_id) +
                    "; PRAGMA user_version = " + std::to_string(schema_version) + ";\n";
  return db.exec(sql) && db.exec(schema_sql());
}

bool is_empty(database& db) { return db.number("SELECT count(*) FROM sqlite_schema") == 0; }

// Other programs that hold the file make the switch fail at once, whatever the time to wait.
void use_write_ahead_log(database& db) {
  constexpr int attempts = 20;
  for (int i = 0; i < attempts; ++i) {
    statement change = db.prepare("PRAGMA journal_mode = WAL");
    if (change && change.step() && change.text(0) == "wal") break;
    change = {};
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  db.exec("PRAGMA synchronous = NORMAL");
}

void empty_write_ahead_log(database& db) {
  db.wait_for_locks(0);
  db.exec("PRAGMA wal_checkpoint(TRUNCATE)");
  db.wait_for_locks(import_wait);
}

void remove_when_empty(database& db, const std::string& path) {
  statement ask = db.prepare("SELECT count(*) FROM sqlite_schema");
  if (ask && ask.step() && ask.number(0) == 0) unlink(path.c_str());
}

}  // namespace kiv::store
