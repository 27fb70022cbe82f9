// Secrets among the parameters of a connection, so that they can be kept out of what is shown.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare::data {

// Whether a parameter of that name holds a secret. Part of the name is enough, in any letter case
// and whatever stands between its letters: Password, PWD, EncryptPwd, Jet OLEDB:Database Password.
KVSHARE_API bool NamesSecret(std::string_view name);

// A parameter's value with `***` in place of each secret: of all of it where the name says so, and
// inside a connection string (`Server=db;PWD={a;b}`) or an address (`postgres://user:word@db`).
// Where an end is in doubt, more is taken for the secret, not less.
KVSHARE_API std::string WithoutSecrets(std::string_view name, std::string_view value);

// All secrets of the parameters, the longest first, each once.
KVSHARE_API std::vector<std::string> SecretsOf(const TStrings& params);

}  // namespace kvshare::data
