#pragma once

#include <kel/export.h>
#include <kel/string_ref.h>

namespace Kel::Detail {

/// Reports a failed internal assertion on standard error and aborts the process.
/// @param condition the text of the condition that does not hold
/// @param message what else there is to say; may be empty
[[noreturn]] KEL_EXPORT void InternalErrorImpl(BasicStringRef<char> condition,
                                               BasicStringRef<char> message);

}  // namespace Kel::Detail
