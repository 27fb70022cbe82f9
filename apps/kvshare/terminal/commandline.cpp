#include "apps/kvshare/terminal/commandline.h"

#include <CLI/CLI.hpp>
#include <utility>

namespace kvshare::app {

Option Option::Required(bool required) const {
  option_->required(required);
  return *this;
}

Option Option::TypeName(std::string_view name) const {
  option_->type_name(std::string(name));
  return *this;
}

Option Option::Excludes(Option other) const {
  option_->excludes(other.option_);
  return *this;
}

Option Option::TakesOne() const {
  option_->expected(1);
  return *this;
}

Option Option::Repeats() const {
  option_->expected(1)->take_all();
  return *this;
}

Option Option::OneOf(std::initializer_list<const char*> values) const {
  option_->check(CLI::IsMember(std::vector<std::string>(values.begin(), values.end())));
  return *this;
}

Option Option::Between(int least, int most) const {
  option_->check(CLI::Range(least, most));
  return *this;
}

Option Option::ShowsDefault() const {
  option_->capture_default_str();
  return *this;
}

bool Option::IsGiven() const {
  return option_->count() > 0;
}

Command Command::AddCommand(std::string_view name, std::string_view purpose) const {
  CLI::App* command = command_->add_subcommand(std::string(name), std::string(purpose));
  command->group("Commands");
  return Command(*command);
}

void Command::RequireCommand() const {
  command_->require_subcommand(1);
}

void Command::SetFooter(const std::string& footer) const {
  command_->footer(footer);
}

Option Command::AddOption(std::string_view name, std::string& value,
                          std::string_view purpose) const {
  return Option(command_->add_option(std::string(name), value, std::string(purpose)));
}

Option Command::AddOption(std::string_view name, std::size_t& value,
                          std::string_view purpose) const {
  return Option(command_->add_option(std::string(name), value, std::string(purpose)));
}

Option Command::AddOption(std::string_view name, std::int32_t& value,
                          std::string_view purpose) const {
  return Option(command_->add_option(std::string(name), value, std::string(purpose)));
}

Option Command::AddOption(std::string_view name, std::vector<std::string>& values,
                          std::string_view purpose) const {
  return Option(command_->add_option(std::string(name), values, std::string(purpose)));
}

Option Command::AddFlag(std::string_view name, bool& value, std::string_view purpose) const {
  return Option(command_->add_flag(std::string(name), value, std::string(purpose)));
}

Option Command::Named(const std::string& option) const {
  return Option(command_->get_option(option));
}

void Command::OnParsed(std::function<void()> action) const {
  command_->callback(std::move(action));
}

}  // namespace kvshare::app
