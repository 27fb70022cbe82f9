#include "kvshare/text/strlist.h"

#include "kvshare/rtl/inifile.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

TKovraStrList* KovraStrList = nullptr;

namespace {

bool IsHeader(std::string_view line, std::string_view section) {
  return line.size() == section.size() + 2 && line.front() == '[' && line.back() == ']' &&
         SameText(line.substr(1, section.size()), section);
}

// The first header of the section from a line on; the number of lines when there is none.
int FindHeader(const TStrings& lines, int from, std::string_view section) {
  while (from < lines.Count() && !IsHeader(lines[from], section)) ++from;
  return from;
}

void Enclose(TStrings& list, int index, std::string_view before, std::string_view behind) {
  std::string text(before);
  text += list[index];
  text += behind;
  list.Put(index, text);
}

}  // namespace

void TKovraStrList::PushStack(TStrings& List, std::string_view Text) {
  List.Add(Text);
}

std::string TKovraStrList::PopStack(TStrings& List) {
  const int top = List.Count() - 1;
  if (top < 0) return {};
  std::string text = List[top];
  List.Delete(top);
  return text;
}

bool TKovraStrList::RemoveFromList(TStrings& List, std::string_view Text) {
  const int index = List.IndexOf(Text);
  if (index < 0) return false;
  List.Delete(index);
  return true;
}

bool TKovraStrList::RemoveFromListByPointer(TStrings& List, TStringId Item) {
  for (int i = 0; i < List.Count(); ++i) {
    if (List.Identity(i) == Item) {
      List.Delete(i);
      return true;
    }
  }
  return false;
}

void TKovraStrList::RemoveNameKey(TStrings& List) {
  for (int i = 0; i < List.Count(); ++i) {
    const std::string_view item = List[i];
    const std::size_t equals = item.find('=');
    const std::string_view value =
        equals == std::string_view::npos ? item : item.substr(equals + 1);
    List.Put(i, std::string(Trim(value)));  // a copy: the view lies in the item it replaces
  }
}

void TKovraStrList::SplitList(const TStrings& Source, TStrings& Names, TStrings& Values) {
  Values.Assign(Source);  // first, since Source may be Names
  Names.Clear();
  for (int i = 0; i < Values.Count(); ++i) Names.Add(Values.Names(i));
  RemoveNameKey(Values);
}

void TKovraStrList::ReadContentInSection(std::string_view FileName, std::string_view Section,
                                         TStrings& List) {
  TStringList sections;
  TIniFile(FileName).ReadSections(sections);
  const int section = sections.IndexOf(Section);
  if (section < 0) return;

  TStringList lines;
  lines.LoadFromFile(FileName);
  const int start = FindHeader(lines, 0, Section);
  const bool isLast = section + 1 == sections.Count();
  const int end = isLast ? lines.Count() : FindHeader(lines, start + 1, sections[section + 1]);
  for (int i = start + 1; i < end; ++i) List.Add(lines[i]);
}

void TKovraStrList::AddAndOr(TStrings& List) {
  const int last = List.Count() - 1;
  if (last == 0) Enclose(List, 0, "AND ", "");
  if (last <= 0) return;
  Enclose(List, 0, "AND(", "");
  for (int i = 1; i < last; ++i) Enclose(List, i, "OR ", "");
  Enclose(List, last, "OR ", ")");
}

}  // namespace kvshare
