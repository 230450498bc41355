#pragma once

#include <memory>

namespace projectdb::xml {

struct Release {
  template <typename Object>
  void operator()(Object* object) const {
    object->release();
  }
};

/// Owner of an object of the XML library that is given back by its release().
template <typename Object>
using Owned = std::unique_ptr<Object, Release>;

}  // namespace projectdb::xml
