#pragma once

/// What the system calls are named that saves make on every system.
namespace test_support {

/// The call that writes bytes into a file.
const char* NameOfWrite();

/// The call that has the system write a file to its disk.
const char* NameOfFlush();

}  // namespace test_support
