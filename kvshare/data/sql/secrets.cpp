#include "kvshare/data/sql/secrets.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::data {

namespace {

constexpr std::string_view kHidden = "***";

// Names in small letters, nothing else in them. A word of the first kind stands anywhere in a name,
// one of the second at its end, one of the third alone. A `key` says too little by itself behind
// another word: KeepAlive, Keyspace, PrimaryKey and the file SslKey are no secrets.
constexpr std::string_view kWords[] = {"password", "passwd", "passphrase", "passcode",  "passkey",
                                       "pwd",      "secret", "token",      "credential"};
constexpr std::string_view kEndings[] = {"pass",       "pw",          "apikey",     "accesskey",
                                         "accountkey", "authkey",     "cipherkey",  "cryptkey",
                                         "dbkey",      "databasekey", "decryptkey", "decryptionkey",
                                         "hexkey",     "masterkey",   "encryptkey", "encryptionkey",
                                         "privatekey", "sessionkey",  "sharedkey",  "signingkey"};
constexpr std::string_view kWholeNames[] = {"key", "pin"};
constexpr std::string_view kHarmlessEndings[] = {"bypass", "compass", "onepass", "twopass",
                                                 "multipass"};

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

// Behind the quote that closes what begins at `from`; a doubled one does not close it. The end of
// the text where none does.
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

// In an address the names of a query follow `?` and `&`.
bool NamesSecretInside(std::string_view name) {
  const std::size_t before = name.find_last_of("?&");
  return NamesSecret(name) ||
         (before != std::string_view::npos && NamesSecret(name.substr(before + 1)));
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
    const bool secret = value[stop] == '=' && NamesSecretInside(value.substr(from, stop - from));
    from = stop + 1;
    if (!secret) continue;
    spans.push_back(ValueAt(value, from));
    from = spans.back().to;
  }
  std::erase_if(spans, [](const Span& span) { return span.from >= span.to; });
  std::ranges::sort(spans, {}, &Span::from);
  return spans;
}

// Words end between letters of two scripts too: Thai has no blanks between them.
enum class Letter : std::uint8_t { None, Latin, Thai };

Letter KindOf(char c) {
  const auto byte = static_cast<unsigned char>(c);
  if ((byte >= '0' && byte <= '9') || byte == '_') return Letter::Latin;
  if ((byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z')) return Letter::Latin;
  constexpr std::string_view kSigns = "฿๏๚๛"_th;
  const bool thai = byte > 0xA0 && Cp874ToUnicode(byte) != 0;
  return thai && kSigns.find(c) == std::string_view::npos ? Letter::Thai : Letter::None;
}

// Whether a word can end between a secret's outermost byte and the byte beside it. A secret that
// ends in a sign ends with it only where no letter follows: each `-` of a text would tell that `-`
// is the password.
bool Parts(char outermost, char beside) {
  const Letter next = KindOf(beside);
  if (next == Letter::None) return true;
  const Letter own = KindOf(outermost);
  return own != Letter::None && own != next;
}

bool StandsAt(std::string_view text, std::size_t at, std::string_view secret) {
  if (!text.substr(at).starts_with(secret)) return false;
  const std::size_t end = at + secret.size();
  return (at == 0 || Parts(secret.front(), text[at - 1])) &&
         (end == text.size() || Parts(secret.back(), text[end]));
}

template <std::size_t N>
bool EndsWithOneOf(std::string_view text, const std::string_view (&endings)[N]) {
  return std::ranges::any_of(endings,
                             [text](std::string_view ending) { return text.ends_with(ending); });
}

// The secret of a value as the connection string has it, and as servers may repeat it: without its
// quotes, with each quote in it once, or twice.
void AddForms(std::vector<std::string>& secrets, std::string_view written) {
  secrets.emplace_back(written);
  const bool quoted = written.size() > 2 && kQuotes.find(written[0]) != std::string_view::npos;
  const std::string_view bare = quoted ? written.substr(1, written.size() - 2) : written;
  secrets.emplace_back(bare);
  for (const std::string_view twice : {"''", "\"\"", "}}"}) {
    const std::string_view once = twice.substr(1);
    secrets.push_back(StringReplace(bare, twice, once, {.ReplaceAll = true}));
    secrets.push_back(StringReplace(secrets.back(), once, twice, {.ReplaceAll = true}));
  }
}

}  // namespace

bool NamesSecret(std::string_view name) {
  const std::string letters = LowerLetters(name);
  return std::ranges::find(kWholeNames, letters) != std::end(kWholeNames) ||
         (EndsWithOneOf(letters, kEndings) && !EndsWithOneOf(letters, kHarmlessEndings)) ||
         std::ranges::any_of(kWords, [&letters](std::string_view word) {
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
      AddForms(secrets, value.substr(span.from, span.to - span.from));
    }
  }
  std::ranges::sort(secrets, [](const std::string& a, const std::string& b) {
    return a.size() != b.size() ? a.size() > b.size() : a < b;
  });
  secrets.erase(std::unique(secrets.begin(), secrets.end()), secrets.end());
  return secrets;
}

std::string HideSecrets(std::string_view text, std::span<const std::string> secrets) {
  std::string shown;
  std::size_t at = 0;
  while (at < text.size()) {
    const auto found = std::ranges::find_if(
        secrets, [&](const std::string& secret) { return StandsAt(text, at, secret); });
    if (found == secrets.end()) {
      shown += text[at++];
    } else {
      shown += kHidden;
      at += found->size();
    }
  }
  return shown;
}

}  // namespace kvshare::data
