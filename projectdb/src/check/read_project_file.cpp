#include "check/read_project_file.h"

#include <filesystem>
#include <optional>
#include <utility>

#include <fmt/format.h>
#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>
#include <xercesc/sax/InputSource.hpp>

#include "check/collecting_observer.h"
#include "check/located_parse.h"
#include "check/problem_list.h"
#include "check/versioned_file.h"
#include "platform/file_status.h"
#include "platform/paths.h"
#include "project_db/format.h"
#include "project_db/input_files.h"
#include "xml/dom.h"
#include "xml/errors.h"
#include "xml/file_stream.h"
#include "xml/file_uri.h"
#include "xml/input.h"
#include "xml/platform.h"

namespace projectdb {
namespace {

using xercesc::DOMElement;

/// Gives the parser a file whose version is wanted too.
class VersionedInput : public xercesc::InputSource {
 public:
  VersionedInput(files::VersionedFile& file, const std::string& uri)
      : InputSource(xml::Transcoder().ToXml(uri).c_str()), file_(file) {}

  xercesc::BinInputStream* makeStream() const override {
    return new xml::FileStream<files::VersionedFile&>(file_);
  }

 private:
  files::VersionedFile& file_;
};

}  // namespace

/// Goes the way of a load, with a project of its own.
class ProjectFileReader {
 public:
  /// @param path of a file that exists
  /// @param status of the file
  /// @param schema_file nothing for no schema, even if the file names one
  void ReadFile(const std::string& path, const files::FileStatus& status,
                const std::optional<std::string>& schema_file) {
    result_.file.version = files::VersionWithoutDigest(status);
    if (!HasProjectFileExtension(path)) {
      problems_.AddError(
          fmt::format("the name of a project file must end in \"{}\"", kProjectFileEnding));
    }
    const std::filesystem::path file_path = paths::FromBytes(path);
    files::VersionedFile file(path);
    const xml::Platform platform;
    const std::string uri = xml::FileUri(file_path);
    check::LocatedParse parse =
        Parse({VersionedInput(file, uri), uri, std::nullopt, schema_file.has_value()},
              schema_file.value_or(""));
    // The parser does not know why a read failed.
    file.RequireReads();
    Take(std::move(parse));
    result_.file.version = file.Version();
    std::optional<ProjectContents>& contents = result_.file.contents;
    if (!contents) return;
    contents->current_path = paths::ToBytes(paths::Absolute(file_path).parent_path());
  }

  void ReadBytes(const std::string& bytes, const std::string& schema_file) {
    const xml::Platform platform;
    const std::string uri = xml::FileUri("/dev/null/bytes");
    Take(Parse({xml::BytesInput(bytes, uri), uri, bytes, false}, schema_file));
  }

  void NoteMissingFile() { problems_.AddError("the project file does not exist"); }

  /// Notes why the file could not be read, or not to its end.
  /// @param prefix what to say of it before the reason
  void Fail(const std::string& prefix, const std::string& reason) {
    problems_.AddError(prefix + reason);
    result_.file.contents.reset();
    result_.failure = reason;
  }

  FileReading TakeResult() {
    result_.file.problems = problems_.Take();
    result_.file.unkept = unkept_.Take();
    return std::move(result_);
  }

 private:
  check::LocatedParse Parse(const check::Source& source, const std::string& schema_file) {
    return check::ParseLocated(source, SchemaLocation(schema_file));
  }

  void Take(check::LocatedParse parse) {
    bool has_error = false;
    for (const auto& [is_error, position, message] : parse.problems) {
      problems_.Add(is_error ? ProblemSeverity::kError : ProblemSeverity::kWarning, position,
                    message);
      has_error = has_error || is_error;
    }
    const DOMElement* root = parse.document ? parse.document->getDocumentElement() : nullptr;
    if (!root) return;
    ReadDocument(*root, parse.positions);
    if (!has_error) result_.file.contents = project_.TakeContents();
  }

  std::string SchemaLocation(const std::string& schema_file) {
    if (schema_file.empty() || FileExists(schema_file)) return schema_file;
    problems_.Add(ProblemSeverity::kWarning, {},
                  fmt::format("the XML schema {:?} does not exist; the file is read without it",
                              schema_file));
    return {};
  }

  void ReadDocument(const DOMElement& root, check::ElementPositions& positions) {
    if (!xml::HasLocalName(&root, format::kProject)) {
      problems_.Add(
          ProblemSeverity::kWarning, positions.Of(root),
          fmt::format("the root is {}; expected <{}>", check::Tag(root), format::kProject.narrow));
    }
    for (const check::Position& comment : positions.comments()) {
      unkept_.Add(ProblemSeverity::kWarning, comment, "the comment is not kept");
    }
    check::CollectingObserver observer(positions, problems_, unkept_);
    xml::WithPrefixedErrors("", [&] { return project_.LoadProjectDocument(&root, observer); });
  }

  KelProjectDatabase project_;
  check::ProblemList problems_;
  check::ProblemList unkept_;
  FileReading result_;
};

namespace {

/// Lets a reader read; what keeps it from that is a problem too.
template <typename Reading>
FileReading Result(Reading reading) {
  ProjectFileReader reader;
  try {
    xml::WithBadAlloc([&] { reading(reader); });
  } catch (const Failure& failure) {
    reader.Fail("the file cannot be read: ", failure.what());
  } catch (const std::runtime_error& error) {
    reader.Fail("", error.what());
  }
  return reader.TakeResult();
}

}  // namespace

FileReading ReadWholeFile(const std::string& path, const std::optional<std::string>& schema_file) {
  return Result([&](ProjectFileReader& reader) {
    const std::optional<files::FileStatus> status = files::FindStatus(path);
    if (status) {
      reader.ReadFile(path, *status, schema_file);
    } else {
      reader.NoteMissingFile();
    }
  });
}

ProjectFile ReadProjectFile(const std::string& path, const std::string& schema_file) {
  return ReadWholeFile(path, schema_file).file;
}

ProjectFile ParseProjectFile(const std::string& bytes, const std::string& schema_file) {
  return Result([&](ProjectFileReader& reader) { reader.ReadBytes(bytes, schema_file); }).file;
}

}  // namespace projectdb
