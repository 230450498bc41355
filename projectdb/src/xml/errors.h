#pragma once

#include <new>
#include <stdexcept>
#include <string>

#include <xercesc/dom/DOMException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/XMLException.hpp>

#include "base/failure.h"
#include "xml/text.h"

namespace projectdb::xml {

/// Runs the action and gives its result. Memory that the XML library cannot get is std::bad_alloc
/// outside it, as everywhere.
template <typename Action>
auto WithBadAlloc(Action action) {
  try {
    return action();
  } catch (const xercesc::OutOfMemoryException&) {
    throw std::bad_alloc();
  }
}

/// Runs the action and gives its result. A Failure or an exception of the XML library leaves as
/// std::runtime_error with the text prefix + reason + "\n"; any other exception as it is.
template <typename Action>
auto WithPrefixedErrors(const std::string& prefix, Action action) {
  try {
    return WithBadAlloc(action);
  } catch (const Failure& failure) {
    throw std::runtime_error(prefix + failure.what() + "\n");
  } catch (const xercesc::XMLException& exception) {
    throw std::runtime_error(prefix + TranscodeXMLString(exception.getMessage()) + "\n");
  } catch (const xercesc::DOMException& exception) {
    throw std::runtime_error(prefix + TranscodeXMLString(exception.getMessage()) + "\n");
  }
}

/// As WithPrefixedErrors, for work inside the XML library, which may let anything else out: that
/// leaves as std::runtime_error "Unexpected Exception\n".
template <typename Action>
auto WithOnlyRuntimeErrors(const std::string& prefix, Action action) {
  try {
    return WithPrefixedErrors(prefix, action);
  } catch (const std::runtime_error&) {
    throw;
  } catch (...) {
    throw std::runtime_error("Unexpected Exception\n");
  }
}

}  // namespace projectdb::xml
