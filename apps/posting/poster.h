// Documents into a company's books.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlquery.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::posting {

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

  // Writes the document with all its lines in one transaction; the send number that it took, or
  // nothing for a document that is there already with the same content (books.h), whoever wrote it.
  // A number that is taken for a document that then cannot be written is lost. Throws EPosting for
  // a document number that the tables cannot keep and for one that is there with another content,
  // EDatabaseError.
  std::optional<std::string> Post(const receipts::Document& document,
                                  const receipts::Receipt& receipt);

  // The document's line in the event log.
  static void Log(const receipts::Document& document, const receipts::Receipt& receipt,
                  std::string_view sendNumber);

 private:
  bool IsPosted(const receipts::Document& document, const receipts::Receipt& receipt);
  void Write(const receipts::Document& document, const receipts::Receipt& receipt,
             std::string_view sendNumber);
  void WriteHead(const receipts::Document& document, const receipts::Receipt& receipt,
                 std::string_view sendNumber);
  void WriteLine(const receipts::Document& document, const receipts::Receipt& receipt,
                 std::size_t index);

  TSQLConnection& connection_;
  TSQLQuery document_;
  TSQLQuery line_;
};

}  // namespace kvshare::posting
