#include "contents/model_names.h"
#include "project_db/project_data.h"

// The general flow-process operations with the process and the map fixed, one line each.
namespace projectdb {

std::string KelProjectDatabase::GetSynthesisExecutableName() const {
  return GetFlowProcessExecutableName(e_synthesis);
}

void KelProjectDatabase::SetSynthesisExecutableName(const std::string& name) {
  SetFlowProcessExecutableName(e_synthesis, name);
}

bool KelProjectDatabase::AddSynthesisParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_synthesis, kParameterMap.narrow, parameter);
}

bool KelProjectDatabase::AddSynthesisParameter(const std::string& name, const std::string& value,
                                               ParameterType type) {
  return AddFlowProcessParameter(e_synthesis, kParameterMap.narrow, name, value, type);
}

bool KelProjectDatabase::AddSynthesisParameterList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_synthesis, kParameterMap.narrow, parameters);
}

void KelProjectDatabase::GetSynthesisParameterList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_synthesis, kParameterMap.narrow, parameters);
}

std::string KelProjectDatabase::GetSynthesisParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_synthesis, kParameterMap.narrow, name);
}

bool KelProjectDatabase::AddSynthesisVerilogDefineParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_synthesis, kDefineMap.narrow, parameter);
}

bool KelProjectDatabase::AddSynthesisVerilogDefineParameter(const std::string& name,
                                                            const std::string& value) {
  return AddFlowProcessParameter(e_synthesis, kDefineMap.narrow, name, value, kNoParameterType);
}

bool KelProjectDatabase::AddSynthesisVerilogDefineParameterList(
    const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_synthesis, kDefineMap.narrow, parameters);
}

void KelProjectDatabase::GetSynthesisVerilogDefineParameterList(
    std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_synthesis, kDefineMap.narrow, parameters);
}

std::string KelProjectDatabase::GetSynthesisVerilogDefineParameterValue(
    const std::string& name) const {
  return GetFlowProcessParameterValue(e_synthesis, kDefineMap.narrow, name);
}

bool KelProjectDatabase::AddSynthesisVerilogMacro(const Parameter& parameter) {
  return AddFlowProcessParameter(e_synthesis, kMacroMap.narrow, parameter);
}

bool KelProjectDatabase::AddSynthesisVerilogMacro(const std::string& name,
                                                  const std::string& value) {
  return AddFlowProcessParameter(e_synthesis, kMacroMap.narrow, name, value, kNoParameterType);
}

bool KelProjectDatabase::AddSynthesisVerilogMacroList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_synthesis, kMacroMap.narrow, parameters);
}

void KelProjectDatabase::GetSynthesisVerilogMacroList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_synthesis, kMacroMap.narrow, parameters);
}

std::string KelProjectDatabase::GetSynthesisVerilogMacroValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_synthesis, kMacroMap.narrow, name);
}

std::string KelProjectDatabase::GetPlaceAndRouteExecutableName() const {
  return GetFlowProcessExecutableName(e_place_and_route);
}

void KelProjectDatabase::SetPlaceAndRouteExecutableName(const std::string& name) {
  SetFlowProcessExecutableName(e_place_and_route, name);
}

bool KelProjectDatabase::AddPlaceAndRouteParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_place_and_route, kParameterMap.narrow, parameter);
}

bool KelProjectDatabase::AddPlaceAndRouteParameter(const std::string& name,
                                                   const std::string& value, ParameterType type) {
  return AddFlowProcessParameter(e_place_and_route, kParameterMap.narrow, name, value, type);
}

bool KelProjectDatabase::AddPlaceAndRouteParameterList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_place_and_route, kParameterMap.narrow, parameters);
}

void KelProjectDatabase::GetPlaceAndRouteParameterList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_place_and_route, kParameterMap.narrow, parameters);
}

std::optional<Parameter> KelProjectDatabase::GetPlaceAndRouteParameter(
    const std::string& name) const {
  return GetFlowProcessParameter(e_place_and_route, kParameterMap.narrow, name);
}

std::string KelProjectDatabase::GetPlaceAndRouteParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_place_and_route, kParameterMap.narrow, name);
}

std::string KelProjectDatabase::GetBitstreamGenerateExecutableName() const {
  return GetFlowProcessExecutableName(e_bitstream_generation);
}

void KelProjectDatabase::SetBitstreamGenerateExecutableName(const std::string& name) {
  SetFlowProcessExecutableName(e_bitstream_generation, name);
}

bool KelProjectDatabase::AddBitstreamGenerateParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_bitstream_generation, kParameterMap.narrow, parameter);
}

bool KelProjectDatabase::AddBitstreamGenerateParameter(const std::string& name,
                                                       const std::string& value,
                                                       ParameterType type) {
  return AddFlowProcessParameter(e_bitstream_generation, kParameterMap.narrow, name, value, type);
}

bool KelProjectDatabase::AddBitstreamGenerateParameterList(
    const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_bitstream_generation, kParameterMap.narrow, parameters);
}

void KelProjectDatabase::GetBitstreamGenerateParameterList(
    std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_bitstream_generation, kParameterMap.narrow, parameters);
}

std::string KelProjectDatabase::GetBitstreamGenerateParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_bitstream_generation, kParameterMap.narrow, name);
}

bool KelProjectDatabase::AddDebuggerParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_debugger, kParameterMap.narrow, parameter);
}

bool KelProjectDatabase::AddDebuggerParameter(const std::string& name, const std::string& value,
                                              ParameterType type) {
  return AddFlowProcessParameter(e_debugger, kParameterMap.narrow, name, value, type);
}

bool KelProjectDatabase::AddDebuggerParameterList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_debugger, kParameterMap.narrow, parameters);
}

void KelProjectDatabase::GetDebuggerParameterList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_debugger, kParameterMap.narrow, parameters);
}

std::optional<Parameter> KelProjectDatabase::GetDebuggerParameter(const std::string& name) const {
  return GetFlowProcessParameter(e_debugger, kParameterMap.narrow, name);
}

std::string KelProjectDatabase::GetDebuggerParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_debugger, kParameterMap.narrow, name);
}

}  // namespace projectdb
