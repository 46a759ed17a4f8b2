#include "kivdb/command_options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <sstream>

#include "kivdb/messages.h"

namespace kiv::db {
namespace {

void check_with(CLI::Option& option, const command_options::check& is_good) {
  if (is_good)
    option.check(CLI::Validator([is_good](std::string& text) { return is_good(text); }, ""));
}

}  // namespace

void command_options::argument(const std::string& name, std::string& value,
                               const std::string& help) {
  app_->add_option(name, value, help)->required();
}

void command_options::arguments(const std::string& name, std::vector<std::string>& values,
                                const std::string& help) {
  app_->add_option(name, values, help)->required();
}

void command_options::arguments(const std::string& name, std::vector<std::string>& values,
                                int least, int most, const std::string& help) {
  app_->add_option(name, values, help)->required()->expected(least, most);
}

void command_options::option(const std::string& names, std::string& value, const std::string& help,
                             const check& is_good) {
  check_with(*app_->add_option(names, value, help), is_good);
}

void command_options::option(const std::string& names, std::optional<std::string>& value,
                             const std::string& help, const check& is_good) {
  check_with(*app_->add_option(names, value, help), is_good);
}

void command_options::required_option(const std::string& names, std::string& value,
                                      const std::string& help) {
  app_->add_option(names, value, help)->required();
}

void command_options::repeatable_option(const std::string& names, std::vector<std::string>& values,
                                        const std::string& help, const check& is_good) {
  auto* const added = app_->add_option(names, values, help);
  added->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  check_with(*added, is_good);
}

void command_options::required_choice(const std::string& names, std::string& value,
                                      const std::vector<std::string>& words,
                                      const std::string& help) {
  app_->add_option(names, value, help)->required()->check(CLI::IsMember(words));
}

void command_options::choice(const std::string& names, std::string& value,
                             const std::vector<std::string>& words, const std::string& help) {
  app_->add_option(names, value, help)->check(CLI::IsMember(words))->capture_default_str();
}

void command_options::count(const std::string& names, std::optional<std::size_t>& value,
                            const std::string& help) {
  app_->add_option(names, value, help)
      ->check(CLI::Range(std::size_t{1}, std::size_t{1'000'000'000}));
}

void command_options::percentage(const std::string& names, double& value, const std::string& help) {
  app_->add_option(names, value, help)->check(CLI::Range(0.0, 100.0))->capture_default_str();
}

void command_options::flag(const std::string& name, bool& value, const std::string& help) {
  app_->add_flag(name, value, help);
}

void command_options::either_flag(const std::string& name, bool& value, const std::string& help,
                                  const std::string& other_name, bool& other_value,
                                  const std::string& other_help) {
  auto* const first = app_->add_flag(name, value, help);
  app_->add_flag(other_name, other_value, other_help)->excludes(first);
}

void command_options::example(const std::string& text) { app_->footer("Example: " + text); }

program_options::program_options(const std::string& name, const std::string& purpose,
                                 const std::string& version, const std::string& end_of_help)
    : app_(std::make_unique<CLI::App>(purpose, name)) {
  app_->require_subcommand(0, 1);  // so that an unknown word is named in the message
  app_->set_version_flag("--version", version);
  app_->footer(end_of_help);
}

program_options::~program_options() = default;

command_options program_options::add_command(const std::string& name, const std::string& purpose,
                                             std::function<int()> run) {
  CLI::App* const app = app_->add_subcommand(name, purpose);
  commands_.push_back({app, std::move(run)});
  return command_options(*app);
}

int program_options::run(int argc, char** argv) {
  try {
    app_->parse(argc, argv);
  } catch (const CLI::ParseError& stop) {
    std::ostringstream complaint;
    const int status = app_->exit(stop, std::cout, complaint);
    std::cerr << without_passwords(complaint.str());
    return status == 0 ? finish_output() : status_usage;
  }
  for (const auto& [app, run] : commands_) {
    if (app->parsed()) return run();
  }
  return complain("a command is missing; `kivdb --help` lists them", status_usage);
}

}  // namespace kiv::db
