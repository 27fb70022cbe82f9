// Where the servers' SQL and manners differ.
#pragma once

#include <string>

namespace kvshare {

struct Dialect {
  const char* server;  // as tests/servers/with-server names it
  const char* library;
  const char* entry;
  const char* version;  // what ServerVersion begins with
  const char* text;     // types: long text
  const char* bytes;
  const char* real;
  const char* boolean;
  const char* time;
  const char* moment;
  bool upperNames;        // unquoted names come back in upper case
  bool padsCharacters;    // CHAR keeps its blanks
  bool snapshotConflict;  // updating what changed since the snapshot is a conflict
  bool viaOdbc;           // whose drivers tell kinds in ways of their own
  // A query for a connection's number, and what ends that one; nullptr where nothing does.
  const char* ownNumber = nullptr;
  const char* kill = nullptr;  // the number for %
};

// Of the server that this program runs beside; throws where none was named.
const Dialect& CurrentDialect();

}  // namespace kvshare
