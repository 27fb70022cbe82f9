// Documents into a company's books.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "apps/posting/eposting.h"
#include "apps/receipts/calc.h"
#include "apps/receipts/model.h"
#include "kvshare/data/sql/sqlconnection.h"
#include "kvshare/data/sql/sqlquery.h"

namespace kvshare::posting {

// Posts documents to a company (company.h) over an open connection whose dialect is loaded.
class Poster {
 public:
  // The rules by which the receipts are computed are kept with each document.
  explicit Poster(TSQLConnection& connection, const receipts::Rules& rules = {});

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
  void WritePaper(const receipts::Document& document);
  void WriteLine(const receipts::Document& document, const receipts::Receipt& receipt,
                 std::size_t index);

  TSQLConnection& connection_;
  std::string rules_;
  TSQLQuery document_;
  TSQLQuery paper_;
  TSQLQuery line_;
};

}  // namespace kvshare::posting
