#include <projectdb/vocabulary.h>

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
  return AddFlowProcessParameter(e_synthesis, kParameterMap, parameter);
}

bool KelProjectDatabase::AddSynthesisParameter(const std::string& name, const std::string& value,
                                               ParameterType type) {
  return AddFlowProcessParameter(e_synthesis, kParameterMap, name, value, type);
}

bool KelProjectDatabase::AddSynthesisParameterList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_synthesis, kParameterMap, parameters);
}

void KelProjectDatabase::GetSynthesisParameterList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_synthesis, kParameterMap, parameters);
}

std::string KelProjectDatabase::GetSynthesisParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_synthesis, kParameterMap, name);
}

bool KelProjectDatabase::AddSynthesisVerilogDefineParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_synthesis, kDefineMap, parameter);
}

bool KelProjectDatabase::AddSynthesisVerilogDefineParameter(const std::string& name,
                                                            const std::string& value) {
  return AddFlowProcessParameter(e_synthesis, kDefineMap, name, value, kNoParameterType);
}

bool KelProjectDatabase::AddSynthesisVerilogDefineParameterList(
    const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_synthesis, kDefineMap, parameters);
}

void KelProjectDatabase::GetSynthesisVerilogDefineParameterList(
    std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_synthesis, kDefineMap, parameters);
}

std::string KelProjectDatabase::GetSynthesisVerilogDefineParameterValue(
    const std::string& name) const {
  return GetFlowProcessParameterValue(e_synthesis, kDefineMap, name);
}

bool KelProjectDatabase::AddSynthesisVerilogMacro(const Parameter& parameter) {
  return AddFlowProcessParameter(e_synthesis, kMacroMap, parameter);
}

bool KelProjectDatabase::AddSynthesisVerilogMacro(const std::string& name,
                                                  const std::string& value) {
  return AddFlowProcessParameter(e_synthesis, kMacroMap, name, value, kNoParameterType);
}

bool KelProjectDatabase::AddSynthesisVerilogMacroList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_synthesis, kMacroMap, parameters);
}

void KelProjectDatabase::GetSynthesisVerilogMacroList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_synthesis, kMacroMap, parameters);
}

std::string KelProjectDatabase::GetSynthesisVerilogMacroValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_synthesis, kMacroMap, name);
}

std::string KelProjectDatabase::GetPlaceAndRouteExecutableName() const {
  return GetFlowProcessExecutableName(e_place_and_route);
}

void KelProjectDatabase::SetPlaceAndRouteExecutableName(const std::string& name) {
  SetFlowProcessExecutableName(e_place_and_route, name);
}

bool KelProjectDatabase::AddPlaceAndRouteParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_place_and_route, kParameterMap, parameter);
}

bool KelProjectDatabase::AddPlaceAndRouteParameter(const std::string& name,
                                                   const std::string& value, ParameterType type) {
  return AddFlowProcessParameter(e_place_and_route, kParameterMap, name, value, type);
}

bool KelProjectDatabase::AddPlaceAndRouteParameterList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_place_and_route, kParameterMap, parameters);
}

void KelProjectDatabase::GetPlaceAndRouteParameterList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_place_and_route, kParameterMap, parameters);
}

std::optional<Parameter> KelProjectDatabase::GetPlaceAndRouteParameter(
    const std::string& name) const {
  return GetFlowProcessParameter(e_place_and_route, kParameterMap, name);
}

std::string KelProjectDatabase::GetPlaceAndRouteParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_place_and_route, kParameterMap, name);
}

std::string KelProjectDatabase::GetBitstreamGenerateExecutableName() const {
  return GetFlowProcessExecutableName(e_bitstream_generation);
}

void KelProjectDatabase::SetBitstreamGenerateExecutableName(const std::string& name) {
  SetFlowProcessExecutableName(e_bitstream_generation, name);
}

bool KelProjectDatabase::AddBitstreamGenerateParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_bitstream_generation, kParameterMap, parameter);
}

bool KelProjectDatabase::AddBitstreamGenerateParameter(const std::string& name,
                                                       const std::string& value,
                                                       ParameterType type) {
  return AddFlowProcessParameter(e_bitstream_generation, kParameterMap, name, value, type);
}

bool KelProjectDatabase::AddBitstreamGenerateParameterList(
    const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_bitstream_generation, kParameterMap, parameters);
}

void KelProjectDatabase::GetBitstreamGenerateParameterList(
    std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_bitstream_generation, kParameterMap, parameters);
}

std::string KelProjectDatabase::GetBitstreamGenerateParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_bitstream_generation, kParameterMap, name);
}

bool KelProjectDatabase::AddDebuggerParameter(const Parameter& parameter) {
  return AddFlowProcessParameter(e_debugger, kParameterMap, parameter);
}

bool KelProjectDatabase::AddDebuggerParameter(const std::string& name, const std::string& value,
                                              ParameterType type) {
  return AddFlowProcessParameter(e_debugger, kParameterMap, name, value, type);
}

bool KelProjectDatabase::AddDebuggerParameterList(const std::vector<Parameter>& parameters) {
  return AddFlowProcessParameterList(e_debugger, kParameterMap, parameters);
}

void KelProjectDatabase::GetDebuggerParameterList(std::vector<Parameter>& parameters) const {
  GetFlowProcessParameterList(e_debugger, kParameterMap, parameters);
}

std::optional<Parameter> KelProjectDatabase::GetDebuggerParameter(const std::string& name) const {
  return GetFlowProcessParameter(e_debugger, kParameterMap, name);
}

std::string KelProjectDatabase::GetDebuggerParameterValue(const std::string& name) const {
  return GetFlowProcessParameterValue(e_debugger, kParameterMap, name);
}

}  // namespace projectdb
