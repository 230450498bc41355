#pragma once

/// The XML library counts its initialisations but does not guard the count; what stands here may be
/// called from any thread. Each initialisation keeps the library usable until its termination.
///
/// Loading and exporting terminate it after success only, as one of its exceptions that leaves them
/// needs it to be read. All else that uses it has a Platform.
namespace projectdb::xml {

/// Initialises the XML library with its default locale.
void InitializeWithDefaultLocale();

/// @param initialize what does the work
/// @exception std::runtime_error "Failed to initialize …"
void InitializeXMLPlatform(void (*initialize)() = InitializeWithDefaultLocale);

void TerminateXMLPlatform();

/// Keeps the XML library initialised for as long as it lives.
class Platform {
 public:
  Platform() { InitializeXMLPlatform(); }
  ~Platform() { TerminateXMLPlatform(); }
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;
};

}  // namespace projectdb::xml
