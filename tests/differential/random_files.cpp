#include "random_files.h"

#include <set>

#include <projectdb/vocabulary.h>

namespace differential {
namespace {

using projectdb::DesignFile;
using projectdb::Parameter;

std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '&') {
      escaped += "&amp;";
    } else if (c == '<') {
      escaped += "&lt;";
    } else if (c == '"') {
      escaped += "&quot;";
    } else if (c == '\r') {
      escaped += "&#13;";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string AttributeName(RandomInput& input) {
  return input.OneOf<std::string>(
      {"name",      "name",      "name",          "version", "library",    "value",    "value_type",
       "tool_name", "path",      "instance_name", "extra",   "größe",      "kel:name", "xml:lang",
       "xsi:type",  "xmlns:kel", "xmlns:other",   "xmlns",   "other:name", "note",     "id"});
}

std::string AttributeValue(const std::string& name, RandomInput& input) {
  const std::string uri = "http://schema.kel.example/wdp_proj";
  if (name == "xmlns" || name == "xmlns:kel") return input.OneIn(4) ? "urn:another" : uri;
  if (name == "xmlns:other") return input.OneIn(2) ? "urn:another" : uri;
  if (name == "value_type") return input.OneOf<std::string>({"e_string", "e_bool", "e_odd"});
  return input.OneIn(8) ? "&#65;&#x1F600;" : Escaped(input.Text());
}

// A file with an attribute twice is refused: about one in twenty may have some.
std::string Attributes(RandomInput& input) {
  std::string text;
  std::set<std::string> names;
  const bool may_repeat = input.OneIn(300);
  const std::size_t count = input.OneIn(20) ? 20 : input.Number(5);
  for (std::size_t i = 0; i < count; ++i) {
    std::string name = may_repeat || i > 3 || input.OneIn(30)
                           ? AttributeName(input)
                           : input.OneOf<std::string>({"name", "version", "library"});
    const std::string value = AttributeValue(name, input);
    if (!names.insert(name).second && !may_repeat) name += std::to_string(i);
    text.append(" ").append(name).append("=\"").append(value).append("\"");
  }
  return text;
}

std::string Between(RandomInput& input) {
  return input.OneOf<std::string>(
      {"", "", "", "", "\n  ", "\r\n  ", "<!-- note -->", "<?do it?>", "text", "<![CDATA[<a>]]>"});
}

/// A section of a project file.
struct Section {
  std::string name;
  std::vector<std::string> tags;  ///< Of the elements in it.
  bool has_only_known = false;    ///< Elements where a load knows them.
};

Section KnownSection(RandomInput& input) {
  return input.OneOf<Section>({{"device_info", {"family", "device"}, true},
                               {"design_info", {"design_file", "top_module"}, true},
                               {"constraint_info", {"sdc_file"}, true},
                               {"isf_info", {"isf_file"}, true},
                               {"sim_info", {"sim_file"}, true},
                               {"misc_info", {"misc_file"}, true},
                               {"ip_info", {"ip"}, true}});
}

Section AnySection(RandomInput& input) {
  return {input.OneOf<std::string>({"device_info", "design_info", "design_info", "constraint_info",
                                    "isf_info", "sim_info", "misc_info", "ip_info", "synthesis",
                                    "place_and_route", "debugger", "security", "odd"}),
          {"design_file", "design_file", "design_file", "sim_file", "param", "param", "dynparam",
           "defmacro", "ip", "ip_src_file", "sdc_file", "isf_file", "misc_file", "family",
           "top_module", "odd", "größe"}};
}

std::string Tag(RandomInput& input, const std::string& prefix, const Section& section) {
  const std::string name = section.tags[input.Number(section.tags.size())];
  return !section.has_only_known && input.OneIn(40)
             ? input.OneOf<std::string>({"other:", "kel:", ""}) + name
             : prefix + name;
}

std::string Elements(RandomInput& input, const std::string& prefix, const Section& section,
                     std::size_t most, int depth) {
  std::string text;
  for (std::size_t i = input.Number(most + 1); i > 0; --i) {
    const std::string tag = Tag(input, prefix, section);
    text += Between(input) + "<" + tag + Attributes(input);
    if (section.has_only_known || depth == 0 || input.OneIn(2)) {
      text += "/>";
    } else {
      text +=
          ">" + Elements(input, prefix, section, 3, depth - 1) + Between(input) + "</" + tag + ">";
    }
  }
  return text;
}

std::vector<DesignFile> Files(RandomInput& input) {
  std::vector<DesignFile> files;
  for (std::size_t i = input.Number(6); i > 0; --i) {
    const std::string name = input.Text();
    const std::string version = input.Text();
    files.emplace_back(name, version, input.Text());
  }
  return files;
}

std::vector<std::string> Names(RandomInput& input) {
  std::vector<std::string> names;
  for (std::size_t i = input.Number(5); i > 0; --i) names.push_back(input.Text());
  return names;
}

// About one in 40 has a value that does not go with its type, with which nothing is exported.
Parameter RandomParameter(RandomInput& input, const std::string& name) {
  auto type = static_cast<projectdb::ParameterType>(input.Number(3));
  const std::string value = input.Text();
  if (value.empty() != input.OneIn(40)) type = projectdb::e_noarg;
  return {name, value, type};
}

/// A type that takes anything.
std::string OpenType(const std::string& name, const std::string& processing) {
  return "<xs:complexType name=\"" + name +
         "\"><xs:sequence><xs:any minOccurs=\"0\" maxOccurs=\"unbounded\" processContents=\"" +
         processing + "\"/></xs:sequence><xs:anyAttribute processContents=\"" + processing +
         "\"/></xs:complexType>";
}

}  // namespace

std::string SchemaWithDefaults() {
  return R"(<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema"
    xmlns="http://schema.kel.example/wdp_proj"
    targetNamespace="http://schema.kel.example/wdp_proj" elementFormDefault="qualified">)" +
         OpenType("any", "lax") + OpenType("skipped", "skip") +
         R"(
  <xs:complexType name="file">
    <xs:complexContent><xs:extension base="any">
      <xs:attribute name="name" type="xs:string" default="unnamed"/>
      <xs:attribute name="library" type="xs:string" fixed="work"/>
      <xs:attribute name="version" type="xs:token"/>
    </xs:extension></xs:complexContent>
  </xs:complexType>
  <xs:complexType name="named">
    <xs:complexContent><xs:extension base="any">
      <xs:attribute name="name" type="xs:ID"/>
    </xs:extension></xs:complexContent>
  </xs:complexType>
  <xs:element name="project" type="any"/>
  <xs:element name="odd" type="skipped"/>
  <xs:element name="design_file" type="file"/>
  <xs:element name="param" type="named"/>
</xs:schema>
)";
}

