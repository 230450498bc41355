#pragma once

/// Marks what the shared library offers; everything else is hidden in it.
#define PROJECTDB_EXPORT __attribute__((visibility("default")))

/// Marks a private member of a class that is offered otherwise.
#define PROJECTDB_NO_EXPORT __attribute__((visibility("hidden")))
