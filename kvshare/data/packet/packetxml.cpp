#include "kvshare/data/packet/packetxml.h"

#include <expat.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <optional>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/rtl/utf8mark.h"

namespace kvshare::data {

namespace {

// XML has no control characters, not even by number, and memos have: they go through the parser as
// letters that Unicode keeps free for a program's own use, 32 of them.
constexpr char32_t kControls = 0xFDD0;
constexpr unsigned kControlCount = 0x20;

// How the bytes of a packet are read.
enum class Coding { Plain, CodePage, Utf8, Utf16, Other };

bool IsAscii(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::uint64_t bits = 0;
  for (; text.size() >= sizeof bits; text.remove_prefix(sizeof bits)) {
    std::memcpy(&bits, text.data(), sizeof bits);
    if ((bits & kHighBits) != 0) return false;
  }
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The value of encoding="..." in the XML declaration.
std::string DeclaredEncoding(std::string_view packet) {
  constexpr std::string_view kKey = "encoding";
  if (!packet.starts_with("<?xml")) return {};
  const std::string_view declaration = packet.substr(0, packet.find("?>"));
  const std::size_t key = declaration.find(kKey);
  if (key == std::string_view::npos) return {};
  const std::size_t begin = declaration.find_first_of("\"'", key + kKey.size());
  if (begin == std::string_view::npos) return {};
  const std::size_t end = declaration.find(declaration[begin], begin + 1);
  if (end == std::string_view::npos) return {};
  return std::string(declaration.substr(begin + 1, end - begin - 1));
}

bool IsUtf16(std::string_view packet) {
  using namespace std::string_view_literals;
  return packet.starts_with("\xFF\xFE"sv) || packet.starts_with("\xFE\xFF"sv) ||
         packet.starts_with("<\0"sv) || packet.starts_with("\0<"sv);
}

Coding CodingOf(std::string_view packet) {
  if (packet.starts_with(kUtf8Mark)) return Coding::Utf8;
  if (IsUtf16(packet)) return Coding::Utf16;
  const std::string name = DeclaredEncoding(TrimLeft(packet));
  if (name.empty()) return Coding::Plain;
  if (SameText(name, "UTF-8")) return Coding::Utf8;
  for (const std::string_view thai : {"windows-874", "cp874", "TIS-620", "ISO-8859-11"}) {
    if (SameText(name, thai)) return Coding::CodePage;
  }
  return Coding::Other;
}

// The letters of the bytes for a parser that does not know the encoding by its name.
int XMLCALL LettersOfCodePage(void* /*data*/, const XML_Char* name, XML_Encoding* encoding) {
  if (!SameText(name, "windows-874")) return XML_STATUS_ERROR;
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char16_t letter = Cp874ToUnicode(static_cast<unsigned char>(byte));
    encoding->map[byte] = letter != 0 || byte == 0 ? letter : static_cast<int>(byte);
  }
  encoding->data = nullptr;
  encoding->convert = nullptr;
  encoding->release = nullptr;
  return XML_STATUS_OK;
}

struct FreeParser {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

class Reader final : PacketPlace {
 public:
  Reader(Coding coding, bool ascii, PacketHandler& handler);

  // False where only a control character stood in the way.
  bool Read(std::string_view packet, std::size_t linesBefore);

 private:
  template <typename Work>
  static void Guarded(void* reader, Work work);
  static void XMLCALL Start(void* reader, const XML_Char* name, const XML_Char** attributes);
  static void XMLCALL End(void* reader, const XML_Char* name);
  static void XMLCALL Letters(void* reader, const XML_Char* text, int size);
  static void XMLCALL DocumentType(void* reader, const XML_Char*, const XML_Char*, const XML_Char*,
                                   int);

  std::size_t Line() const override {
    return XML_GetCurrentLineNumber(parser_.get()) + linesBefore_;
  }

