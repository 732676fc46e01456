#pragma once

// What korvane_exporter_build_info reports of this build.
namespace BuildInfo {
// The project's full version, major.minor.release.build.
const char* version();
// The source's git commit when the build was configured; "unknown" outside git.
const char* revision();
// The compiler's name and version, such as "gcc 12.2.0".
const char* compiler();
} // namespace BuildInfo
