// Loads a project, prints what it holds, changes it through each family of operations, exports
// it, loads the export and prints what differs.
//
//   project_tour PROJECT.xml SCHEMA.xsd OUTPUT_DIRECTORY

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>

namespace {

using projectdb::KelProjectDatabase;
using Lines = std::vector<std::string>;

void Section(Lines& lines, const std::string& title) { lines.push_back(title); }

void Item(Lines& lines, const std::string& name, const std::string& text) {
  lines.push_back("  " + name + std::string(name.size() < 22 ? 22 - name.size() : 1, ' ') + text);
}

void DescribeProperties(Lines& lines, const KelProjectDatabase& database) {
  Section(lines, "Project");
  Item(lines, "name", database.GetProjectName());
  Item(lines, "directory", database.GetProjectCurrentPath());
  Item(lines, "software version", database.GetProjectSoftwareVersion());
  Item(lines, "last change", database.GetProjectLastModifyTime());
  for (const char* name : {"owner", "board", "review:state"}) {
    std::string value;
    if (database.GetProjectInfoAttribute(name, value)) Item(lines, name, value);
  }
  Section(lines, "Device");
  Item(lines, "family", database.GetDeviceFamily());
  Item(lines, "device", database.GetDeviceModel());
  Item(lines, "timing model", database.GetDeviceTimingModel());
  Section(lines, "Top level");
  Item(lines, "module", database.GetDesignTopModuleName());
  Item(lines, "VHDL architecture", database.GetDesignTopVHDLArchitecture());
}

void DescribeList(Lines& lines, const std::string& title, const std::vector<std::string>& paths) {
  Section(lines, title + " (" + std::to_string(paths.size()) + ")");
  for (const std::string& path : paths) lines.push_back("  " + path);
}

void DescribeFiles(Lines& lines, const KelProjectDatabase& database) {
  std::vector<projectdb::DesignFile> files;
  database.GetDesignFileList(files);
  Section(lines, "Design files (" + std::to_string(files.size()) + ")");
  for (const auto& file : files) {
    lines.push_back("  " + file.name + "  " + file.version + "  " + file.library);
  }
  const auto list = [&](const char* title,
                        void (KelProjectDatabase::*get)(std::vector<std::string>&) const) {
    std::vector<std::string> paths;
    (database.*get)(paths);
    DescribeList(lines, title, paths);
  };
  list("Test benches", &KelProjectDatabase::GetSimulationTestBenchFileList);
  list("Miscellaneous files", &KelProjectDatabase::GetMiscellaneousFileList);
  list("Timing constraints", &KelProjectDatabase::GetTimingConstraintFileList);
  DescribeList(lines, "Interface constraint", {database.GetInterfaceConstraint()});
  std::vector<projectdb::IP> instances;
  database.GetIpInstanceList(instances);
  Section(lines, "IP instances (" + std::to_string(instances.size()) + ")");
  for (const auto& instance : instances) Item(lines, instance.instance_name, instance.path);
  list("IP source files", &KelProjectDatabase::GetIpSrcFileList);
}

void DescribeProcesses(Lines& lines, const KelProjectDatabase& database) {
  for (const projectdb::FlowProcessName& process : projectdb::kFlowProcesses) {
    Section(lines, process.title);
    Item(lines, "tool", database.GetFlowProcessExecutableName(process.type));
    for (const projectdb::ParameterMapName& map : projectdb::MapsOf(process.type)) {
      std::vector<projectdb::Parameter> parameters;
      database.GetFlowProcessParameterList(process.type, map.name, parameters);
      std::sort(parameters.begin(), parameters.end(),
                [](const auto& a, const auto& b) { return a.name < b.name; });
      for (const auto& parameter : parameters) {
        Item(lines, std::string(map.name) + " " + parameter.name,
             parameter.value + "  " + projectdb::TextOf(parameter.type));
      }
    }
  }
  Section(lines, "Threads");
  Item(lines, "synthesis", std::to_string(database.GetSynthesisMaxThreads(1)));
  Item(lines, "place and route", std::to_string(database.GetPnRMaxThreads(1)));
}

Lines Describe(const KelProjectDatabase& database) {
  Lines lines;
  DescribeProperties(lines, database);
  DescribeFiles(lines, database);
  DescribeProcesses(lines, database);
  return lines;
}

void Print(const Lines& lines) {
  for (const std::string& line : lines) std::cout << line << "\n";
}

// What only one of two descriptions has, in its order.
Lines Missing(const Lines& from, const Lines& in) {
  Lines missing;
  std::copy_if(in.begin(), in.end(), std::back_inserter(missing), [&from](const std::string& line) {
    return std::find(from.begin(), from.end(), line) == from.end();
  });
  return missing;
}

// Returns whether nothing differs but the stamps.
bool PrintDifferences(const Lines& before, const Lines& after) {
  bool only_stamps = true;
  const auto print = [&only_stamps](char sign, const Lines& lines) {
    for (const std::string& line : lines) {
      std::cout << sign << line << "\n";
      const bool is_stamp = line.find("last change") == 2 || line.find("software version") == 2;
      only_stamps = only_stamps && is_stamp;
    }
  };
  print('-', Missing(after, before));
  print('+', Missing(before, after));
  return only_stamps;
}

void ChangeEverything(KelProjectDatabase& database) {
  database.SetProjectName(database.GetProjectName() + "_rev_b");
  database.SetDeviceTimingModel("slow_85c");
  database.SetDesignTopModuleName("soc_top_rev_b");
  database.AddProjectInfoAttribute("owner", "Zoë Brandt");
  database.AddDesignRTLFile("rtl/debug/probe.sv", "sv_2017", "debug");
  database.AddSimulationTestBenchFile("sim/tb_probe.sv", "sv_2017");
  database.AddMiscellaneousFile("doc/rev_b_änderungen.txt");
  database.AddTimingConstraintFile("constraints/probe.sdc");
  database.SetInterfaceConstraint("constraints/rev_b.interface.csv");
  database.SetSynthesisExecutableName("kel_synth_rev_b");
  database.AddSynthesisParameter("max_threads", "6", projectdb::e_string);
  database.AddSynthesisVerilogDefineParameter("PROBE_WIDTH", "32");
  database.AddSynthesisVerilogMacro("WITH_PROBE", "1");
  database.AddPlaceAndRouteParameter("keep_probes", "true", projectdb::e_bool);
  database.AddBitstreamGenerateParameter("compress_all", "", projectdb::e_noarg);
  database.AddDebuggerParameter("trigger_mode", "edge", projectdb::e_option);
}

int Tour(const std::string& project, const std::string& schema, const std::string& directory) {
  KelProjectDatabase database;
  if (!database.LoadProjectData(project, schema)) return 1;
  const Lines loaded = Describe(database);
  Print(loaded);

  ChangeEverything(database);
  std::cout << "\nChanged:\n";
  PrintDifferences(loaded, Describe(database));

  // Relative names keep their meaning if the project is read again where it was written.
  const std::string exported = (std::filesystem::path(directory) / "project_tour.xml").string();
  database.ExportProjectData(exported);
  database.SetProjectCurrentPath(std::filesystem::absolute(directory).lexically_normal().string());
  KelProjectDatabase again;
  if (!again.LoadProjectData(exported, schema)) return 1;
  again.SetProjectCurrentPath(database.GetProjectCurrentPath());
  std::cout << "\nExported to " << exported << " and loaded again. What differs:\n";
  if (!PrintDifferences(Describe(database), Describe(again))) return 1;
  std::cout << "Nothing but the stamps.\n";
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::cerr << "usage: project_tour PROJECT.xml SCHEMA.xsd OUTPUT_DIRECTORY\n";
    return 2;
  }
  try {
    return Tour(argv[1], argv[2], argv[3]);
  } catch (const std::exception& error) {
    std::cerr << "project_tour: " << error.what() << "\n";
    return 1;
  }
}
