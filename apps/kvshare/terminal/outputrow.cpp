#include "apps/kvshare/terminal/outputrow.h"

#include <nlohmann/json.hpp>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::app {

namespace {

bool HasLineBreak(std::string_view text) {
  return text.find('\n') != std::string_view::npos || text.find('\r') != std::string_view::npos;
}

}  // namespace

void AppendJsonString(std::string& out, std::string_view text) {
  using nlohmann::json;
  out += json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

void Row::Number(std::string_view name, std::int64_t value) {
  Add(name, Kind::Bare, true) = std::to_string(value);
}

void Row::Flag(std::string_view name, bool value) {
  Add(name, Kind::Bare, false) = value ? "true" : "false";
}

std::string& Row::Add(std::string_view name, Kind kind, bool shown) {
  if (used_ == entries_.size()) entries_.emplace_back();
  Entry& entry = entries_[used_++];
  entry.name = name;
  entry.kind = kind;
  entry.shown = shown;
  entry.text.clear();
  return entry.text;
}

void Row::Clear() {
  used_ = 0;
  warning_.clear();
}

void Row::AppendTo(std::string& out) const {
  const std::size_t before = out.size();
  try {
    json_ ? AppendObject(out) : AppendCells(out);
  } catch (...) {
    out.resize(before);
    throw;
  }
}

void Row::AppendCells(std::string& out) const {
  bool first = true;
  for (std::size_t i = 0; i < used_; ++i) {
    const std::string& text = entries_[i].text;
    if (!entries_[i].shown) continue;
    if (entries_[i].kind != Kind::Lines && HasLineBreak(text)) {
      throw EConvertError("the result has a line break; --json shows it escaped");
    }
    if (!first) out.push_back('\t');
    first = false;
    AppendUtf8(out, text);
  }
}

void Row::AppendObject(std::string& out) const {
  out.push_back('{');
  for (std::size_t i = 0; i < used_; ++i) {
    if (entries_[i].kind == Kind::Lines) continue;
    if (out.back() != '{') out.push_back(',');
    AppendJsonString(out, entries_[i].name);
    out.push_back(':');
    if (entries_[i].kind == Kind::Bare) {
      out += entries_[i].text;
    } else {
      AppendJsonString(out, Cp874ToUtf8(entries_[i].text));
    }
  }
  out.push_back('}');
}

}  // namespace kvshare::app
