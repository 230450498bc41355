#include <iostream>
#include <vector>

#include <projectdb/project_db.h>

int main() {
  projectdb::KelProjectDatabase database;
  database.CreateNewProjectDatabase("blinker");
  database.SetDesignTopModuleName("blinker_top");
  database.AddDesignRTLFile("rtl/blinker.v", "verilog_2001", "work");
  database.AddTimingConstraintFile("blinker.sdc");
  database.AddSynthesisParameter("max_threads", "4", projectdb::e_string);
  database.ExportProjectData("blinker.xml");

  projectdb::KelProjectDatabase loaded;
  if (!loaded.LoadProjectData("blinker.xml", "")) return 1;
  std::vector<projectdb::DesignFile> files;
  loaded.GetDesignFileList(files);
  std::cout << loaded.GetProjectName() << " has " << files.size() << " design file and uses "
            << loaded.GetSynthesisMaxThreads(1) << " threads\n";
  return 0;
}
