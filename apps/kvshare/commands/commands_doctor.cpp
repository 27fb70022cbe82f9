// `kvshare doctor`.
#include <algorithm>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/commands/doctor.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kExamples =
    "  kvshare doctor                            folders, drives, identity, era, digits\n"
    "  kvshare doctor --json | grep '\"mend\":\"[^\"]'\n"
    "                                            only what needs mending\n";

void AppendJsonObject(std::string& out, const Finding& finding) {
  out += "{\"topic\":";
  AppendJsonString(out, finding.topic);
  out += ",\"value\":";
  AppendJsonString(out, finding.value);
  out += ",\"mend\":";
  AppendJsonString(out, finding.mend);
  out += '}';
}

// The topic in a column, and what to do on a line of its own.
void AppendLines(std::string& out, const Finding& finding) {
  constexpr std::size_t kColumn = 18;
  const std::size_t blanks = std::max(finding.topic.size() + 1, kColumn) - finding.topic.size();
  out.append(finding.topic).append(blanks, ' ').append(finding.value);
  if (!finding.mend.empty()) out.append("\n  MEND: ").append(finding.mend);
}

int PrintFindings(bool json, const Stdio& stdio) {
  BlockWriter out(stdio.out, "standard output");
  int status = kDone;
  for (const Finding& finding : Examine()) {
    if (!finding.mend.empty()) status = kBadInput;
    json ? AppendJsonObject(out.Buffer(), finding) : AppendLines(out.Buffer(), finding);
    out.EndLine();
  }
  out.Flush();
  return status;
}

}  // namespace

void DeclareDoctor(Command parent, Plan& plan) {
  const Command command = AddCommand(
      parent, plan, "doctor", "What programs find on this machine, and what to mend", kExamples);
  command.OnParsed([&plan] {
    plan.action = [&plan](const Stdio& stdio) { return PrintFindings(plan.json, stdio); };
  });
}

}  // namespace kvshare::app
