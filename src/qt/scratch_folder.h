// The folder for a run's scratch files.
//
// Their names are the same in every run, so two runs in one folder would overwrite each other's.
// Each run therefore has a private folder as its current directory.

#pragma once

#include <string>

namespace quillon {

/// Creates a folder for this run only and makes it the current directory: in $XDG_RUNTIME_DIR or,
/// if that fails, among the temporary files. It is removed when the run ends; folders left by
/// killed runs are removed at a later start. If no folder can be created, the current directory
/// stays. Paths in the program's own environment variables are made absolute first.
void EnterScratchFolder();

/// The folder that the program was started in, or the user's home if that is not writable. The file
/// dialogs start there.
std::string StartFolder();

/// The command line with its path made absolute, so that it means the same file whatever the
/// current directory is. A leading quote stays in front.
std::string AbsoluteCommandLine(const std::string& commandLine);

}  // namespace quillon
