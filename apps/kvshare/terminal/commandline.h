// Commands with their options and operands, as they are declared. They stand for the option parser,
// whose own header takes each source seconds to compile.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace kvshare::app {

// A command line that cannot be obeyed; the text names the option and says why.
class WrongUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An option or operand of a command, which owns it.
class Option {
 public:
  explicit Option(CLI::Option* option) : option_(option) {}

  Option Required(bool required = true) const;
  Option TypeName(std::string_view name) const;  // of its value, in the help
  Option Excludes(Option other) const;           // not both on one command line
  Option TakesOne() const;                       // of a list: one value
  Option Repeats() const;                        // of a list: one value each time it is given
  Option OneOf(std::initializer_list<const char*> values) const;
  Option Between(int least, int most) const;
  Option ShowsDefault() const;
  bool IsGiven() const;

 private:
  CLI::Option* option_;
};

class Command {
 public:
  explicit Command(CLI::App& command) : command_(&command) {}

  Command AddCommand(std::string_view name, std::string_view purpose) const;
  void RequireCommand() const;
  void SetFooter(const std::string& footer) const;

  // The value lives as long as the command. A name without dashes is an operand's.
  Option AddOption(std::string_view name, std::string& value, std::string_view purpose) const;
  Option AddOption(std::string_view name, std::size_t& value, std::string_view purpose) const;
  Option AddOption(std::string_view name, std::int32_t& value, std::string_view purpose) const;
  Option AddOption(std::string_view name, std::vector<std::string>& values,
                   std::string_view purpose) const;
  Option AddFlag(std::string_view name, bool& value, std::string_view purpose) const;
  Option Named(const std::string& option) const;

  // Called when the command was named and its options are read.
  void OnParsed(std::function<void()> action) const;

 private:
  CLI::App* command_;
};

}  // namespace kvshare::app
