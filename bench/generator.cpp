#include "generator.h"

#include <stdexcept>

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

using bare::Wide;

bare::File Wide(const DesignFile& file) {
  return {Wide(file.name), Wide(file.version), Wide(file.library)};
}

bare::Ip Wide(const IP& ip) {
  bare::Ip wide{Wide(ip.instance_name), Wide(ip.path), {}};
  for (const projectdb::IPSrcFile& file : ip.src_files) {
    wide.source_files.push_back(Wide(file.name));
  }
  return wide;
}

bare::Parameter Wide(const Parameter& parameter) {
  return {Wide(parameter.name), Wide(parameter.value), Wide(projectdb::TextOf(parameter.type))};
}

std::vector<bare::Ip> MakeBareIps(std::size_t count) {
  std::vector<bare::Ip> ips;
  for (std::size_t i = 0; i < count; ++i) ips.push_back(Wide(IpAt(i)));
  return ips;
}

// There is no operation that adds an IP instance, but a load does.
void LoadIps(KelProjectDatabase& database, std::size_t count) {
  const test_support::TemporaryDirectory directory;
  const std::string path = directory / "ips.xml";
  bare::Project project;
  project.ips = MakeBareIps(count);
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

bare::Project MakeBareProject(std::size_t design_files) {
  bare::Project project;
  for (std::size_t i = 0; i < design_files; ++i) {
    project.design_files.push_back(Wide(DesignFileAt(i)));
  }
  for (std::size_t i = 0; i < TestBenches(design_files); ++i) {
    project.test_benches.push_back(Wide(TestBenchAt(i)));
  }
  project.ips = MakeBareIps(Ips(design_files));
  for (std::size_t i = 0; i < Parameters(design_files); ++i) {
    project.parameters.at(ProcessAt(i)).push_back(Wide(ParameterAt(i)));
  }
  return project;
}

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
