// The XML of a data packet, element by element.
// Internal header.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kvshare/data/packet/packet.h"

namespace kvshare::data {

// A text of a packet in code page 874, from the UTF-8 that the parser gives.
class PacketText {
 public:
  // Without a declared encoding a packet's letters 80 .. FF are bytes of the code page, whichever
  // way they are written.
  explicit PacketText(bool bytes) : bytes_(bytes) {}

  // Lasts until the next call. Throws EConvertError for a letter that the code page lacks.
  std::string_view operator()(const char* utf8);

 private:
  void AppendDecoded(std::string_view utf8);

  bool bytes_;
  std::string room_;
};

// Where the parser is.
class PacketPlace {
 public:
  virtual std::size_t Line() const = 0;

 protected:
  ~PacketPlace() = default;
};

// Receives the elements of a packet. An exception thrown by a callback stops the parser and is
// rethrown by ReadPacketXml.
class PacketHandler {
 public:
  PacketHandler() = default;
  virtual ~PacketHandler() = default;
  PacketHandler(const PacketHandler&) = delete;
  PacketHandler& operator=(const PacketHandler&) = delete;

  // `attributes` alternates names and values, in UTF-8, and ends with nullptr.
  virtual void Start(const char* name, const char** attributes, PacketText& text,
                     const PacketPlace& place) = 0;
  virtual void End() = 0;
  // Discards everything received so far: the packet is parsed again from its beginning.
  virtual void Restart() = 0;
};

// Throws PacketError for text that is not well-formed XML, for a document type declaration, for
// text between elements and for letters that the code page lacks. A PacketError thrown by the
// handler without a line gets the line of the current element.
void ReadPacketXml(std::string_view packet, PacketHandler& handler);

}  // namespace kvshare::data