  std::unique_ptr<XML_ParserStruct, FreeParser> parser_;
  PacketHandler& handler_;
  PacketText text_;
  std::size_t linesBefore_ = 0;
  std::exception_ptr failure_;
};

const char* NameForParser(Coding coding, bool ascii) {
  switch (coding) {
    case Coding::Plain:
      return ascii ? "UTF-8" : "windows-874";  // letters below 80 are the same, and read faster
    case Coding::CodePage:
      return "windows-874";
    case Coding::Utf8:
      return "UTF-8";
    case Coding::Utf16:
    case Coding::Other:
      break;
  }
  return nullptr;
}

Reader::Reader(Coding coding, bool ascii, PacketHandler& handler)
    : parser_(XML_ParserCreate(NameForParser(coding, ascii))),
      handler_(handler),
      text_(coding == Coding::Plain) {
  if (!parser_) throw std::bad_alloc();
  XML_SetUserData(parser_.get(), this);
  XML_SetElementHandler(parser_.get(), Start, End);
  XML_SetCharacterDataHandler(parser_.get(), Letters);
  XML_SetStartDoctypeDeclHandler(parser_.get(), DocumentType);
  XML_SetUnknownEncodingHandler(parser_.get(), LettersOfCodePage, nullptr);
}

// No exception may pass the parser, which is not written for any.
template <typename Work>
void Reader::Guarded(void* reader, Work work) {
  auto& self = *static_cast<Reader*>(reader);
  if (self.failure_) return;
  try {
    try {
      work(self);
    } catch (const PacketError& e) {
      if (e.Line() != 0) throw;
      throw PacketError(self.Line(), e.what());
    } catch (const EConvertError& e) {
      throw PacketError(self.Line(), e.Message());
    }
  } catch (...) {
    self.failure_ = std::current_exception();
    XML_StopParser(self.parser_.get(), XML_FALSE);
  }
}

void XMLCALL Reader::Start(void* reader, const XML_Char* name, const XML_Char** attributes) {
  Guarded(reader, [=](Reader& self) { self.handler_.Start(name, attributes, self.text_, self); });
}

void XMLCALL Reader::End(void* reader, const XML_Char* /*name*/) {
  Guarded(reader, [](Reader& self) { self.handler_.End(); });
}

void XMLCALL Reader::Letters(void* reader, const XML_Char* text, int size) {
  Guarded(reader, [=](Reader&) {
    const std::string_view letters(text, static_cast<std::size_t>(size));
    if (!Trim(letters).empty()) throw PacketError(0, "text between the elements");
  });
}

void XMLCALL Reader::DocumentType(void* reader, const XML_Char* /*name*/, const XML_Char* /*id*/,
                                  const XML_Char* /*publicId*/, int /*internal*/) {
  Guarded(reader, [](Reader&) { throw PacketError(0, "a document type, which no packet has"); });
}

bool Reader::Read(std::string_view packet, std::size_t linesBefore) {
  constexpr std::size_t kPiece = std::size_t{1} << 30;  // the parser counts bytes as an int
  linesBefore_ = linesBefore;
  for (bool last = false; !last;) {
    const std::string_view piece = packet.substr(0, kPiece);
    packet.remove_prefix(piece.size());
    last = packet.empty();
    const XML_Status status =
        XML_Parse(parser_.get(), piece.data(), static_cast<int>(piece.size()), last ? 1 : 0);
    if (failure_) std::rethrow_exception(failure_);
    if (status == XML_STATUS_OK) continue;
    const XML_Error error = XML_GetErrorCode(parser_.get());
    if (error == XML_ERROR_BAD_CHAR_REF) return false;
    if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    throw PacketError(Line(), XML_ErrorString(error));
  }
  return true;
}

// The number of a reference &#...; at the beginning of `text`, and where it ends.
struct Reference {
  unsigned number;
  std::size_t size;
};
std::optional<Reference> ReferenceAt(std::string_view text) {
  const bool hexadecimal = text.starts_with("&#x");
  const std::size_t begin = hexadecimal ? 3 : 2;
  const std::size_t end = text.find(';');
  if (end == std::string_view::npos) return std::nullopt;
  unsigned number = 0;
  const auto [last, error] =
      std::from_chars(text.data() + begin, text.data() + end, number, hexadecimal ? 16 : 10);
  if (error != std::errc() || last != text.data() + end) return std::nullopt;
  return Reference{number, end + 1};
}

// Control characters by number as the letters that go through the parser.
std::string WithoutControls(std::string_view packet) {
  std::string out;
  out.reserve(packet.size());
  for (;;) {
    const std::size_t at = packet.find("&#");
    out += packet.substr(0, at);
    if (at == std::string_view::npos) return out;
    packet.remove_prefix(at);
    constexpr std::size_t kLongest = 16;
    const auto reference = ReferenceAt(packet.substr(0, kLongest));
    const std::size_t size = reference ? reference->size : 2;
    if (reference && reference->number < kControlCount) {
      out += "&#" + std::to_string(kControls + reference->number) + ";";
    } else {
      out += packet.substr(0, size);
    }
    packet.remove_prefix(size);
  }
}

char32_t LetterAt(std::string_view utf8, std::size_t& at) {
  const auto lead = static_cast<unsigned char>(utf8[at++]);
  if (lead < 0x80) return lead;
  const unsigned more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
  char32_t letter = lead & (0x3FU >> more);
  for (unsigned i = 0; i < more && at < utf8.size(); ++i) {
    letter = letter << 6 | (static_cast<unsigned char>(utf8[at++]) & 0x3FU);
  }
  return letter;
}

[[noreturn]] void RefuseLetter(char32_t letter) {
  char number[8] = {};
  std::to_chars(number, number + sizeof number - 1, static_cast<unsigned>(letter), 16);
  throw PacketError(0, "no letter U+" + UpperCase(number) + " in code page 874");
}

}  // namespace

std::string_view PacketText::operator()(const char* utf8) {
  const std::string_view text = utf8;
  if (IsAscii(text)) return text;
  room_.clear();
  AppendDecoded(text);
  return room_;
}

void PacketText::AppendDecoded(std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t letter = LetterAt(utf8, at);
    if (letter < 0x80 || (bytes_ && letter < 0x100)) {
      room_.push_back(static_cast<char>(letter));
    } else if (letter - kControls < kControlCount) {
      room_.push_back(static_cast<char>(letter - kControls));
    } else if (const auto byte = UnicodeToCp874(letter)) {
      room_.push_back(static_cast<char>(*byte));
    } else {
      RefuseLetter(letter);
    }
  }
}

void ReadPacketXml(std::string_view packet, PacketHandler& handler) {
  const Coding coding = CodingOf(packet);
  std::size_t lines = 0;
  if (coding != Coding::Utf16) {
    packet = WithoutUtf8Mark(packet);
    const std::string_view trimmed =
        packet.substr(std::min(packet.find_first_not_of(" \t\r\n"), packet.size()));
    const std::string_view before = packet.substr(0, packet.size() - trimmed.size());
    lines = static_cast<std::size_t>(std::ranges::count(before, '\n'));
    packet = trimmed;
  }
  const bool ascii = IsAscii(packet);
  if (Reader(coding, ascii, handler).Read(packet, lines)) return;
  handler.Restart();
  if (Reader(coding, ascii, handler).Read(WithoutControls(packet), lines)) return;
  throw PacketError(0, "a reference to a letter that does not exist");
}

}  // namespace kvshare::data
