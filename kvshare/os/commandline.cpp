#include "kvshare/os/commandline.h"

#include <algorithm>
#include <cstddef>

namespace kvshare::os {

namespace {

constexpr std::string_view kBlanks = " \t";

bool IsBlank(char c) {
  return kBlanks.find(c) != std::string_view::npos;
}

std::string_view WithoutBlanksInFront(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

ProgramReading QuotedProgram(std::string_view line) {
  std::string name;
  bool quoted = false;
  std::size_t i = 0;
  for (; i < line.size() && (quoted || !IsBlank(line[i])); ++i) {
    if (line[i] == '"') {
      quoted = !quoted;
    } else {
      name += line[i];
    }
  }
  return {std::move(name), line.substr(i)};
}

// Takes one argument from the front of `text`, which begins with none of the blanks.
std::string TakeArgument(std::string_view& text) {
  std::string argument;
  bool quoted = false;
  while (!text.empty() && (quoted || !IsBlank(text.front()))) {
    const std::size_t slashes = std::min(text.find_first_not_of('\\'), text.size());
    text.remove_prefix(slashes);
    if (!text.starts_with('"')) {
      argument.append(slashes, '\\');
      if (slashes == 0) {
        argument += text.front();
        text.remove_prefix(1);
      }
      continue;
    }
    argument.append(slashes / 2, '\\');
    text.remove_prefix(1);
    if (slashes % 2 == 1) {
      argument += '"';
    } else if (quoted && text.starts_with('"')) {
      argument += '"';
      text.remove_prefix(1);
    } else {
      quoted = !quoted;
    }
  }
  return argument;
}

}  // namespace

std::vector<ProgramReading> ReadProgram(std::string_view commandLine) {
  constexpr std::size_t kLongestName = 260;
  const std::string_view line = WithoutBlanksInFront(commandLine);
  if (line.empty()) return {};
  std::size_t end = std::min(line.find_first_of(kBlanks), line.size());
  const std::string_view first = line.substr(0, end);
  if (first.find('"') != std::string_view::npos) return {QuotedProgram(line)};

  std::vector<ProgramReading> readings{{std::string(first), line.substr(end)}};
  if (first.find_first_of("\\/:") == std::string_view::npos) return readings;
  while (end < line.size()) {
    const std::size_t next = line.find_first_not_of(kBlanks, end);
    if (next == std::string_view::npos || line[next] == '"') break;
    end = std::min(line.find_first_of(kBlanks, next), line.size());
    if (end > kLongestName) break;
    readings.push_back({std::string(line.substr(0, end)), line.substr(end)});
  }
  return readings;
}

std::vector<std::string> SplitArguments(std::string_view text) {
  std::vector<std::string> arguments;
  for (text = WithoutBlanksInFront(text); !text.empty(); text = WithoutBlanksInFront(text)) {
    arguments.push_back(TakeArgument(text));
  }
  return arguments;
}

}  // namespace kvshare::os
