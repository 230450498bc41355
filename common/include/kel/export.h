#pragma once

/// Marks what a shared library offers; everything else is hidden in it. Windows wants the mark of
/// its users too, and none in a static library: there CMake defines `KEL_SHARED` for whoever builds
/// or links the shared libraries, and `KEL_BUILD` for who builds them.
#if !defined(_WIN32)
#define KEL_EXPORT __attribute__((visibility("default")))
#elif !defined(KEL_SHARED)
#define KEL_EXPORT
#elif defined(KEL_BUILD)
#define KEL_EXPORT __declspec(dllexport)
#else
#define KEL_EXPORT __declspec(dllimport)
#endif
