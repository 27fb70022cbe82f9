// Secrets among the parameters of a connection, so that they can be kept out of what is shown.
// Internal header.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare::data {

// Whether a parameter of that name holds a secret. Letter case does not count, nor does what stands
// between the letters. For the plain words a part of the name is enough (Password, EncryptPwd, Jet
// OLEDB:Database Password, Client_Secret); DBPASS ends in one; a key is secret by itself and behind
// a word for its use (Key, ApiKey, EncryptionKey), but not in KeepAlive, Keyspace or PrimaryKey.
KVSHARE_API bool NamesSecret(std::string_view name);

// A parameter's value with `***` in place of each secret: of all of it where the name says so, and
// inside a connection string (`Server=db;PWD={a;b}`) or an address (`postgres://user:word@db`).
// Where an end is in doubt, more is taken for the secret, not less.
KVSHARE_API std::string WithoutSecrets(std::string_view name, std::string_view value);

// All secrets of the parameters in the forms in which a server may repeat them, the longest first,
// each once.
KVSHARE_API std::vector<std::string> SecretsOf(const TStrings& params);

// A text with `***` in place of each secret that stands in it as a whole word: between bytes that
// are no letters or digits, letters of the other script, or the text's ends. A piece of another
// word stays, since hiding it would tell a short secret: of the secret `a`, `loc***lhost`. The
// secrets, none of them empty, are tried in their order at each place.
KVSHARE_API std::string HideSecrets(std::string_view text, std::span<const std::string> secrets);

}  // namespace kvshare::data
