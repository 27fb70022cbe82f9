// Documents into a company's books.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "kvshare/data/sqlconnection.h"
#include "kvshare/data/sqlquery.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::posting {

enum class Outcome : std::uint8_t { Posted, WasThere };

// A document that cannot be posted; the others can. The message is code page 874.
class EPosting : public Exception {
 public:
  using Exception::Exception;
};

// Posts documents to a company (company.h) over an open connection whose dialect is loaded.
class Poster {
 public:
  explicit Poster(TSQLConnection& connection);

  // Whether the holder of the position may post.
  bool MayPost(std::int32_t position);

  // Writes the document with all its lines in one transaction, and then a line of the event log.
  // What is there already with the same date, lines and amounts is left alone. The number takes the
  // next send number, which is lost where the writing fails. Throws EPosting for a number that the
  // tables cannot keep and for one that is there with another content, EServerError.
  Outcome Post(const receipts::Document& document, const receipts::Receipt& receipt);

 private:
  bool IsThere(std::string_view condition);
  void WriteDocument(const receipts::Document& document, const receipts::Receipt& receipt,
                     std::string_view sendNumber);
  void WriteLine(const receipts::Document& document, const receipts::Receipt& receipt,
                 std::size_t index);

  TSQLConnection& connection_;
  TSQLQuery document_;
  TSQLQuery line_;
};

}  // namespace kvshare::posting
