#include "kvshare/ui/consoleform.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/ui/consoleparts.h"
#include "kvshare/ui/consoletext.h"

namespace kvshare {

namespace {

constexpr std::string_view kHelp =
    "NUMBER        chooses an item\n"
    "NUMBER=TEXT   types TEXT into that row of the table\n"
    "cNUMBER       checks a box, or takes the mark away\n"
    "bNUMBER       presses a button\n"
    "eNUMBER=TEXT  types TEXT instead of the line that is there\n"
    "mNUMBER=TEXT  types a line into a memo\n"
    "Enter alone   presses the button that is marked so\n"
    "q             presses the button that is marked so, or closes the form\n"
    "`-` is before what cannot be used at the moment.";
constexpr std::string_view kNotUnderstood = "Not understood; ? tells what can be typed.";
constexpr std::string_view kNotThere = "There is no such number.";
constexpr std::string_view kNotPossible = "That cannot be done at the moment.";
constexpr std::string_view kControlCharacter = "Control characters cannot be typed here.";

// A typed line: a letter, a number and a text, of which each may be missing.
struct Command {
  char letter = '\0';  // in lower case
  std::optional<std::size_t> number;
  std::optional<std::string_view> text;
};

// The number that a text of digits says, as high as there is one; nothing for another text.
std::optional<std::size_t> ReadNumber(std::string_view digits) {
  std::size_t number = 0;
  const char* const all = digits.data() + digits.size();
  const auto [end, error] = std::from_chars(digits.data(), all, number);
  if (error == std::errc::invalid_argument || end != all) return std::nullopt;
  return error == std::errc::result_out_of_range ? SIZE_MAX : number;
}

// Nothing for a line of another form.
std::optional<Command> ReadCommand(std::string_view line) {
  Command command;
  const std::size_t equals = line.find('=');
  if (equals != std::string_view::npos) command.text = line.substr(equals + 1);
  std::string_view name = Trim(line.substr(0, equals));
  if (!name.empty() && !(name[0] >= '0' && name[0] <= '9')) {
    command.letter = static_cast<char>(name[0] >= 'A' && name[0] <= 'Z' ? name[0] | 0x20 : name[0]);
    name.remove_prefix(1);
  }
  if (!name.empty()) command.number = ReadNumber(name);
  if (!name.empty() && !command.number) return std::nullopt;
  return command;
}

// Types into the first cell of the row that lets itself be selected and edited.
bool TypeIntoRow(TStringGrid& grid, int row, std::string_view text) {
  for (int col = grid.FixedCols(); col < grid.ColCount(); ++col) {
    if (grid.SelectCell(col, row) && grid.TypeText(text)) return true;
  }
  return false;
}

bool TypeLine(TMemo& memo, std::string_view text) {
  const bool fresh = memo.Text().empty() || memo.Text().ends_with('\n');
  return memo.TypeText(std::string(fresh ? "" : "\r\n").append(text));
}

bool PressDefault(const TForm& form) {
  TButton* button = form.DefaultButton();
  return button != nullptr && button->Click();
}

// The functions below do what a line says and return the message about it, "" when it was
// done.
std::string_view Told(bool done) {
  return done ? std::string_view() : kNotPossible;
}

std::string_view ObeyKey(TForm& form, const Command& command) {
  if (command.text) return kNotUnderstood;
  switch (command.letter) {
    case '\0':
      return Told(PressDefault(form));
    case 'q':
      return Told(form.PressEsc());
    case '?':
      return kHelp;
    default:
      return kNotUnderstood;
  }
}

// The number-th of the parts, from 1.
template <typename Part, typename Action>
std::string_view With(const std::vector<Part>& parts, std::size_t number, Action action) {
  if (number == 0 || number > parts.size()) return kNotThere;
  return Told(action(parts[number - 1]));
}

std::string_view ObeyClick(TForm& form, char letter, std::size_t number) {
  const auto click = [](auto* control) { return control->Click(); };
  switch (letter) {
    case '\0':
      return With(ShownChoices(form), number,
                  [](const auto& choice) { return choice.control->Choose(choice.index); });
    case 'c':
      return With(ShownOfKind<TCheckBox>(form), number, click);
    case 'b':
      return With(ShownOfKind<TButton>(form), number, click);
    default:
      return kNotUnderstood;
  }
}

std::string_view ObeyTyping(TForm& form, char letter, std::size_t number, std::string_view text) {
  switch (letter) {
    case '\0':
      return With(ShownRows(form), number,
                  [text](const auto& row) { return TypeIntoRow(*row.control, row.index, text); });
    case 'e':
      return With(ShownOfKind<TEdit>(form), number,
                  [text](TEdit* edit) { return edit->TypeText(text); });
    case 'm':
      return With(ShownOfKind<TMemo>(form), number,
                  [text](TMemo* memo) { return TypeLine(*memo, text); });
    default:
      return kNotUnderstood;
  }
}

std::string_view Obey(TForm& form, std::string_view line) {
  const std::optional<Command> command = ReadCommand(line);
  if (!command) return kNotUnderstood;
  if (!command->number) return ObeyKey(form, *command);
  if (!command->text) return ObeyClick(form, command->letter, *command->number);
  return ObeyTyping(form, command->letter, *command->number, *command->text);
}

bool IsControl(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7F;
}

std::string Message(std::string_view cp874) {
  std::string lines;
  AppendLines(lines, cp874);
  return Cp874ToUtf8Lossy(lines) + "\n";
}

// What to write after a typed line: a message, or the form as it has become, or both.
std::string ReplyTo(TForm& form, std::string_view utf8) {
  std::string line;
  try {
    line = Utf8ToCp874(utf8);
  } catch (const EConvertError& e) {
    return Message(e.Message());
  }
  if (std::ranges::any_of(line, IsControl)) return Message(kControlCharacter);

  std::string error;
  try {
    const std::string_view told = Obey(form, line);
    if (!told.empty()) return Message(told);
  } catch (const EAbort&) {
    form.ModalResult = mrNone;  // the handler has said all
  } catch (const Exception& e) {
    form.ModalResult = mrNone;  // a button that has failed closes nothing
    error = Message(e.Message());
  }
  return ShownForm(form) + error;
}

}  // namespace

int TalkAboutForm(TForm& form, const os::Console& console) {
  std::string reply = ShownForm(form);
  while (form.ModalResult == mrNone) {
    console.Write(reply + "> ");
    const std::optional<std::string> line = console.ReadLine();
    if (!line) {
      console.Write("\n");
      form.Dismiss();
      break;
    }
    reply = ReplyTo(form, *line);
  }
  return form.ModalResult;
}

}  // namespace kvshare
