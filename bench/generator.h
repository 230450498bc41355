#pragma once

#include <cstddef>

#include <projectdb/project_db.h>

#include "bare.h"

/// Projects of any size, as large designs have them: with a quarter as many test benches as design
/// files, a twentieth as many IP instances of four source files and half as many parameters.
namespace bench {

projectdb::DesignFile DesignFileAt(std::size_t index);
projectdb::Parameter ParameterAt(std::size_t index);

/// Which process the parameter belongs to.
projectdb::ProcType ProcessAt(std::size_t parameter_index);

/// @tparam Text std::u16string or std::string
template <typename Text>
bare::Project<Text> MakeBareProject(std::size_t design_files);

/// Gives an empty database the same project; the XML library must be initialised.
void FillDatabase(projectdb::KelProjectDatabase& database, std::size_t design_files);

}  // namespace bench
