// The servers' own clients used by hand, as a program without our drivers would: the neighbours of
// the benchmark.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace kvshare::bench {

using ConnectionParameters = std::vector<std::pair<std::string, std::string>>;

inline std::string Value(const ConnectionParameters& parameters, const std::string& key) {
  for (const auto& [name, value] : parameters) {
    if (name == key) return value;
  }
  return {};
}
inline std::string Port(const ConnectionParameters& parameters) {
  const std::string host = Value(parameters, "HostName");
  return host.substr(host.find(':') + 1);
}

// Each reads all rows of a query of a number, a text, a decimal and a date, and gives a sum of what
// it saw: the numbers and the lengths of the texts.
using BareReader = std::size_t (*)(const ConnectionParameters& parameters, const std::string& sql);
std::size_t ReadByMySql(const ConnectionParameters& parameters, const std::string& sql);
std::size_t ReadByPostgres(const ConnectionParameters& parameters, const std::string& sql);
std::size_t ReadByFirebird(const ConnectionParameters& parameters, const std::string& sql);
std::size_t ReadByOdbc(const ConnectionParameters& parameters, const std::string& sql);

// Runs the statements in one transaction on a connection that it keeps; false when one fails.
using BareBatch = bool (*)(const ConnectionParameters& parameters,
                           const std::vector<std::string>& statements);
bool RunByMySql(const ConnectionParameters& parameters, const std::vector<std::string>& statements);
bool RunByPostgres(const ConnectionParameters& parameters,
                   const std::vector<std::string>& statements);

}  // namespace kvshare::bench