std::string RandomFile(RandomInput& input) {
  const std::string prefix = input.OneOf<std::string>({"", "kel:", "kel:", "p:"});
  std::string text = input.OneIn(2) ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" : "";
  text += "<" + prefix +
          "project xmlns=\"http://schema.kel.example/wdp_proj\""
          " xmlns:kel=\"http://schema.kel.example/wdp_proj\""
          " xmlns:p=\"http://schema.kel.example/wdp_proj\" xmlns:other=\"urn:other\""
          " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" name=\"" +
          Escaped(input.Text()) + "\">";
  const bool has_only_known = input.OneIn(2);
  for (std::size_t i = input.Number(5); i > 0; --i) {
    const Section section = has_only_known ? KnownSection(input) : AnySection(input);
    const std::string tag = prefix + section.name;
    text.append(Between(input)).append("<").append(tag).append(Attributes(input)).append(">");
    text.append(Elements(input, prefix, section, 8, 2)).append(Between(input));
    text.append("</").append(tag).append(">");
  }
  return text + "\n</" + prefix + "project>\n";
}

std::string Damaged(std::string bytes, RandomInput& input) {
  for (std::size_t i = 1 + input.Number(3); i > 0 && !bytes.empty(); --i) {
    const std::size_t place = input.Number(bytes.size());
    switch (input.Number(4)) {
      case 0:
        bytes.erase(place, 1 + input.Number(5));
        break;
      case 1:
        bytes[place] = static_cast<char>(input.Number(256));
        break;
      case 2:
        bytes.insert(place, bytes.substr(input.Number(bytes.size()), input.Number(40)));
        break;
      default:
        bytes.insert(place, input.OneOf<std::string>({"<", ">", "\"", "&", "/>", "<!DOCTYPE a>",
                                                      "]]>", "\xC3", " name=\"again\"", ":"}));
    }
  }
  return bytes;
}

projectdb::ProjectContents RandomContents(RandomInput& input) {
  projectdb::ProjectContents project;
  project.project_name = input.Text();
  project.info_attributes[input.OneOf<std::string>({"owner", "größe", "review:state"})] =
      input.Text();
  project.device_info.family = input.Text();
  project.design_info.top_module = input.Text();
  project.design_info.design_files = Files(input);
  project.design_constraint.sdc_files = Names(input);
  project.design_isf.isf_files = Names(input);
  project.sim_files = Files(input);
  project.misc_files = Files(input);
  for (std::size_t i = input.Number(4); i > 0; --i) {
    projectdb::IP ip{input.Text(), input.Text(), {}};
    for (const std::string& name : Names(input)) ip.src_files.push_back({name});
    project.ip_info.ips.push_back(ip);
  }
  project.flow_processes.resize(projectdb::kFlowProcesses.size());
  for (std::size_t i = 0; i < project.flow_processes.size(); ++i) {
    auto& process = project.flow_processes[i];
    process.name = projectdb::kFlowProcesses[i].name;
    process.tool_name = input.Text();
    for (const std::string& name : Names(input)) {
      const auto map = i == 0 ? input.OneOf<std::string>({"param", "dynparam"}) : "param";
      process.parameter_maps[map].emplace(name, RandomParameter(input, name));
    }
  }
  // No project file keeps a map of this name.
  if (input.OneIn(20)) {
    project.flow_processes[0].parameter_maps["größe"].emplace("a", RandomParameter(input, "a"));
  }
  return project;
}

}  // namespace differential
