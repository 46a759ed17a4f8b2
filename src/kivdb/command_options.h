#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace kiv::db {

// What the command line knows of one command. Values are set when the command line is parsed, so
// they must stay where they are. Only the file behind this includes the parser's library, which
// takes the compiler many times as long as a command does.
class command_options {
 public:
  // Says what is wrong with a value; nothing when it will do.
  using check = std::function<std::string(const std::string&)>;

  explicit command_options(CLI::App& app) : app_(&app) {}

  // Arguments without a name of an option, in their order; they must be given.
  void argument(const std::string& name, std::string& value, const std::string& help);
  void arguments(const std::string& name, std::vector<std::string>& values,
                 const std::string& help);
  void arguments(const std::string& name, std::vector<std::string>& values, int least, int most,
                 const std::string& help);

  // `names`: "--long" or "-s,--long".
  void option(const std::string& names, std::string& value, const std::string& help,
              const check& is_good = {});
  void option(const std::string& names, std::optional<std::string>& value, const std::string& help,
              const check& is_good = {});
  void required_option(const std::string& names, std::string& value, const std::string& help);
  void repeatable_option(const std::string& names, std::vector<std::string>& values,
                         const std::string& help);
  // One of some words, `value` unless told.
  void choice(const std::string& names, std::string& value, const std::vector<std::string>& words,
              const std::string& help);
  // At least 1.
  void count(const std::string& names, std::optional<std::size_t>& value, const std::string& help);
  // From 0 to 100, `value` unless told.
  void percentage(const std::string& names, double& value, const std::string& help);
  void flag(const std::string& name, bool& value, const std::string& help);
  // Two flags of which one may be given.
  void either_flag(const std::string& name, bool& value, const std::string& help,
                   const std::string& other_name, bool& other_value, const std::string& other_help);

  void example(const std::string& text);

 private:
  CLI::App* app_;
};

// The whole command line: a word for the command and what the command takes.
class program_options {
 public:
  program_options(const std::string& name, const std::string& purpose, const std::string& version,
                  const std::string& end_of_help);
  ~program_options();

  command_options add_command(const std::string& name, const std::string& purpose,
                              std::function<int()> run);

  // Carries the command out, or prints what was asked for in place of one, and gives the exit
  // status.
  int run(int argc, char** argv);

 private:
  struct command {
    CLI::App* app;
    std::function<int()> run;
  };
  std::unique_ptr<CLI::App> app_;
  std::vector<command> commands_;
};

}  // namespace kiv::db
