#pragma once

/// Marks what the shared library offers; everything else is hidden in it. On Windows the library is
/// static, and nothing has to be marked.
#if defined(_WIN32)
#define KEL_EXPORT
#else
#define KEL_EXPORT __attribute__((visibility("default")))
#endif
