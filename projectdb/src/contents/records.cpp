#include <projectdb/records.h>

#include <utility>

namespace projectdb {

Parameter::Parameter(const std::string& name_, const std::string& value_, ParameterType type_)
    : name(name_), value(value_), type(type_) {}

DesignFile::DesignFile(const std::string& name_, const std::string& version_,
                       const std::string& library_)
    : name(name_), version(version_), library(library_) {}

DeviceInfo::DeviceInfo() = default;
DeviceInfo::DeviceInfo(std::string& family_, std::string& device_, std::string& timing_model_)
    : family(family_), device(device_), timing_model(timing_model_) {}

DesignInfo::DesignInfo() = default;
DesignInfo::DesignInfo(std::string& top_module_, std::vector<DesignFile>& design_files_,
                       std::string& top_vhdl_arch_, std::string& def_veri_version_,
                       std::string& def_vhdl_version_)
    : top_module(top_module_),
      top_vhdl_arch(top_vhdl_arch_),
      design_files(std::exchange(design_files_, {})),
      def_veri_version(def_veri_version_),
      def_vhdl_version(def_vhdl_version_) {}

DesignConstraint::DesignConstraint() = default;
DesignConstraint::DesignConstraint(std::vector<std::string>& sdc_files_, std::string& inter_file_)
    : sdc_files(std::exchange(sdc_files_, {})), inter_file(inter_file_) {}

DesignISF::DesignISF() = default;
DesignISF::DesignISF(std::vector<std::string>& isf_files_)
    : isf_files(std::exchange(isf_files_, {})) {}

FlowProcess::FlowProcess() = default;
FlowProcess::FlowProcess(std::string& name_, std::string& tool_name_,
                         std::vector<Parameter>& parameters_)
    : name(name_), tool_name(tool_name_), parameters(std::exchange(parameters_, {})) {}

}  // namespace projectdb
