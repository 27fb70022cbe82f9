// Data packets for tests, and what a client dataset has of them.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/support.h"

namespace kvshare {

inline constexpr std::string_view kHead = R"(<?xml version="1.0" standalone="yes"?>  )";

inline std::string Packet(std::string_view fields, std::string_view params, std::string_view rows) {
  std::string text = "<DATAPACKET Version=\"2.0\"><METADATA><FIELDS>";
  text.append(fields).append("</FIELDS>").append(params).append("</METADATA><ROWDATA>");
  return text.append(rows).append("</ROWDATA></DATAPACKET>");
}

inline constexpr std::string_view kCode =
    R"(<FIELD attrname="CODE" fieldtype="string" WIDTH="10"/>)";
inline constexpr std::string_view kQty = R"(<FIELD attrname="QTY" fieldtype="i4"/>)";

inline std::string Items(std::string_view params, std::string_view rows) {
  return Packet(std::string(kCode).append(kQty), params, rows);
}

// The records in view: `code qty`, what changed with its status and its earlier values.
inline std::string Dump(TClientDataSet& set) {
  constexpr std::string_view kStatus[] = {"", "modified ", "inserted ", "deleted "};
  std::string text;
  for (set.First(); !set.Eof(); set.Next()) {
    text += kStatus[static_cast<int>(set.UpdateStatus())];
    for (int i = 0; i < set.FieldCount(); ++i) {
      const TField& field = set.Fields(i);
      text += field.IsNull() ? "-" : field.AsString();
      const Variant old = field.OldValue();
      const bool changed =
          set.UpdateStatus() != TUpdateStatus::usDeleted && old != field.NewValue();
      if (changed) text += "(" + (old.IsNull() ? "-" : old.AsString()) + ")";
      text += i + 1 < set.FieldCount() ? " " : "; ";
    }
  }
  return text;
}

inline std::string DumpAll(TClientDataSet& set) {
  std::string text = Dump(set);
  set.SetStatusFilter({.usDeleted = true});
  text += Dump(set);
  set.SetStatusFilter({});
  return text;
}

inline std::string Refusal(TClientDataSet& set, std::string_view packet) {
  return MessageOf<EDBClient>([&] { set.SetXMLData(packet); });
}

}  // namespace kvshare
