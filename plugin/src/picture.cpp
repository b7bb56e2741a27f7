#include "picture.hpp"

#include <string>

namespace morvesk {

Picture::Picture(const python::Module& module, const char* fileName)
    : module_(module), path_(std::string("SystemPlugins/QelPanel/pictures/") + fileName) {}

python::Object Picture::load() const {
    const auto loadPixmap = module_.global(Name::LoadPixmap);
    const auto path = module_.global(Name::resolveFilename)({module_.global(Name::SCOPE_PLUGINS), path_});
    return loadPixmap({}, {Name::cached, true, Name::path, path});
}

}  // namespace morvesk
