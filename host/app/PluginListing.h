#pragma once

namespace host {

struct ViewerOptions;

/// Loads the plug-ins as the viewer does, without showing anything and without
/// a display, and prints a line for each candidate: state, path, name, version
/// and reason, separated by tabs.
/// \return the program's exit code
int listPlugins(int &argc, char **argv, const ViewerOptions &options);

} // namespace host
