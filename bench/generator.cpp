#include "generator.h"

#include <stdexcept>
#include <type_traits>

#include <projectdb/vocabulary.h>

#include "testing/temporary_directory.h"

namespace bench {
namespace {

using projectdb::DesignFile;
using projectdb::IP;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ProcType;

constexpr std::size_t kIpSourceFiles = 4;

std::size_t TestBenches(std::size_t design_files) { return design_files / 4; }
std::size_t Ips(std::size_t design_files) { return design_files / 20; }
std::size_t Parameters(std::size_t design_files) { return design_files / 2; }

DesignFile TestBenchAt(std::size_t index) {
  return {"sim/tb_unit_" + std::to_string(index) + ".sv", "sv_2012", "default"};
}

IP IpAt(std::size_t index) {
  const std::string name = "core_" + std::to_string(index);
  IP ip{"u_" + name, "ip/" + name + "/" + name + ".cfg", {}};
  for (std::size_t i = 0; i < kIpSourceFiles; ++i) {
    ip.src_files.push_back({"rtl/" + name + "_part_" + std::to_string(i) + ".v"});
  }
  return ip;
}

// A text in the form that a bare project has it in.
template <typename Text>
Text In(const std::string& text) {
  if constexpr (std::is_same_v<Text, std::u16string>) {
    return bare::Wide(text);
  } else {
    return text;
  }
}

template <typename Text>
typename bare::Project<Text>::File In(const DesignFile& file) {
  return {In<Text>(file.name), In<Text>(file.version), In<Text>(file.library)};
}

template <typename Text>
typename bare::Project<Text>::Ip In(const IP& ip) {
  typename bare::Project<Text>::Ip bare_ip{In<Text>(ip.instance_name), In<Text>(ip.path), {}};
  for (const projectdb::IPSrcFile& file : ip.src_files) {
    bare_ip.source_files.push_back(In<Text>(file.name));
  }
  return bare_ip;
}

template <typename Text>
typename bare::Project<Text>::Parameter In(const Parameter& parameter) {
  return {In<Text>(parameter.name), In<Text>(parameter.value),
          In<Text>(std::string(projectdb::TextOf(parameter.type)))};
}

// There is no operation that adds an IP instance, but a load does.
void LoadIps(KelProjectDatabase& database, std::size_t count) {
  const test_support::TemporaryDirectory directory;
  const std::string path = directory / "ips.xml";
  bare::WideProject project;
  for (std::size_t i = 0; i < count; ++i) project.ips.push_back(In<std::u16string>(IpAt(i)));
  bare::Export(project, path);
  if (!database.LoadProjectData(path, "")) throw std::runtime_error("cannot load " + path);
}

}  // namespace

DesignFile DesignFileAt(std::size_t index) {
  // A few names go beyond ASCII.
  const std::string directory = index % 64 == 0 ? "rtl/größe_" : "rtl/block_";
  return {directory + std::to_string(index / 100) + "/unit_" + std::to_string(index) + ".v",
          "verilog_2001", "work"};
}

Parameter ParameterAt(std::size_t index) {
  const auto type = static_cast<projectdb::ParameterType>(index / 4 % 4);
  const std::string number = std::to_string(index);
  return {"option_" + number, type == projectdb::e_noarg ? "" : "value_" + number, type};
}

ProcType ProcessAt(std::size_t parameter_index) {
  return static_cast<ProcType>(parameter_index % 4);
}

template <typename Text>
bare::Project<Text> MakeBareProject(std::size_t design_files) {
  bare::Project<Text> project;
  for (std::size_t i = 0; i < design_files; ++i) {
    project.design_files.push_back(In<Text>(DesignFileAt(i)));
  }
  for (std::size_t i = 0; i < TestBenches(design_files); ++i) {
    project.test_benches.push_back(In<Text>(TestBenchAt(i)));
  }
  for (std::size_t i = 0; i < Ips(design_files); ++i) {
    project.ips.push_back(In<Text>(IpAt(i)));
  }
  for (std::size_t i = 0; i < Parameters(design_files); ++i) {
    project.parameters.at(static_cast<std::size_t>(ProcessAt(i)))
        .push_back(In<Text>(ParameterAt(i)));
  }
  return project;
}

template bare::WideProject MakeBareProject(std::size_t design_files);
template bare::Utf8Project MakeBareProject(std::size_t design_files);

void FillDatabase(KelProjectDatabase& database, std::size_t design_files) {
  LoadIps(database, Ips(design_files));
  database.SetProjectCurrentPath("/designs/soc");
  for (std::size_t i = 0; i < design_files; ++i) {
    const DesignFile file = DesignFileAt(i);
    database.AddDesignRTLFile(file.name, file.version, file.library);
  }
  for (std::size_t i = 0; i < TestBenches(design_files); ++i) {
    const DesignFile file = TestBenchAt(i);
    database.AddSimulationTestBenchFile(file.name, file.version);
  }
  for (std::size_t i = 0; i < Parameters(design_files); ++i) {
    database.AddFlowProcessParameter(ProcessAt(i), projectdb::kParameterMap, ParameterAt(i));
  }
}

}  // namespace bench
