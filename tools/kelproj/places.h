#pragma once

#include <string>

namespace kelproj {

/// How people are told where in a project something is: WHAT or WHAT[WHERE].
inline std::string PlaceText(const std::string& what, const std::string& where) {
  return where.empty() ? what : what + "[" + where + "]";
}

}  // namespace kelproj
