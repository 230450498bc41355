#pragma once

/// Marks what the shared library offers; everything else is hidden in it.
#define KEL_EXPORT __attribute__((visibility("default")))
