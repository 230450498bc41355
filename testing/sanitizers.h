#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define PROJECTDB_SANITIZED true
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define PROJECTDB_SANITIZED true
#endif
#endif
#ifndef PROJECTDB_SANITIZED
#define PROJECTDB_SANITIZED false
#endif

namespace test_support {

/// Whether a sanitizer watches this program, which then makes system calls of its own.
constexpr bool kSanitized = PROJECTDB_SANITIZED;

}  // namespace test_support
