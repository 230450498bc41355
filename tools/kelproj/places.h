#pragma once

#include <string>

namespace kelproj {

/// How people are told where in a project something is: WHAT or WHAT[WHERE].
inline std::string PlaceText(const std::string& what, const std::string& where) {
  return where.empty() ? what : what + "[" + where + "]";
}

/// The same for what has a name there: NAME or PLACE.NAME.
inline std::string MemberPlace(const std::string& place, const std::string& name) {
  return place.empty() ? name : place + "." + name;
}

}  // namespace kelproj
