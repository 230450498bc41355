#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <projectdb/project_db.h>

namespace test_support {

/// All flow processes, in their order.
inline constexpr projectdb::ProcType kProcesses[] = {
    projectdb::e_synthesis, projectdb::e_place_and_route, projectdb::e_bitstream_generation,
    projectdb::e_debugger};

/// Expects that there is no such flow process: operations on it give nothing and change nothing.
inline void ExpectNoFlowProcess(projectdb::KelProjectDatabase& database, projectdb::ProcType type) {
  SCOPED_TRACE(type);
  const projectdb::Parameter parameter("effort", "high", projectdb::e_option);
  database.SetFlowProcessName(type, "step");
  database.SetFlowProcessExecutableName(type, "tool");
  EXPECT_EQ(database.AddFlowProcessParameterMap(type, "param"), nullptr);
  EXPECT_FALSE(database.AddFlowProcessParameter(type, "param", parameter));
  EXPECT_FALSE(
      database.AddFlowProcessParameter(type, "param", "effort", "high", projectdb::e_option));
  EXPECT_FALSE(database.AddFlowProcessParameterList(type, "param", {parameter}));
  EXPECT_FALSE(database.AddFlowProcessParameterList(type, "param", {}));
  EXPECT_EQ(database.GetFlowProcess(type), nullptr);
  EXPECT_EQ(database.FindFlowProcessParameterMap(type, "param"), nullptr);
  EXPECT_EQ(database.GetFlowProcessExecutableName(type), "");
  EXPECT_FALSE(database.GetFlowProcessParameter(type, "param", "effort"));
  EXPECT_EQ(database.GetFlowProcessParameterValue(type, "param", "effort"), "");
  std::vector<projectdb::Parameter> parameters = {parameter};
  database.GetFlowProcessParameterList(type, "param", parameters);
  EXPECT_EQ(parameters.size(), 1U);
}

}  // namespace test_support
