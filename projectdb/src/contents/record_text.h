#pragma once

#include <string>
#include <string_view>

#include <projectdb/records.h>

/// Records as one line for people to read, equal for equal records only: the first field, and then
/// those others that are not empty, each behind its name. Text that would not be one word is
/// quoted.
namespace projectdb {

/// In double quotes; quotes, backslashes and control characters are escaped as in C.
std::string QuotedText(std::string_view text);

/// An entry of a list of names is shown as it is.
inline const std::string& TextOf(const std::string& name) { return name; }
inline const std::string& TextOf(const IPSrcFile& file) { return file.name; }

/// "src/top.v version=v2001 library=work"
std::string TextOf(const DesignFile& file);

/// "uart path=ip/uart.cfg file=uart.v file=fifo.v"
std::string TextOf(const IP& ip);

/// "effort value=high type=e_option"; a type without a text is shown as its number.
std::string TextOf(const Parameter& parameter);

/// "high type=e_option": a parameter under its key, which the line leaves out.
std::string TextUnderKey(const std::string& key, const Parameter& parameter);

/// The name of a parameter map as a part of a dotted key, where it ends at the next dot: quoted if
/// it is empty or has a dot or a quote of its own.
std::string MapKey(const std::string& name);

}  // namespace projectdb
