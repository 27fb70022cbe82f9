#include "kvshare/data/secrets.h"

#include <algorithm>

#include "kvshare/rtl/strutils.h"

namespace kvshare::data {

namespace {

constexpr std::string_view kHidden = "***";
constexpr std::string_view kWords[] = {"password", "passwd", "passphrase",
                                       "pwd",      "secret", "token"};

struct Span {
  std::size_t from = 0;
  std::size_t to = 0;
};

std::string LowerLetters(std::string_view name) {
  std::string letters;
  for (const char c : name) {
    if (c >= 'A' && c <= 'Z') letters += static_cast<char>(c + 32);
    if (c >= 'a' && c <= 'z') letters += c;
  }
  return letters;
}

// Behind the quote that closes what begins at `from`; a doubled one is none. The end of the text
// where none does.
std::size_t BehindQuoted(std::string_view text, std::size_t from) {
  const char close = text[from] == '{' ? '}' : text[from];
  for (std::size_t i = from + 1; i < text.size(); ++i) {
    if (text[i] != close) continue;
    if (i + 1 == text.size() || text[i + 1] != close) return i + 1;
    ++i;
  }
  return text.size();
}

constexpr std::string_view kQuotes = "{'\"";

// The value that begins at `from`, up to the `;` behind it.
Span ValueAt(std::string_view text, std::size_t from) {
  const std::size_t begin = std::min(text.find_first_not_of(" \t", from), text.size());
  const bool quoted = begin < text.size() && kQuotes.find(text[begin]) != std::string_view::npos;
  const std::size_t behind = quoted ? BehindQuoted(text, begin) : begin;
  const std::size_t end = std::min(text.find(';', behind), text.size());
  return {begin, begin + TrimRight(text.substr(begin, end - begin)).size()};
}

// The password of an address, from the first `:` behind the scheme to the last `@`.
Span AddressSecret(std::string_view text) {
  const std::size_t scheme = text.find("://");
  if (scheme == std::string_view::npos) return {};
  const std::size_t colon = text.find(':', scheme + 3);
  const std::size_t at = text.rfind('@');
  if (colon == std::string_view::npos || at == std::string_view::npos || at < colon) return {};
  return {colon + 1, at};
}

std::vector<Span> SecretSpans(std::string_view name, std::string_view value) {
  std::vector<Span> spans;
  if (NamesSecret(name)) {
    if (!value.empty()) spans.push_back({0, value.size()});
    return spans;
  }
  if (const Span address = AddressSecret(value); address.to != 0) spans.push_back(address);
  std::size_t from = 0;
  while (from < value.size()) {
    const std::size_t stop = value.find_first_of("=;", from);
    if (stop == std::string_view::npos) break;
    const bool secret = value[stop] == '=' && NamesSecret(value.substr(from, stop - from));
    from = stop + 1;
    if (!secret) continue;
    spans.push_back(ValueAt(value, from));
    from = spans.back().to;
  }
  std::erase_if(spans, [](const Span& span) { return span.from >= span.to; });
  std::ranges::sort(spans, {}, &Span::from);
  return spans;
}

}  // namespace

bool NamesSecret(std::string_view name) {
  const std::string letters = LowerLetters(name);
  return letters == "pass" || std::ranges::any_of(kWords, [&letters](std::string_view word) {
           return letters.find(word) != std::string::npos;
         });
}

std::string WithoutSecrets(std::string_view name, std::string_view value) {
  std::string shown;
  std::size_t done = 0;
  for (const Span& span : SecretSpans(name, value)) {
    if (span.from >= done) shown.append(value.substr(done, span.from - done)).append(kHidden);
    done = std::max(done, span.to);
  }
  return shown.append(value.substr(done));
}

std::vector<std::string> SecretsOf(const TStrings& params) {
  std::vector<std::string> secrets;
  for (int i = 0; i < params.Count(); ++i) {
    const std::string_view value = params.ValueFromIndex(i);
    for (const Span& span : SecretSpans(params.Names(i), value)) {
      const std::string_view secret = value.substr(span.from, span.to - span.from);
      secrets.emplace_back(secret);
      const bool quoted = secret.size() > 2 && kQuotes.find(secret[0]) != std::string_view::npos;
      if (quoted) secrets.emplace_back(secret.substr(1, secret.size() - 2));
    }
  }
  std::ranges::sort(secrets, [](const std::string& a, const std::string& b) {
    return a.size() != b.size() ? a.size() > b.size() : a < b;
  });
  secrets.erase(std::unique(secrets.begin(), secrets.end()), secrets.end());
  return secrets;
}

}  // namespace kvshare::data
