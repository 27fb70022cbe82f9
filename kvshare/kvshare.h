// Everything that a program of the suite uses of the library.
#pragma once

// The platform's run-time routines
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/files.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/formatfloat.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/inifile.h"
#include "kvshare/rtl/modules.h"
#include "kvshare/rtl/random.h"
#include "kvshare/rtl/stringlist.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/rtl/types.h"
#include "kvshare/rtl/variant.h"

// The operating system, and the program as its windows see it
#include "kvshare/os/locale.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/windowmessage.h"
#include "kvshare/ui/application.h"

// Start, shared settings, messages
#include "kvshare/settings/catalogue.h"
#include "kvshare/settings/datetimeformat.h"
#include "kvshare/settings/globals.h"
#include "kvshare/settings/language.h"
#include "kvshare/settings/package.h"

// Money, dates, texts
#include "kvshare/dates/date.h"
#include "kvshare/money/money.h"
#include "kvshare/text/crypt.h"
#include "kvshare/text/strings.h"
#include "kvshare/text/strlist.h"

// Platform services
#include "kvshare/platform/fileinfo.h"
#include "kvshare/platform/verinfo.h"
