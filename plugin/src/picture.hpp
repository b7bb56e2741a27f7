// The pictures beside the rows of the list, which the host loads.
#pragma once

#include "python/module.hpp"

namespace morvesk {

/// A picture of the host panel. Each load asks the host anew, whose cache shares what it has loaded before.
class Picture {
  public:
    Picture(const python::Module& module, const char* fileName);

    python::Object load() const;

  private:
    const python::Module& module_;
    python::Value path_;
};

}  // namespace morvesk
